#include "faults/NumberedStream.h"

#include <stdlib.h>

#include <regex>

#include "faults/LoggingProcess.h"

namespace {

constexpr char kHeaderEnd[] = " logs previously lost)\n";
constexpr char kModule[] = "|DEFAULT    ";
constexpr char kStart[] = "message ";
constexpr size_t kBeforeModule = 23;  // "I 14:03:07:042|b6f12740"

const std::regex& HeaderPattern() {
  static const std::regex sPattern(
      "(?:\nLOST: ([0-9]+)\n)?\nPROTOCOL: qvLogd-1\\.0\nUUID: ([0-9a-f-]{36})\nLOST: ([0-9]+)\n"
      "NAME: [^\n]*\\(log started, ([0-9]+) logs previously lost\\)\n");
  return sPattern;
}

}  // namespace

void NumberedStream::SetFault(const std::string& aFault) {
  if (mFault.empty()) {
    mFault = aFault;
  }
}

void NumberedStream::BeginConnection() {
  ++mConnections;
  mRest.clear();
  mfInHeader = true;
}

void NumberedStream::EndConnection() {
  mTorn += !mRest.empty();
  mRest.clear();
}

void NumberedStream::Take(const std::string& aBytes) {
  mRest += aBytes;
  if (mfInHeader) {
    TakeHeader();
  }
  if (mfInHeader) {
    return;
  }
  size_t theStart = 0;
  size_t theEnd;
  while ((theEnd = mRest.find('\n', theStart)) != std::string::npos) {
    TakeLine(std::string_view(mRest).substr(theStart, theEnd - theStart));
    theStart = theEnd + 1;
  }
  mRest.erase(0, theStart);
}

void NumberedStream::TakeHeader() {
  const size_t theEnd = mRest.find(kHeaderEnd);
  if (theEnd == std::string::npos) {
    return;
  }
  const std::string theHeader = mRest.substr(0, theEnd + sizeof(kHeaderEnd) - 1);
  mRest.erase(0, theHeader.size());
  mfInHeader = false;
  std::smatch theParts;
  if (!std::regex_match(theHeader, theParts, HeaderPattern())) {
    SetFault("no header: " + theHeader);
    return;
  }
  const std::string theReport = theParts[1].matched ? theParts[1].str() : "0";
  if (theParts[3] != theReport || theParts[4] != theReport) {
    SetFault("a header with another count than the report before it: " + theHeader);
  }
  if (!mUUID.empty() && mUUID != theParts[2]) {
    SetFault("another sender: " + theHeader);
  }
  mUUID = theParts[2];
  mTold += strtoull(theReport.c_str(), nullptr, 10);
}

// A message, with the beginnings of lost ones before it: these have no line end.
void NumberedStream::TakeLine(std::string_view aLine) {
  const size_t theModule = aLine.rfind(kModule);
  const std::string theLine(aLine);
  if (theModule == std::string_view::npos || theModule < kBeforeModule ||
      theLine.compare(theModule - kBeforeModule, 2, "I ") != 0) {
    SetFault("no message: " + theLine);
    return;
  }
  const std::string theText = theLine.substr(theModule + sizeof(kModule) - 1) + "\n";
  const uint64_t theNumber = strtoull(theText.c_str() + sizeof(kStart) - 1, nullptr, 10);
  if (theText != LoggingProcess::Text(theNumber) || theNumber <= mLast) {
    SetFault("behind message " + std::to_string(mLast) + ": " + theLine);
    return;
  }
  const bool theIsTorn = theModule > kBeforeModule;
  if (theIsTorn && (aLine[0] != 'I' || theNumber == mLast + 1)) {
    SetFault("text that no lost message has left: " + theLine);
  }
  mTorn += theIsTorn;
  mMissing += theNumber - mLast - 1;
  mLast = theNumber;
  ++mWhole;
}
