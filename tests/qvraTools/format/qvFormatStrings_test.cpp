// The small string functions of the engine.
#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>

#include <functional>
#include <string>

#include "qvraTools/format/qvFormat.h"
#include "support/ChildProcess.h"

TEST(qvFormatStrings, MeasuresAText) {
  EXPECT_EQ(0u, _qv_length(""));
  EXPECT_EQ(5u, _qv_length("a\xff"
                           "cde"));
}

TEST(qvFormatStrings, NamesASystemError) {
  EXPECT_STREQ("No such file or directory", _qv_error(ENOENT));
  EXPECT_STREQ("Success", _qv_error(0));
}

TEST(qvFormatStrings, ReadsALong) {
  char* theEnd = nullptr;
  const char* kText = " -12x";
  EXPECT_EQ(-12, _qv_to_long(kText, &theEnd, 10));
  EXPECT_EQ(kText + 4, theEnd);
  EXPECT_EQ(5, _qv_to_long("101", nullptr, 2));
  EXPECT_EQ(35, _qv_to_long("z", nullptr, 36));
  EXPECT_EQ(255, _qv_to_long("0xff", nullptr, 16));
  EXPECT_EQ(LONG_MAX, _qv_to_long("99999999999999999999", nullptr, 10));
}

TEST(qvFormatStrings, ReadsAWideLong) {
  wchar_t* theEnd = nullptr;
  const wchar_t* kText = L" -12x";
  EXPECT_EQ(-12, _qv_w_to_long(kText, &theEnd, 10));
  EXPECT_EQ(kText + 4, theEnd);
  EXPECT_EQ(35, _qv_w_to_long(L"z", nullptr, 36));
}

// The system's own assertion: a line on standard error, then SIGABRT.
static void ExpectSystemAssertion(const std::function<void()>& aBody, const std::string& aText) {
  ChildResult theResult = RunInChild(aBody);
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_THAT(theResult.mStderr, testing::HasSubstr("Assertion `" + aText + "' failed."));
}

TEST(qvFormatStrings, RefuseANullText) {
  const char* kNull = nullptr;
  const wchar_t* kWideNull = nullptr;
  ExpectSystemAssertion([&] { _qv_to_long(kNull, nullptr, 10); }, "string");
  ExpectSystemAssertion([&] { _qv_w_to_long(kWideNull, nullptr, 10); }, "string");
}

TEST(qvFormatStrings, RefuseABaseOutside2To36) {
  for (int theBase : {-1, 0, 1, 37}) {
    ExpectSystemAssertion([&] { _qv_to_long("1", nullptr, theBase); }, "(base >= 2) && (base <= 36)");
    ExpectSystemAssertion([&] { _qv_w_to_long(L"1", nullptr, theBase); }, "(base >= 2) && (base <= 36)");
  }
}
