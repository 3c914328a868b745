// ServiceNotifier.h - tells the service manager how the program is: ready, alive, about to stop.
//
// The service manager names a datagram socket in NOTIFY_SOCKET; without it nothing is sent anywhere. In
// WATCHDOG_USEC it says how often it wants a sign of life (for the process WATCHDOG_PID, if that is set).
#ifndef QVLOGD_SERVICENOTIFIER_H
#define QVLOGD_SERVICENOTIFIER_H

#include <sys/socket.h>
#include <sys/un.h>

#include "qvOS/qvTypes.h"

class ServiceNotifier {
 public:
  // Reads the variables and removes them from the environment.
  ServiceNotifier();
  ~ServiceNotifier();
  ServiceNotifier(const ServiceNotifier&) = delete;
  ServiceNotifier& operator=(const ServiceNotifier&) = delete;

  void Ready() { Send("READY=1"); }
  void Stopping() { Send("STOPPING=1"); }
  // Sends the sign of life if it is due by the steady clock.
  void Beat(int64 aNow);
  // When the next one is due, by the steady clock; INT64_MAX without a watchdog.
  int64 NextBeat() const { return mNextBeat; }

 private:
  void Send(const char* aText);

  int mSocket = -1;
  struct sockaddr_un mAddress = {};
  socklen_t mAddressLength = 0;
  int64 mInterval = 0;  // microseconds between two signs of life
  int64 mNextBeat = INT64_MAX;
};

#endif
