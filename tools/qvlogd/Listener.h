// Listener.h - a socket that takes connections: opened here, or inherited from the service manager.
#ifndef QVLOGD_LISTENER_H
#define QVLOGD_LISTENER_H

#include <memory>
#include <string>
#include <vector>

#include "tools/qvlogd/Watched.h"

class Listener : public Watched {
 public:
  // Owns the descriptor.
  Listener(int aDescriptor, bool afInherited)
      : Watched(WatchedKind_Listener, aDescriptor), mfInherited(afInherited) {}
  ~Listener() override;
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  bool IsInherited() const { return mfInherited; }
  // ADDR:PORT with the port that the system has chosen for port 0; [ADDR]:PORT for IPv6, the path of a local
  // socket.
  std::string Name() const;
  // The next connection, or -1 with errno when there is none or it cannot be had.
  int Accept();

 private:
  bool mfInherited;
};

using Listeners = std::vector<std::unique_ptr<Listener>>;

// Opens ADDR:PORT; ADDR is an address, a name or [ADDR] for IPv6, empty for the loopback address. Returns
// false with one line of text in aError. An address that is not a loopback address needs afAllowRemote.
bool Listener_Open(const std::string& aAddress, bool afAllowRemote, Listeners* aListeners,
                   std::string* aError);

// Takes over the sockets that the service manager has opened (LISTEN_PID, LISTEN_FDS), and removes the two
// variables. None is right; a descriptor that is no listening stream socket, or one that needs afAllowRemote,
// is an error.
bool Listener_Inherit(bool afAllowRemote, Listeners* aListeners, std::string* aError);

#endif
