#include "tools/qvlogd/ServiceNotifier.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "qvraTools/qvConvert.h"
#include "tools/logstream/Clock.h"

// What the watchdog asks for, in microseconds; 0: nothing, or not of this process.
static int64 ServiceNotifier_S_ReadWatchdog() {
  const char* thePid = getenv("WATCHDOG_PID");
  const char* theInterval = getenv("WATCHDOG_USEC");
  int32 theNumber = 0;
  qvint64_t theMicroseconds = 0;
  if (thePid != nullptr &&
      (qvConvert_strtoint32(thePid, &theNumber) != kqvConvertError_None || theNumber != getpid())) {
    return 0;
  }
  if (theInterval == nullptr || qvConvert_strtoint64(theInterval, &theMicroseconds) != kqvConvertError_None ||
      theMicroseconds < 0) {
    return 0;
  }
  return theMicroseconds;
}

ServiceNotifier::ServiceNotifier() {
  const char* thePath = getenv("NOTIFY_SOCKET");
  size_t theLength = thePath != nullptr ? strlen(thePath) : 0;
  if (theLength > 1 && theLength < sizeof(mAddress.sun_path) && (*thePath == '/' || *thePath == '@')) {
    mSocket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    mAddress.sun_family = AF_UNIX;
    memcpy(mAddress.sun_path, thePath, theLength);
    mAddressLength = static_cast<socklen_t>(offsetof(struct sockaddr_un, sun_path) + theLength);
    if (*thePath == '@') {
      mAddress.sun_path[0] = '\0';  // a name outside the file system
    }
    mInterval = ServiceNotifier_S_ReadWatchdog() / 2;
    mNextBeat = mInterval > 0 ? Clock_Steady() + mInterval : INT64_MAX;
  }
  unsetenv("NOTIFY_SOCKET");
  unsetenv("WATCHDOG_PID");
  unsetenv("WATCHDOG_USEC");
}

ServiceNotifier::~ServiceNotifier() {
  if (mSocket >= 0) {
    close(mSocket);
  }
}

void ServiceNotifier::Beat(int64 aNow) {
  if (aNow >= mNextBeat) {
    Send("WATCHDOG=1");
    mNextBeat = aNow + mInterval;
  }
}

void ServiceNotifier::Send(const char* aText) {
  if (mSocket >= 0) {
    sendto(mSocket, aText, strlen(aText), MSG_NOSIGNAL, reinterpret_cast<struct sockaddr*>(&mAddress),
           mAddressLength);
  }
}
