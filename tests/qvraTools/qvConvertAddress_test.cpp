#include <gtest/gtest.h>

#include <cstring>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

namespace {

TEST(qvConvertAddress, MACBecomesSixPairsOfLowerCaseDigits) {
  const uint8 kMAC[6] = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFF};
  char* theText = qvConvert_MACtostr(kMAC, ':');
  EXPECT_STREQ("00:1a:2b:3c:4d:ff", theText);
  qvFree(theText);
  theText = qvConvert_MACtostr(kMAC, '-');
  EXPECT_STREQ("00-1a-2b-3c-4d-ff", theText);
  qvFree(theText);
}

struct MACCase {
  const char* mText;
  int mResult;
  uint8 mMAC[6];  // 0xEE: not written
  const char* mWhy;
};

const MACCase kMACCases[] = {
    {"00:1A:2b-3c:4d:5e  ", 0, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}, "separators mixed, white space behind"},
    {"ff-ff-ff-ff-ff-ff\n", 0, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, "any white space"},
    {"001A2B3C4D5E", -3, {0x00, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "no separator: fails after the first byte"},
    {"00:1A:2B:3C:4D", -3, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xEE}, "five bytes"},
    {"00:1A:2B:3C:4D:", -3, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xEE}, "no sixth byte behind its separator"},
    {"00:1A:2B:3C:4D:5", -3, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xEE}, "one digit left"},
    {"00:1A:2B:3C:4D:5E:", -3, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}, "a separator behind the sixth byte"},
    {"00:1A:2B:3C:4D:5Ef", -3, {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}, "text behind the sixth byte"},
    {"00:+1:2B:3C:4D:5E", -3, {0x00, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "a sign is no digit"},
    {"00: 1:2B:3C:4D:5E", -3, {0x00, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "a blank is no digit"},
    {"0x:1A:2B:3C:4D:5E", -3, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "nor is an x"},
    {"00.1A:2B:3C:4D:5E", -3, {0x00, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "nor a point a separator"},
    {"0\xE9:1A:2B:3C:4D:5E", -3, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "a byte above 0x7F"},
    {" 00:1A:2B:3C:4D:5E", -3, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "no white space in front"},
    {"", -3, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "empty"},
    {nullptr, -3, {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, "null"},
};

TEST(qvConvertAddress, TextBecomesMAC) {
  for (const MACCase& theCase : kMACCases) {
    SCOPED_TRACE(theCase.mWhy);
    uint8 theMAC[6];
    memset(theMAC, 0xEE, sizeof(theMAC));
    EXPECT_EQ(theCase.mResult, qvConvert_strtoMAC(theCase.mText, theMAC));
    EXPECT_EQ(0, memcmp(theCase.mMAC, theMAC, sizeof(theMAC)));
  }
}

TEST(qvConvertAddress, IPv4AddressPrintsItsBytesInMemoryOrder) {
  const uint8 kBytes[4] = {192, 168, 0, 255};
  uint32 theAddress;
  memcpy(&theAddress, kBytes, sizeof(theAddress));
  char* theText = qvConvert_iptostr(theAddress);
  EXPECT_STREQ("192.168.0.255", theText);
  qvFree(theText);
}

}  // namespace
