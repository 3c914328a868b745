#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvDirLock_p.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

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
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
  EXPECT_NE(kqvDirLockNone, theLock);
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_SyncDirectory(theLock);
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_Release(theLock);
  EXPECT_FALSE(IsLocked(theFolder.Path()));
}

TEST(qvDirLock, LockMakesNoFile) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
  EXPECT_FALSE(FileExists(theFolder.File("a.ini")));
  qvDirLock_Release(theLock);
  EXPECT_EQ(0, rmdir(theFolder.Path().c_str()));
}

TEST(qvDirLock, BackslashesInTheNameAreSlashes) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile((theFolder.Path() + "\\a.ini").c_str());
  EXPECT_TRUE(IsLocked(theFolder.Path()));
  qvDirLock_Release(theLock);
}

TEST(qvDirLock, MissingFolderGivesNoneWhichCanBeUsedAllTheSame) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("none/a.ini").c_str());
  EXPECT_EQ(kqvDirLockNone, theLock);
  qvDirLock_SyncDirectory(theLock);
  qvDirLock_Release(theLock);
  EXPECT_EQ(kqvDirLockNone, qvDirLock_AcquireForFile(nullptr));
  EXPECT_EQ(kqvDirLockNone, qvDirLock_AcquireForFile(""));
}

TEST(qvDirLock, DeathOfTheHolderGivesTheLockBack) {
  ScratchFolder theFolder;
  ChildResult theResult = RunInChild([&] {
    qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
    raise(SIGKILL);
  });
  EXPECT_EQ(SIGKILL, theResult.mSignal);
  EXPECT_FALSE(IsLocked(theFolder.Path()));
}

TEST(qvDirLock, ReleaseUnlocksAlsoWhileAForkedChildLives) {
  ScratchFolder theFolder;
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
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
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  pid_t theChild = fork();
  if (theChild == 0) {
    close(theLock);
    (void)!write(thePipe[1], "t", 1);  // trying
    qvDirLock_Release(qvDirLock_AcquireForFile(theFolder.File("b.ini").c_str()));
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
  qvDirLock theLock = qvDirLock_AcquireForFile(theFolder.File("a.ini").c_str());
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  pid_t theChild = fork();
  if (theChild == 0) {
    close(theLock);
    struct sigaction theAction = {};
    theAction.sa_handler = [](int) {};
    sigaction(SIGUSR1, &theAction, nullptr);
    (void)!write(thePipe[1], "t", 1);
    qvDirLock_AcquireForFile(theFolder.File("b.ini").c_str());
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
