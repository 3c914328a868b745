// CollectedLines.h - a sink of the viewer's readers that remembers the lines.
#ifndef TESTS_SUPPORT_COLLECTEDLINES_H
#define TESTS_SUPPORT_COLLECTEDLINES_H

#include <string>

#include "tools/qvlogcat/LineCutter.h"

class CollectedLines : public LineSink {
 public:
  void BeginFile(int64 aLatest, bool afMiddle) override {
    mLatest = aLatest;
    mText += afMiddle ? "(middle)" : "(file)";
  }
  bool TakeLine(std::string_view aLine) override {
    mText.append(aLine).append("|");
    ++mCount;
    return WantsMore();
  }
  bool WantsMore() const override { return mCount < mLimit; }

  // What has come since the last call: each line with '|' behind it, "(file)" or "(middle)" where one begins.
  std::string Take() {
    std::string theText;
    theText.swap(mText);
    return theText;
  }

  size_t mLimit = static_cast<size_t>(-1);  // no more lines are wanted then
  size_t mCount = 0;
  int64 mLatest = 0;

 private:
  std::string mText;
};

#endif
