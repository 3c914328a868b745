#include "Collector.h"

#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

static constexpr int kSettleMs = 20;
static constexpr int kWaitLimitMs = 5000;

void Impossible(const char* aReason) {
  perror(aReason);
  exit(1);
}

int BindLoopback(sockaddr_in* anAddress) {
  anAddress->sin_family = AF_INET;
  anAddress->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  anAddress->sin_port = 0;
  socklen_t theLength = sizeof(*anAddress);
  sockaddr* theAddress = reinterpret_cast<sockaddr*>(anAddress);
  int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (bind(theSocket, theAddress, theLength) != 0 || getsockname(theSocket, theAddress, &theLength) != 0) {
    Impossible("bind");
  }
  return theSocket;
}

const sockaddr_in& ClosedPort() {
  static sockaddr_in sAddress = {};
  static const int sSocket = BindLoopback(&sAddress);  // stays open, so that nobody else gets the port
  (void)sSocket;
  return sAddress;
}

Collector& Collector::The() {
  static Collector sCollector;
  return sCollector;
}

Collector::Collector() {
  void* theMemory = mmap(nullptr, sizeof(*mLines), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (theMemory == MAP_FAILED) {
    Impossible("mmap");
  }
  mLines = static_cast<uint64_t*>(theMemory);
  int theListener = BindLoopback(&mAddress);
  if (listen(theListener, SOMAXCONN) != 0) {
    Impossible("listen");
  }
  pid_t theParent = getpid();
  pid_t theChild = fork();
  if (theChild == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != theParent) {
      _exit(1);
    }
    Run(theListener);
  }
  if (theChild == -1) {
    Impossible("fork");
  }
  close(theListener);
}

void Collector::Run(int aListener) {
  static char sBytes[1 << 18];
  std::vector<pollfd> thePolls = {{aListener, POLLIN, 0}};
  for (;;) {
    poll(thePolls.data(), thePolls.size(), -1);
    for (size_t i = 1; i < thePolls.size(); ++i) {
      if (thePolls[i].revents == 0) {
        continue;
      }
      ssize_t theCount = recv(thePolls[i].fd, sBytes, sizeof(sBytes), MSG_DONTWAIT);
      if (theCount > 0) {
        __atomic_add_fetch(mLines, std::count(sBytes, sBytes + theCount, '\n'), __ATOMIC_RELEASE);
      } else {
        close(thePolls[i].fd);
        thePolls[i].fd = -1;  // which poll passes over
      }
    }
    if (thePolls[0].revents != 0) {
      thePolls.push_back({accept(aListener, nullptr, nullptr), POLLIN, 0});
    }
  }
}

bool Collector::WaitForLines(uint64_t aCount) const {
  auto theLimit = std::chrono::steady_clock::now() + std::chrono::milliseconds(kWaitLimitMs);
  while (Lines() < aCount) {
    if (std::chrono::steady_clock::now() > theLimit) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

void Collector::Settle() const {
  uint64_t theLines;
  do {
    theLines = Lines();
    std::this_thread::sleep_for(std::chrono::milliseconds(kSettleMs));
  } while (Lines() != theLines);
}
