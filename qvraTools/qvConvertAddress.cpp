// qvConvertAddress.cpp - MAC and IPv4 addresses as text.
#include <string.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvConvert_p.h"

char* qvConvert_MACtostr(const uint8* aMAC, char aSeparator) {
  return qv_mnprintf("%02x%c%02x%c%02x%c%02x%c%02x%c%02x", aMAC[0], aSeparator, aMAC[1], aSeparator, aMAC[2],
                     aSeparator, aMAC[3], aSeparator, aMAC[4], aSeparator, aMAC[5]);
}

int qvConvert_strtoMAC(const char* aStr, uint8* aMAC) {
  if (aStr == NULL) {
    return kqvConvertError_Invalid;
  }
  for (int i = 0; i < 6; ++i) {
    // Asked digit by digit: the number parser alone would take "+1" and " 1" as well.
    if (!qvConvert_isxdigit(static_cast<unsigned char>(aStr[0])) ||
        !qvConvert_isxdigit(static_cast<unsigned char>(aStr[1]))) {
      return kqvConvertError_Invalid;
    }
    uint32 theByte = 0;
    qvConvert_hexstrntouint32(aStr, 2, &theByte);
    aMAC[i] = static_cast<uint8>(theByte);
    aStr += 2;
    if (i < 5) {
      if (*aStr != '-' && *aStr != ':') {
        return kqvConvertError_Invalid;
      }
      ++aStr;
    }
  }
  return *qvConvert_S_SkipSpace(aStr) == '\0' ? kqvConvertError_None : kqvConvertError_Invalid;
}

char* qvConvert_iptostr(uint32 anIP) {
  uint8 theBytes[4];
  memcpy(theBytes, &anIP, sizeof(theBytes));
  return qv_mnprintf("%u.%u.%u.%u", theBytes[0], theBytes[1], theBytes[2], theBytes[3]);
}
