// LastLines.h - the last lines of what is printed.
#ifndef QVLOGCAT_LASTLINES_H
#define QVLOGCAT_LASTLINES_H

#include <deque>
#include <string>

#include "qvOS/qvTypes.h"

class LastLines {
 public:
  static constexpr size_t kMaxBytes = 67108864;  // of all lines; the oldest go first

  explicit LastLines(uint64 aCount) : mCount(aCount) {}

  void Add(const std::string& aLine);
  bool IsFull() const { return mfDropped || mLines.size() >= mCount; }
  void Clear();
  // Appends the oldest line to aText and removes it; false when there is none.
  bool TakeOldest(std::string& aText);

 private:
  void DropOldest();

  uint64 mCount;
  std::deque<std::string> mLines;
  size_t mBytes = 0;
  bool mfDropped = false;
};

#endif
