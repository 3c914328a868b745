// StalledTarget.h - takes nothing until the test releases it, then everything.
#ifndef TESTS_TOOLS_QVLOGD_STALLEDTARGET_H
#define TESTS_TOOLS_QVLOGD_STALLEDTARGET_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "tools/qvlogd/LogTarget.h"

// What the test holds; lives longer than the target.
class TargetControl {
 public:
  void Release() {
    std::lock_guard<std::mutex> theLock(mMutex);
    mfReleased = true;
    mChanged.notify_all();
  }
  // Waits until the writer has come with its first block.
  void WaitForWriter() {
    std::unique_lock<std::mutex> theLock(mMutex);
    mChanged.wait(theLock, [&] { return mfAsked; });
  }
  std::string Written() {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mWritten;
  }

 private:
  friend class StalledTarget;
  std::mutex mMutex;
  std::condition_variable mChanged;
  bool mfReleased = false;
  bool mfAsked = false;
  std::string mWritten;
};

class StalledTarget : public LogTarget {
 public:
  explicit StalledTarget(TargetControl& aControl) : mControl(aControl) {}

  size_t Write(const char* aBytes, size_t aLength) override {
    std::lock_guard<std::mutex> theLock(mControl.mMutex);
    mControl.mfAsked = true;
    mControl.mChanged.notify_all();
    if (!mControl.mfReleased) {
      return 0;
    }
    mControl.mWritten.append(aBytes, aLength);
    return aLength;
  }
  void Wait(int aMilliseconds) override {
    std::unique_lock<std::mutex> theLock(mControl.mMutex);
    mControl.mChanged.wait_for(theLock, std::chrono::milliseconds(aMilliseconds),
                               [&] { return mControl.mfReleased; });
  }

 private:
  TargetControl& mControl;
};

#endif
