// Watched.h - what the collector's loop waits for.
#ifndef QVLOGD_WATCHED_H
#define QVLOGD_WATCHED_H

enum WatchedKind { WatchedKind_Listener, WatchedKind_Signals, WatchedKind_Connection, WatchedKind_Output };

// A descriptor in the loop; the loop finds the object again by its address.
class Watched {
 public:
  Watched(WatchedKind aKind, int aDescriptor) : mKind(aKind), mDescriptor(aDescriptor) {}
  virtual ~Watched() = default;

  WatchedKind Kind() const { return mKind; }
  int Descriptor() const { return mDescriptor; }

 private:
  WatchedKind mKind;
  int mDescriptor;
};

#endif
