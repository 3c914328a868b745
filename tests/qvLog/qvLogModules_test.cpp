#include "qvLog/qvLogModules.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>
#include <type_traits>

#include "qvLog/qvLogger.h"

#define EXPANDED(aMacro)  UNEXPANDED(aMacro)
#define UNEXPANDED(aText) #aText

TEST(qvLogModules, TheTableBecomesAnEnumeration) {
  EXPECT_STREQ("typedef enum {", EXPANDED(QVLOG_DECMOD_BEGIN));
  EXPECT_STREQ("} __qvLogModules;", EXPANDED(QVLOG_DECMOD_END));
  EXPECT_TRUE(std::is_enum<__qvLogModules>::value);
  EXPECT_TRUE((std::is_same<__qvLogModules, decltype(QVLOG_M_DEFAULT)>::value));
}

namespace {

#undef QVLOG_DECMOD
#define QVLOG_DECMOD(code, name, value) {code, #name, QVLOG_M_##name, value},
const struct {
  int mCode;
  const char* mName;
  int mEnumerator;
  int mDefault;
} kTable[] = {QVLOG_MODULE_TABLE};

const char* NameOf(qvLogModule aModule) {
  int theDefault = 0;
  return qvLogger::ModuleNameAndDefaultValue(aModule, &theDefault);
}

}  // namespace

TEST(qvLogModules, TheSizeOfTheModuleTablesIs512) { EXPECT_EQ(512, QVLOG_MAX_MODULES); }

TEST(qvLogModules, AModuleForWhichNothingIsSaidIsLogged) { EXPECT_EQ(1, kqvLog_DefaultIsToLog); }

TEST(qvLogModules, TheTableHas213Entries) { EXPECT_EQ(213u, sizeof(kTable) / sizeof(kTable[0])); }

TEST(qvLogModules, TheCodesAre0To150And200To261WithoutAGap) {
  int theExpected = 0;
  for (const auto& theRow : kTable) {
    EXPECT_EQ(theExpected, theRow.mCode) << theRow.mName;
    theExpected = theExpected == 150 ? 200 : theExpected + 1;
  }
  EXPECT_EQ(262, theExpected);
}

TEST(qvLogModules, EachEnumeratorHasTheCodeOfItsRow) {
  for (const auto& theRow : kTable) {
    EXPECT_EQ(theRow.mCode, theRow.mEnumerator) << theRow.mName;
  }
}

TEST(qvLogModules, ModuleZeroIsDefault) {
  EXPECT_EQ(0, QVLOG_M_DEFAULT);
  EXPECT_STREQ("DEFAULT", NameOf(0));
}

TEST(qvLogModules, ExactlyEightModulesAreSilentByDefault) {
  const std::set<int> theSilent = {4, 20, 22, 53, 54, 55, 56, 201};
  for (const auto& theRow : kTable) {
    EXPECT_EQ(theSilent.count(theRow.mCode) ? 0 : 1, theRow.mDefault) << theRow.mName;
  }
}

TEST(qvLogModules, EveryNameIsAnUpperCaseIdentifierOfItsOwn) {
  std::set<std::string> theNames;
  for (const auto& theRow : kTable) {
    EXPECT_TRUE(isupper(theRow.mName[0])) << theRow.mName;
    for (const char* thePtr = theRow.mName; *thePtr != '\0'; ++thePtr) {
      EXPECT_TRUE(isupper(*thePtr) || isdigit(*thePtr) || *thePtr == '_') << theRow.mName;
    }
    EXPECT_TRUE(theNames.insert(theRow.mName).second) << theRow.mName;
  }
}

TEST(qvLogModules, ANameIsShortEnoughForItsConfigurationKey) {
  for (const auto& theRow : kTable) {
    EXPECT_LT(strlen("LOG_") + strlen(theRow.mName), 64u);
  }
}

TEST(qvLogModules, NameAndDefaultComeFromTheTable) {
  for (const auto& theRow : kTable) {
    int theDefault = -7;
    EXPECT_STREQ(theRow.mName,
                 qvLogger::ModuleNameAndDefaultValue(static_cast<qvLogModule>(theRow.mCode), &theDefault));
    EXPECT_EQ(theRow.mDefault, theDefault) << theRow.mName;
  }
}

TEST(qvLogModules, TheLastCodeOfTheFirstRangeAndTheFirstOfTheSecondHaveNames) {
  EXPECT_NE(nullptr, NameOf(150));
  EXPECT_NE(nullptr, NameOf(200));
  EXPECT_NE(nullptr, NameOf(261));
}

TEST(qvLogModules, ACodeWithoutAnEntryHasNoNameAndLeavesTheDefaultUntouched) {
  for (int theCode : {151, 175, 199, 262, 511, 512, 600, 65535}) {
    int theDefault = -7;
    EXPECT_EQ(nullptr, qvLogger::ModuleNameAndDefaultValue(static_cast<qvLogModule>(theCode), &theDefault))
        << theCode;
    EXPECT_EQ(-7, theDefault) << theCode;
  }
}
