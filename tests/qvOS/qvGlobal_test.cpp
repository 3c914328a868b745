#include "qvOS/qvGlobal.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"

namespace {

const char kSuffix[] = ".qvra.local";

// The variable that holds what was set under aName.
std::string Variable(const std::string& aName) { return aName + "." + std::to_string(getpid()) + kSuffix; }

std::string ValueOf(const std::string& aVariable) {
  const char* theValue = getenv(aVariable.c_str());
  return theValue != nullptr ? theValue : "(unset)";
}

void* Address(uintptr_t aValue) { return reinterpret_cast<void*>(aValue); }

void SomeFunction() {}

}  // namespace

TEST(qvGlobal, VariableNameIsNameProcessIdAndSuffix) {
  char* theName = qvGlobal_GetVariableName("x");
  EXPECT_EQ("x." + std::to_string(getpid()) + ".qvra.local", std::string(theName));
  qvFree(theName);
}

TEST(qvGlobal, VariableNameIsAsLongAsItsName) {
  std::string theLong(5000, 'n');
  char* theName = qvGlobal_GetVariableName(theLong.c_str());
  EXPECT_EQ(theLong + "." + std::to_string(getpid()) + ".qvra.local", std::string(theName));
  qvFree(theName);
}

TEST(qvGlobal, VariableNameOfAChildHasTheChildsProcessId) {
  ChildResult theResult = RunInChild([] { fputs(qvGlobal_GetVariableName("x"), stdout); });
  EXPECT_EQ("x." + std::to_string(theResult.mPid) + ".qvra.local", theResult.mStdout);
}

TEST(qvGlobal, SetPtrStoresThePointerAsTextUnderTheComposedName) {
  qvGlobal_SetPtr("qvGlobalTest_set", Address(0x1234ab));
  EXPECT_EQ("0x001234ab", ValueOf(Variable("qvGlobalTest_set")));
  EXPECT_EQ("(unset)", ValueOf("qvGlobalTest_set"));
}

TEST(qvGlobal, SetPtrReplacesAnOlderValue) {
  qvGlobal_SetPtr("qvGlobalTest_replace", Address(1));
  qvGlobal_SetPtr("qvGlobalTest_replace", Address(0xFFFFFFFF));
  EXPECT_EQ("0xffffffff", ValueOf(Variable("qvGlobalTest_replace")));
}

TEST(qvGlobal, SetPtrStoresANullPointerAsText) {
  qvGlobal_SetPtr("qvGlobalTest_null", nullptr);
  EXPECT_EQ("(nil)", ValueOf(Variable("qvGlobalTest_null")));
}

TEST(qvGlobal, GetPtrConvertsTheValueOfTheVariable) {
  const struct {
    const char* mValue;
    uintptr_t mAddress;
    const char* mWhy;
  } kCases[] = {
      {"0x001234ab", 0x1234ab, "as a pointer is written"},
      {"0XFFFFFFFF", 0xFFFFFFFF, "the highest address"},
      {"305419896", 0x12345678, "decimal digits"},
      {"  +17", 17, "blanks and a plus are skipped"},
      {"0", 0, "null"},
      {"(nil)", 0, "no number"},
      {"", 0, "empty"},
      {"0x12 ", 0, "trailing text is no success"},
      {"0x12g", 0, "trailing text is no success"},
      {"0x100000000", 0, "above 32 bits"},
      {"-1", 0, "negative"},
  };
  for (const auto& theCase : kCases) {
    setenv("qvGlobalTest_get", theCase.mValue, 1);
    EXPECT_EQ(Address(theCase.mAddress), qvGlobal_GetPtr("qvGlobalTest_get")) << theCase.mWhy;
  }
}

TEST(qvGlobal, GetPtrOfAnUnsetVariableGivesNull) {
  unsetenv("qvGlobalTest_unset");
  EXPECT_EQ(nullptr, qvGlobal_GetPtr("qvGlobalTest_unset"));
}

TEST(qvGlobal, FunctionPointersAreStoredLikePointers) {
  qvGlobalFunctionPtr theFunction = reinterpret_cast<qvGlobalFunctionPtr>(Address(0x8048001));
  qvGlobal_SetFunctionPtr("qvGlobalTest_function", theFunction);
  EXPECT_EQ("0x08048001", ValueOf(Variable("qvGlobalTest_function")));
  setenv("qvGlobalTest_function", "0x08048001", 1);
  EXPECT_EQ(theFunction, qvGlobal_GetFunctionPtr("qvGlobalTest_function"));
  unsetenv("qvGlobalTest_function");
  EXPECT_EQ(nullptr, qvGlobal_GetFunctionPtr("qvGlobalTest_function"));
}

TEST(qvGlobalKept, GetPtrReadsTheBareNameAndNotTheOneThatSetPtrWrote) {
  unsetenv("qvGlobalTest_kept");
  qvGlobal_SetPtr("qvGlobalTest_kept", Address(0x1000));
  EXPECT_EQ(nullptr, qvGlobal_GetPtr("qvGlobalTest_kept"));  // the kept one
  setenv("qvGlobalTest_kept", "0x2000", 1);
  EXPECT_EQ(Address(0x2000), qvGlobal_GetPtr("qvGlobalTest_kept")) << "as a parent process may have set it";
  EXPECT_EQ("0x00001000", ValueOf(Variable("qvGlobalTest_kept"))) << "what was set is still in its variable";
  EXPECT_EQ(Address(0x1000), qvGlobal_GetPtr(Variable("qvGlobalTest_kept").c_str()));
}

TEST(qvGlobalKept, AFunctionThatWasSetIsNotFoundEither) {
  unsetenv("qvGlobalTest_keptFunction");
  qvGlobal_SetFunctionPtr("qvGlobalTest_keptFunction", SomeFunction);
  EXPECT_EQ(nullptr, qvGlobal_GetFunctionPtr("qvGlobalTest_keptFunction"));
}
