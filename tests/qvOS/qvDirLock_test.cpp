#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "qvOS/qvDirLock_p.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr uint32 kLimit = 60000;  // milliseconds; nobody waits that long here

// Whether somebody holds the lock of a folder.
bool IsLocked(const std::string& aFolder) {
  int theFD = open(aFolder.c_str(), O_RDONLY | O_DIRECTORY);
  EXPECT_GE(theFD, 0);
  bool theResult = flock(theFD, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(theFD);
  return theResult;
}

}  // namespace

TEST(qvDirLock, LockIsOnTheFolderOfTheFileFromAcquireToRelease) {
  ScratchFolder theFolder;
  EXPECT_FALSE(IsLocked(theFolder.Path()));
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  EXPECT_NE(kqvDirLockNone, theLock);
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  EXPECT_EQ(1, qvDirLock_SyncDirectory(theLock));
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_Release(theLock);
  EXPECT_FALSE(IsLocked(theFolder.Path()));
}

TEST(qvDirLock, LockMakesNoFile) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  EXPECT_FALSE(FileExists(theFolder.File("a.ini")));
  qvDirLock_Release(theLock);
  EXPECT_EQ(0, rmdir(theFolder.Path().c_str()));
}

TEST(qvDirLock, NoProgramThatIsExecutedInheritsTheLock) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  EXPECT_EQ(FD_CLOEXEC, fcntl(theLock, F_GETFD));
  qvDirLock_Release(theLock);
}

TEST(qvDirLock, BackslashesInTheNameAreSlashes) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile((theFolder.Path() + "\\a.ini").c_str(), kLimit);
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_Release(theLock);
}

TEST(qvDirLock, MissingFolderGivesNoneWhichCanBeUsedAllTheSame) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("none/a.ini").c_str(), kLimit);
  EXPECT_EQ(kqvDirLockNone, theLock);
  EXPECT_EQ(1, qvDirLock_SyncDirectory(theLock));
  qvDirLock_Release(theLock);
  EXPECT_EQ(kqvDirLockNone, qvDirLock_AcquireForFile(nullptr, kLimit));
  EXPECT_EQ(kqvDirLockNone, qvDirLock_AcquireForFile("", kLimit));
}

TEST(qvDirLock, DeathOfTheHolderGivesTheLockBack) {
  ScratchFolder theFolder;
  ChildResult theResult = RunInChild([&] {
    qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
    raise(SIGKILL);
  });
  EXPECT_EQ(SIGKILL, theResult.mSignal);
  EXPECT_FALSE(IsLocked(theFolder.Path()));
}

TEST(qvDirLock, ReleaseUnlocksAlsoWhileAForkedChildLives) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  pid_t theChild = fork();
  if (theChild == 0) {
    pause();
    _exit(0);
  }
  qvDirLock_Release(theLock);
  EXPECT_FALSE(IsLocked(theFolder.Path()));
  kill(theChild, SIGKILL);
  waitpid(theChild, nullptr, 0);
}

TEST(qvDirLock, AcquireWaitsForTheHolder) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  pid_t theChild = fork();
  if (theChild == 0) {
    close(theLock);
    (void)!write(thePipe[1], "t", 1);  // trying
    qvDirLock_Release(qvDirLock_AcquireForFile(theFolder.File("b.ini").c_str(), kLimit));
    (void)!write(thePipe[1], "g", 1);  // got it
    _exit(0);
  }
  char theByte = 0;
  EXPECT_EQ(1, read(thePipe[0], &theByte, 1));
  struct pollfd thePoll = {thePipe[0], POLLIN, 0};
  EXPECT_EQ(0, poll(&thePoll, 1, 50)) << "the lock was had by two";
  qvDirLock_Release(theLock);
  EXPECT_EQ(1, read(thePipe[0], &theByte, 1));
  EXPECT_EQ('g', theByte);
  waitpid(theChild, nullptr, 0);
  close(thePipe[0]);
  close(thePipe[1]);
}

TEST(qvDirLock, SignalDoesNotEndTheWait) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  pid_t theChild = fork();
  if (theChild == 0) {
    close(theLock);
    struct sigaction theAction = {};
    theAction.sa_handler = [](int) {};
    sigaction(SIGUSR1, &theAction, nullptr);
    (void)!write(thePipe[1], "t", 1);
    qvDirLock_AcquireForFile(theFolder.File("b.ini").c_str(), kLimit);
    (void)!write(thePipe[1], "g", 1);
    _exit(0);
  }
  char theByte = 0;
  EXPECT_EQ(1, read(thePipe[0], &theByte, 1));
  struct pollfd thePoll = {thePipe[0], POLLIN, 0};
  for (int i = 0; i < 20; ++i) {
    kill(theChild, SIGUSR1);
    EXPECT_EQ(0, poll(&thePoll, 1, 2));
  }
  qvDirLock_Release(theLock);
  EXPECT_EQ(1, read(thePipe[0], &theByte, 1));
  EXPECT_EQ('g', theByte);
  waitpid(theChild, nullptr, 0);
  close(thePipe[0]);
  close(thePipe[1]);
}

TEST(qvDirLock, AcquireGivesUpAfterItsLimitWhenTheHolderIsStopped) {
  ScratchFolder theFolder;
  qvDirLock theHolders = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), kLimit);
  auto theStart = std::chrono::steady_clock::now();
  EXPECT_EQ(kqvDirLockBusy, qvDirLock_AcquireForFile(theFolder.File("b.ini").c_str(), 50));
  auto theWait = std::chrono::steady_clock::now() - theStart;
  EXPECT_GE(theWait, std::chrono::milliseconds(50));
  EXPECT_LT(theWait, std::chrono::seconds(30));
  EXPECT_TRUE(IsLocked(theFolder.Path())) << "who gives up must not unlock";
  qvDirLock_Release(kqvDirLockBusy);
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_Release(theHolders);
}

TEST(qvDirLock, LimitOfZeroTakesAFreeLockAndDoesNotWaitForAnother) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), 0);
  EXPECT_GE(theLock, 0);
  EXPECT_EQ(kqvDirLockBusy, qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), 0));
  qvDirLock_Release(theLock);
}

TEST(qvDirLock, ProcessWithoutFreeDescriptorsIsRefused) {
  ScratchFolder theFolder;
  struct rlimit theLimit;
  getrlimit(RLIMIT_NOFILE, &theLimit);
  struct rlimit theNone = {0, theLimit.rlim_max};
  setrlimit(RLIMIT_NOFILE, &theNone);
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str(), 0);
  setrlimit(RLIMIT_NOFILE, &theLimit);
  EXPECT_EQ(kqvDirLockBusy, theLock);
}
