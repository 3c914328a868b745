#include "tools/qvlogd/StandardOutput.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <stdio.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

StandardOutput::StandardOutput(int aDescriptor) : mDescriptor(aDescriptor) {
  struct stat theStat;
  if (fstat(aDescriptor, &theStat) != 0) {
    mfEnded = true;
    return;
  }
  mfSocket = S_ISSOCK(theStat.st_mode);
  if (!S_ISFIFO(theStat.st_mode) && !S_ISCHR(theStat.st_mode)) {
    return;
  }
  // O_NONBLOCK on the descriptor itself would hit the shell and whoever else shares it.
  char thePath[40];
  snprintf(thePath, sizeof(thePath), "/proc/self/fd/%d", aDescriptor);
  int theOwn = open(thePath, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  mfOwned = theOwn >= 0;
  mfMayBlock = theOwn < 0;
  mDescriptor = mfOwned ? theOwn : aDescriptor;
}

StandardOutput::~StandardOutput() {
  if (mfOwned) {
    close(mDescriptor);
  }
}

long StandardOutput::WriteSome(const char* aBytes, size_t aLength) {
  if (mfSocket) {
    return send(mDescriptor, aBytes, aLength, MSG_DONTWAIT | MSG_NOSIGNAL);
  }
  if (mfMayBlock) {
    struct pollfd thePoll = {mDescriptor, POLLOUT, 0};
    if (poll(&thePoll, 1, 0) != 1) {
      errno = EAGAIN;
      return -1;
    }
    aLength = aLength < PIPE_BUF ? aLength : PIPE_BUF;
  }
  return write(mDescriptor, aBytes, aLength);
}

size_t StandardOutput::Write(const char* aBytes, size_t aLength) {
  size_t theDone = 0;
  while (theDone < aLength && !mfEnded) {
    long theCount = WriteSome(aBytes + theDone, aLength - theDone);
    if (theCount > 0) {
      theDone += static_cast<size_t>(theCount);
    } else if (theCount == 0 || errno == EAGAIN || errno == ENOSPC || errno == EDQUOT || errno == EFBIG) {
      break;
    } else if (errno != EINTR) {
      mfEnded = true;
    }
  }
  return theDone;
}

void StandardOutput::Wait(int aMilliseconds) {
  struct pollfd thePoll = {mDescriptor, POLLOUT, 0};
  struct stat theStat;
  // A full disk: poll calls a regular file always ready.
  bool fRegular = fstat(mDescriptor, &theStat) == 0 && S_ISREG(theStat.st_mode);
  poll(&thePoll, fRegular ? 0 : 1, aMilliseconds);
}
