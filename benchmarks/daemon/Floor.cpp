// What any logger has to do: hand the finished line to the system; make a socket and knock.
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Workload.h"

static constexpr char kLine[] =
    "I 14:03:07:042|7f2a4c00|DEFAULT    tuner 2 locked to 506000 kHz, quality 87 %\n";

static const sockaddr* AddressOf(const sockaddr_in& anAddress) {
  return reinterpret_cast<const sockaddr*>(&anAddress);
}

static int ConnectToCollector() {
  int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(theSocket, AddressOf(Collector::The().Address()), sizeof(sockaddr_in)) != 0) {
    Impossible("connect");
  }
  int theOn = 1;
  ioctl(theSocket, FIONBIO, &theOn);
  return theSocket;
}

static const Contender sSend(kStatementRow, "floor: send", [](benchmark::State& aState) {
  int theSocket = ConnectToCollector();
  TimeStatements(aState, [theSocket](const Statement&) {
    benchmark::DoNotOptimize(send(theSocket, kLine, sizeof(kLine) - 1, MSG_NOSIGNAL));
  });
  close(theSocket);
});

static const Contender sKnock(kNobodyRow, "floor: socket, connect, close", [](benchmark::State& aState) {
  const sockaddr_in& theAddress = ClosedPort();
  for (auto _ : aState) {
    int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(theSocket, AddressOf(theAddress), sizeof(theAddress)) == 0) {
      aState.SkipWithError("somebody listens");
      break;
    }
    close(theSocket);
  }
});
