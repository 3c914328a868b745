// Signals.h - the signals that the collector obeys, as a descriptor of its loop.
//
// To be made before any thread, so that no thread is interrupted by them. A shell may have started the
// program with some of them ignored; from here on they count.
#ifndef QVLOGD_SIGNALS_H
#define QVLOGD_SIGNALS_H

#include "tools/qvlogd/Watched.h"

class Signals : public Watched {
 public:
  Signals();
  ~Signals() override;
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  // The number of a signal that has come; 0: none.
  int Next();
};

#endif
