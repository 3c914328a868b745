/* conversions.c - numbers, media times, fractions and bytes from text and back. */
#include <qvraTools/qvConvert.h>
#include <qvraTools/qvMalloc.h>
#include <stdio.h>

static void ShowNumber(const char* aStr) {
  int32 theNumber;
  int theResult = qvConvert_strtoint32(aStr, &theNumber);
  printf("'%s' reads as %ld, result %d\n", aStr, (long)theNumber, theResult);
}

static void ShowDuration(const char* aStr) {
  uint32 theSecond;
  uint32 theMilliSecond;
  if (qvConvert_dlnanptstrtouint32(aStr, &theSecond, &theMilliSecond) == kqvConvertError_None) {
    printf("'%s' is %lu s and %lu ms\n", aStr, (unsigned long)theSecond, (unsigned long)theMilliSecond);
  } else {
    printf("'%s' is no play position\n", aStr);
  }
}

static void ShowText(const char* aWhat, char* aText) {
  printf("%s: %s\n", aWhat, aText);
  qvFree(aText);
}

int main(void) {
  static const uint8 kMAC[6] = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
  char* theText;

  ShowNumber("42");
  ShowNumber("42 apples");
  ShowNumber("99999999999");
  ShowNumber("apples");
  ShowDuration("1:02:03.250");
  ShowDuration("12.5");
  ShowDuration("half past");

  qvConvert_doubletofraction(23.976, 1000, 1e-9, &theText);
  ShowText("frame rate", theText);
  qvConvert_buffertohexstr(kMAC, sizeof(kMAC), 2, kqvConvertBuffer_LittleEndian, &theText);
  ShowText("as little-endian words", theText);
  ShowText("address", qvConvert_MACtostr(kMAC, ':'));
  return 0;
}
