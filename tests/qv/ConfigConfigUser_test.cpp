// Brand identifiers of users whose number a test chooses: this program has a qvUser_GetID of its own.

#include <gtest/gtest.h>
#include <stdint.h>

#include <string>

#include "qv/ConfigConfig.h"
#include "qvOS/qvUser.h"
#include "support/EnvironmentVariable.h"

static int64 sUserID = 0;

int64 qvUser_GetID(void) { return sUserID; }

namespace {

std::string BrandOfUser(int64 aUserID) {
  sUserID = aUserID;
  return qvConfigConfig::GetBrandInfo("MBus", "NoSuchFile.ini").c_str();
}

}  // namespace

TEST(qvConfigConfigUser, NumberReplacesItsMarkUnlessItIsNegative) {
  EnvironmentVariable theVariable("QVBRANDID");
  theVariable.Set("<%USERID%>");
  EXPECT_EQ("<0>", BrandOfUser(0));
  EXPECT_EQ("<1000>", BrandOfUser(1000));
  EXPECT_EQ("<9223372036854775807>", BrandOfUser(INT64_MAX)) << "all 64 bits count";
  EXPECT_EQ("<%USERID%>", BrandOfUser(-1));
  EXPECT_EQ("<%USERID%>", BrandOfUser(INT64_MIN));
}
