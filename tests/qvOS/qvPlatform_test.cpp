#include "qvOS/qvPlatform.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "support/EnvironmentVariable.h"
#include "support/OwnedText.h"

TEST(qvPlatform, GetenvGivesACopyOfTheValue) {
  EnvironmentVariable theVariable("QVTEST_VALUE");
  theVariable.Set("a value");
  char* theValue = qvPlatform_getenv("QVTEST_VALUE");
  EXPECT_NE(getenv("QVTEST_VALUE"), theValue);
  EXPECT_EQ("a value", TakeText(theValue));
}

TEST(qvPlatform, GetenvOfAnUnsetVariableIsNull) {
  EnvironmentVariable theVariable("QVTEST_VALUE");
  theVariable.Set(nullptr);
  EXPECT_EQ(nullptr, qvPlatform_getenv("QVTEST_VALUE"));
  EXPECT_EQ(nullptr, qvPlatform_getenv(""));
  EXPECT_EQ(nullptr, qvPlatform_getenv(nullptr));
}

TEST(qvPlatform, GetenvOfAnEmptyVariableIsTheEmptyText) {
  EnvironmentVariable theVariable("QVTEST_VALUE");
  theVariable.Set("");
  EXPECT_EQ("", TakeText(qvPlatform_getenv("QVTEST_VALUE")));
}

TEST(qvPlatform, SetenvMakesAndReplacesAVariable) {
  EnvironmentVariable theVariable("QVTEST_VALUE");
  theVariable.Set(nullptr);
  EXPECT_EQ(0, qvPlatform_setenv("QVTEST_VALUE", "one"));
  EXPECT_STREQ("one", getenv("QVTEST_VALUE"));
  EXPECT_EQ(0, qvPlatform_setenv("QVTEST_VALUE", "two = \xC3\xA4"));
  EXPECT_STREQ("two = \xC3\xA4", getenv("QVTEST_VALUE"));
  EXPECT_EQ(0, qvPlatform_setenv("QVTEST_VALUE", ""));
  EXPECT_STREQ("", getenv("QVTEST_VALUE"));
}

TEST(qvPlatform, SetenvKeepsItsOwnCopyOfTheValue) {
  EnvironmentVariable theVariable("QVTEST_VALUE");
  char theValue[] = "one";
  EXPECT_EQ(0, qvPlatform_setenv("QVTEST_VALUE", theValue));
  theValue[0] = 'X';
  EXPECT_STREQ("one", getenv("QVTEST_VALUE"));
}

TEST(qvPlatform, SetenvRefusesWhatIsNoName) {
  EXPECT_EQ(-1, qvPlatform_setenv("", "x"));
  EXPECT_EQ(-1, qvPlatform_setenv("A=B", "x"));
  EXPECT_EQ(-1, qvPlatform_setenv(nullptr, "x"));
  EXPECT_EQ(-1, qvPlatform_setenv("QVTEST_VALUE", nullptr));
}
