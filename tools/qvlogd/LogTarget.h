// LogTarget.h - what the writing thread of LogOutput writes to.
#ifndef QVLOGD_LOGTARGET_H
#define QVLOGD_LOGTARGET_H

#include <stddef.h>

#include <string>

class LogTarget {
 public:
  virtual ~LogTarget() = default;

  // One line of text in aError on failure. Before everything else; there need not be a second time.
  virtual bool Open(std::string* aError) {
    (void)aError;
    return true;
  }
  // Writes what it can of aBytes, which end with a line end, and returns how many bytes are done with. When
  // that is not all, the next call hands in the rest again, from there on.
  virtual size_t Write(const char* aBytes, size_t aLength) = 0;
  // Waits until trying again may help, at most aMilliseconds.
  virtual void Wait(int aMilliseconds) = 0;
  // Nothing can be written any more, whatever happens.
  virtual bool HasEnded() const { return false; }
  // Another program has renamed the file: starts a new one.
  virtual void Reopen() {}
  // The last call: what was written of a line that is not done with is taken back where that is possible.
  virtual void Close() {}
};

#endif
