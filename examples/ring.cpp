// ring.cpp - a logger of the program's own: the last lines of every level stay in memory, and an error writes
// them out. So a device shows what led to an error without writing debug lines all day.
#include <qvLog/qvLogger.h>
#include <stdio.h>

#include <algorithm>

QVLOG_WITH_MODULE_IF(PLAYER, 1);

class RingLogger : public qvLogger {
 public:
  RingLogger() : qvLogger("Ring", true) {
    SetOptions(OPT_NO_CONFIG);  // no section in the settings file
    ChangeLevel(65535);
  }

  // The framework calls all of these under its lock.
  bool BeginLog(qvLogDataEx* aRecord) override {
    mLengths[mNext] = 0;
    GenerateBeginLine(aRecord);
    return true;
  }
  void Append_S(qvLogDataEx*, const char* aBytes, size_t aLength) override {
    size_t theLength = std::min(aLength, kLineSize - mLengths[mNext]);
    std::copy_n(aBytes, theLength, mLines[mNext] + mLengths[mNext]);
    mLengths[mNext] += theLength;
  }
  void EndLog(qvLogDataEx* aRecord) override {
    mNext = (mNext + 1) % kLines;
    if (aRecord->mLevel > QVLOGLEVEL_ERROR) {
      return;
    }
    for (size_t i = 0; i < kLines; ++i) {  // the oldest first
      size_t theLine = (mNext + i) % kLines;
      fwrite(mLines[theLine], 1, mLengths[theLine], stdout);
      mLengths[theLine] = 0;
    }
  }

 private:
  static constexpr size_t kLines = 4;
  static constexpr size_t kLineSize = 120;  // longer lines are cut
  char mLines[kLines][kLineSize];
  size_t mLengths[kLines] = {};
  size_t mNext = 0;  // the line that is being written
};

int main() {
  qvLogger::LockFramework();
  new RingLogger;  // deleted by the framework
  qvLogger::UnlockFramework();
  for (int i = 1; i <= 9; ++i) {
    QV_DEBUG(F("block %d of the stream\n", i));
  }
  QV_ERR(F("decoder gave up\n"));
  QV_DEBUG(F("decoder starts again\n"));
}
