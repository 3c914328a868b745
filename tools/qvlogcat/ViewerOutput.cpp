#include "tools/qvlogcat/ViewerOutput.h"

#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include "tools/qvlogcat/StopSignals.h"

static const size_t kLarge = 65536;           // bytes
static const size_t kKeptCapacity = 1048576;  // bytes; more is given back after a long line

void ViewerOutput::End(int anError) {
  mfEnded = true;
  mError = anError == EPIPE ? 0 : anError;
}

void ViewerOutput::FlushIfLarge() {
  if (mBuffer.size() >= kLarge) {
    Flush();
  }
}

void ViewerOutput::Flush() {
  size_t theDone = 0;
  while (theDone < mBuffer.size() && !mfEnded) {
    ssize_t theCount = write(mDescriptor, mBuffer.data() + theDone, mBuffer.size() - theDone);
    if (theCount >= 0) {
      theDone += static_cast<size_t>(theCount);
    } else if (errno == EAGAIN) {
      struct pollfd thePoll = {mDescriptor, POLLOUT, 0};
      poll(&thePoll, 1, -1);
    } else if (errno != EINTR) {
      End(errno);
    }
    if (theDone < mBuffer.size() && StopSignals_HasCome()) {
      End(0);
    }
  }
  mBuffer.clear();
  if (mBuffer.capacity() > kKeptCapacity) {
    mBuffer.shrink_to_fit();
  }
}

void ViewerOutput::Rest(int aMilliseconds) {
  struct pollfd thePoll = {mDescriptor, 0, 0};
  if (poll(&thePoll, 1, aMilliseconds) > 0 && (thePoll.revents & (POLLERR | POLLNVAL)) != 0) {
    End(0);
  }
}
