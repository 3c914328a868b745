#include "tools/qvlogd/Signals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <initializer_list>

static int Signals_S_Open() {
  signal(SIGPIPE, SIG_IGN);
  sigset_t theSet;
  sigemptyset(&theSet);
  for (int theSignal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) {
    signal(theSignal, SIG_DFL);
    sigaddset(&theSet, theSignal);
  }
  sigprocmask(SIG_BLOCK, &theSet, nullptr);
  return signalfd(-1, &theSet, SFD_NONBLOCK | SFD_CLOEXEC);
}

Signals::Signals() : Watched(WatchedKind_Signals, Signals_S_Open()) {}

Signals::~Signals() { close(Descriptor()); }

int Signals::Next() {
  struct signalfd_siginfo theInfo;
  ssize_t theCount = read(Descriptor(), &theInfo, sizeof(theInfo));
  return theCount == static_cast<ssize_t>(sizeof(theInfo)) ? static_cast<int>(theInfo.ssi_signo) : 0;
}
