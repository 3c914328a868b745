// The log daemon logger in processes that fork.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <set>

#include "support/LogDaemonTest.h"
#include "support/RecordingLogger.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

using qvLogdLoggerForkTest = LogDaemonTest;

// Forks and waits for the child, which runs aBody and exits.
template <class Body>
void InChild(const Body& aBody) {
  pid_t theChild = fork();
  if (theChild == 0) {
    aBody();
    _exit(0);
  }
  int theStatus = -1;
  waitpid(theChild, &theStatus, 0);
  EXPECT_EQ(0, theStatus);
}

constexpr char kHeader[] =
    "\nPROTOCOL: qvLogd-1.0\nUUID: [0-9a-f-]{36}\nLOST: 0\nNAME: [^\n]*\\(log started, 0 logs previously "
    "lost\\)\n";

// The UUID in a header.
std::string UUIDIn(const std::string& aStream) {
  const std::string kMark = "\nUUID: ";
  size_t theFound = aStream.find(kMark);
  return theFound != std::string::npos ? aStream.substr(theFound + kMark.size(), 36) : "";
}

}  // namespace

TEST_F(qvLogdLoggerForkTest, AChildConnectsAnewUnderAnotherUUIDAndLeavesTheParentsConnectionAlone) {
  ASSERT_TRUE(LogText(1, 0, "parent before\n"));
  std::string theStream = mPeer.ReadUntil("parent before\n");
  const std::string theUUID = UUIDIn(theStream);
  InChild([] { LogText(1, 0, "child\n"); });
  ASSERT_TRUE(LogText(1, 0, "parent after\n"));
  EXPECT_THAT(mPeer.ReadUntil("parent after\n"), MatchesRegex(std::string(kErrorPrefix) + "parent after\n"));
  EXPECT_STREQ(theUUID.c_str(), Logger()->mUUIDStr);

  mPeer.Accept();
  theStream = mPeer.ReadToEnd();
  EXPECT_THAT(theStream, MatchesRegex(std::string(kHeader) + kErrorPrefix + "child\n"));
  EXPECT_NE(theUUID, UUIDIn(theStream));
}

TEST_F(qvLogdLoggerForkTest, TheChildOfAChildIsAnotherInstanceAgain) {
  ASSERT_TRUE(LogText(1, 0, "parent\n"));
  InChild([] {
    LogText(1, 0, "child\n");
    InChild([] { LogText(1, 0, "grandchild\n"); });
  });
  std::set<std::string> theUUIDs;
  theUUIDs.insert(UUIDIn(mPeer.ReadUntil("parent\n")));
  for (const char* theName : {"child\n", "grandchild\n"}) {
    mPeer.Accept();
    std::string theStream = mPeer.ReadToEnd();
    EXPECT_THAT(theStream, HasSubstr(theName));
    theUUIDs.insert(UUIDIn(theStream));
  }
  EXPECT_EQ(3u, theUUIDs.size());
}

TEST_F(qvLogdLoggerForkTest, AChildThatLogsNothingDoesNotConnect) {
  ASSERT_TRUE(LogText(1, 0, "parent\n"));
  mPeer.ReadUntil("parent\n");
  InChild([] {});
  EXPECT_FALSE(mPeer.HasCaller());
}

TEST_F(qvLogdLoggerForkTest, TheParentsConnectionEndsWithTheParentAlthoughTheChildLives) {
  ASSERT_TRUE(LogText(1, 0, "parent\n"));
  int theGate[2];
  ASSERT_EQ(0, pipe(theGate));
  pid_t theChild = fork();
  if (theChild == 0) {
    close(theGate[1]);
    char theByte;
    _exit(read(theGate[0], &theByte, 1) == 0 ? 0 : 1);
  }
  close(theGate[0]);
  qvLog_Term();
  EXPECT_THAT(mPeer.ReadToEnd(), HasSubstr("parent\n"));
  close(theGate[1]);
  int theStatus = -1;
  waitpid(theChild, &theStatus, 0);
  EXPECT_EQ(0, theStatus);
}

TEST_F(qvLogdLoggerForkTest, TheLossesAreTheParentsToReport) {
  mPeer.StopListening();
  LogText(1, 0, "lost\n");
  ASSERT_NE(0u, Logger()->mLostLogs);
  mPeer.Listen();
  InChild([] { LogText(1, 0, "child\n"); });
  EXPECT_THAT(mPeer.ReadToEnd(), MatchesRegex(std::string(kHeader) + kErrorPrefix + "child\n"));
  mPeer.Close();
  LogText(1, 0, "parent\n");
  EXPECT_THAT(mPeer.ReadUntil("parent\n"), HasSubstr("LOST: 1\n"));
}
