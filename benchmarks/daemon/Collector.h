#ifndef _BENCHMARKS_DAEMON_COLLECTOR_H
#define _BENCHMARKS_DAEMON_COLLECTOR_H

#include <netinet/in.h>
#include <stdint.h>

#include <string>

// A process that takes every connection to a port of the loopback interface and reads whatever comes. It ends
// with this one.
class Collector {
 public:
  static Collector& The();  // started by the first call

  const sockaddr_in& Address() const { return mAddress; }
  std::string Port() const { return std::to_string(ntohs(mAddress.sin_port)); }

  // Line ends that have been read, of all connections.
  uint64_t Lines() const { return __atomic_load_n(mLines, __ATOMIC_ACQUIRE); }
  // Waits until so many have been; false when they do not come.
  bool WaitForLines(uint64_t aCount) const;
  // Waits until no more come.
  void Settle() const;

 private:
  Collector();
  [[noreturn]] void Run(int aListener);

  sockaddr_in mAddress = {};
  uint64_t* mLines;  // in memory of both processes
};

// The address of a port that is taken, and where nobody listens.
const sockaddr_in& ClosedPort();

// The loopback interface, with a port that the system chooses; bound to a new socket, which is returned.
int BindLoopback(sockaddr_in* anAddress);

// Says why and ends the program.
[[noreturn]] void Impossible(const char* aReason);

#endif
