#include "tools/qvlogd/StandardOutput.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "support/ScratchFolder.h"

namespace {

constexpr size_t kMegabyte = 1048576;

// Takes what a descriptor holds without waiting for more.
std::string Drain(int aDescriptor) {
  std::string theText;
  struct pollfd thePoll = {aDescriptor, POLLIN, 0};
  char theBytes[4096];
  while (poll(&thePoll, 1, 0) == 1 && (thePoll.revents & POLLIN) != 0) {
    ssize_t theCount = read(aDescriptor, theBytes, sizeof(theBytes));
    if (theCount <= 0) {
      break;
    }
    theText.append(theBytes, static_cast<size_t>(theCount));
  }
  return theText;
}

// Writes a megabyte while the reader reads only when nothing goes any more. The text must come through whole.
void ExpectAllComesThrough(int aWriteEnd, int aReadEnd) {
  StandardOutput theOutput(aWriteEnd);
  std::string theText;
  for (int i = 0; theText.size() < kMegabyte; ++i) {
    theText += std::to_string(i) + "\n";
  }
  size_t theDone = 0;
  bool fStalled = false;
  std::string theRead;
  while (theDone < theText.size()) {
    size_t theCount = theOutput.Write(theText.data() + theDone, theText.size() - theDone);
    theDone += theCount;
    if (theDone < theText.size()) {
      fStalled = true;
      theRead += Drain(aReadEnd);
      theOutput.Wait(1000);
    }
  }
  EXPECT_TRUE(fStalled) << "nobody read, and yet a megabyte went";
  for (int i = 0; theRead.size() < theText.size() && i < 6000; ++i) {
    theRead += Drain(aReadEnd);
    struct pollfd thePoll = {aReadEnd, POLLIN, 0};
    poll(&thePoll, 1, 10);
  }
  EXPECT_TRUE(theText == theRead);
  EXPECT_FALSE(theOutput.HasEnded());
}

}  // namespace

TEST(StandardOutput, AStalledPipeIsNotWaitedFor) {
  int thePipe[2];
  ASSERT_EQ(0, pipe2(thePipe, O_CLOEXEC));
  ExpectAllComesThrough(thePipe[1], thePipe[0]);
  EXPECT_EQ(0, fcntl(thePipe[1], F_GETFL) & O_NONBLOCK) << "others share the descriptor";
}

TEST(StandardOutput, AStalledSocketIsNotWaitedFor) {
  int theSockets[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, theSockets));
  ExpectAllComesThrough(theSockets[1], theSockets[0]);
  EXPECT_EQ(0, fcntl(theSockets[1], F_GETFL) & O_NONBLOCK);
}

TEST(StandardOutput, AStoppedTerminalIsNotWaitedFor) {
  int theMaster;
  int theTerminal;
  struct termios theRaw;
  cfmakeraw(&theRaw);
  ASSERT_EQ(0, openpty(&theMaster, &theTerminal, nullptr, &theRaw, nullptr));
  ExpectAllComesThrough(theTerminal, theMaster);
}

TEST(StandardOutput, AFileIsWrittenFromWhereItStands) {
  ScratchFolder theFolder;
  int theFile = open(theFolder.File("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(5, write(theFile, "shell", 5));
  EXPECT_EQ(4u, StandardOutput(theFile).Write("one\n", 4));
  EXPECT_EQ("shellone\n", ReadWholeFile(theFolder.File("out")));
  close(theFile);
}

TEST(StandardOutput, AReaderThatHasGoneIsTheEnd) {
  signal(SIGPIPE, SIG_IGN);
  int thePipe[2];
  ASSERT_EQ(0, pipe2(thePipe, O_CLOEXEC));
  StandardOutput theOutput(thePipe[1]);
  close(thePipe[0]);
  EXPECT_EQ(0u, theOutput.Write("one\n", 4));
  EXPECT_TRUE(theOutput.HasEnded());
}

TEST(StandardOutput, AClosedDescriptorIsTheEnd) {
  StandardOutput theOutput(-1);
  EXPECT_EQ(0u, theOutput.Write("one\n", 4));
  EXPECT_TRUE(theOutput.HasEnded());
}

TEST(StandardOutput, AFullDeviceIsNotTheEnd) {
  int theDevice = open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(theDevice, 0);
  StandardOutput theOutput(theDevice);
  EXPECT_EQ(0u, theOutput.Write("one\n", 4));
  EXPECT_FALSE(theOutput.HasEnded());
  close(theDevice);
}
