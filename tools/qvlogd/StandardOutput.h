// StandardOutput.h - writes to a terminal, a pipe, a socket or a file that somebody else has opened, without
// ever waiting for a reader inside a write.
#ifndef QVLOGD_STANDARDOUTPUT_H
#define QVLOGD_STANDARDOUTPUT_H

#include "tools/qvlogd/LogTarget.h"

class StandardOutput : public LogTarget {
 public:
  // aDescriptor stays open and its flags stay as they are: other processes share them.
  explicit StandardOutput(int aDescriptor);
  ~StandardOutput() override;
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  size_t Write(const char* aBytes, size_t aLength) override;
  void Wait(int aMilliseconds) override;
  bool HasEnded() const override { return mfEnded; }  // the reader has gone

 private:
  long WriteSome(const char* aBytes, size_t aLength);

  int mDescriptor;  // a non-blocking description of our own, or aDescriptor
  bool mfOwned = false;
  bool mfSocket = false;
  bool mfMayBlock = false;  // written in small pieces, and only when poll promises room
  bool mfEnded = false;
};

#endif
