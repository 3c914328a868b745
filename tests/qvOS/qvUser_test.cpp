#include "qvOS/qvUser.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <type_traits>

#include "support/ChildProcess.h"

TEST(qvUser, TheIdIsTheRealUserOfTheProcess) { EXPECT_EQ(static_cast<int64>(getuid()), qvUser_GetID()); }

TEST(qvUser, TheIdIsASigned64BitNumber) {
  EXPECT_TRUE((std::is_same<int64, decltype(qvUser_GetID())>::value));
}

TEST(qvUser, AnIdAbove31BitsIsNotNegative) {
  if (getuid() != 0) {
    GTEST_SKIP() << "only root may become somebody else";
  }
  ChildResult theResult =
      RunInChild([] { _exit(setuid(4000000000u) == 0 && qvUser_GetID() == 4000000000 ? 0 : 1); });
  EXPECT_EQ(0, theResult.mExitCode);
}

TEST(qvUser, TheIdIsNotTheEffectiveUser) {
  if (getuid() != 0) {
    GTEST_SKIP() << "only root may become somebody else";
  }
  ChildResult theResult = RunInChild([] {
    if (seteuid(4711) == 0 && qvUser_GetID() != 0) {
      _exit(1);
    }
  });
  EXPECT_EQ(0, theResult.mExitCode);
}
