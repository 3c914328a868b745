#include "tools/qvlogcat/LastLines.h"

void LastLines::DropOldest() {
  mBytes -= mLines.front().size();
  mLines.pop_front();
}

void LastLines::Add(const std::string& aLine) {
  mLines.push_back(aLine);
  mBytes += aLine.size();
  while (mLines.size() > mCount || (mBytes > kMaxBytes && mLines.size() > 1)) {
    DropOldest();
    mfDropped = true;
  }
}

void LastLines::Clear() {
  mLines.clear();
  mBytes = 0;
  mfDropped = false;
}

bool LastLines::TakeOldest(std::string& aText) {
  if (mLines.empty()) {
    return false;
  }
  aText += mLines.front();
  DropOldest();
  return true;
}
