#include "tools/logstream/LogStreamHeader.h"

static constexpr std::string_view kProtocolLine = "PROTOCOL: qvLogd-1.0";
static constexpr std::string_view kUUIDKey = "UUID: ";
static constexpr std::string_view kLostKey = "LOST: ";
static constexpr std::string_view kNameKey = "NAME: ";
static constexpr std::string_view kUUIDForm = "00000000-0000-0000-0000-000000000000";
static constexpr size_t kMaxDigits = 10;

static bool LogStreamHeader_S_BeginsWith(std::string_view aLine, std::string_view aStart) {
  return aLine.compare(0, aStart.size(), aStart) == 0;
}

static bool LogStreamHeader_S_IsUUID(std::string_view aText) {
  if (aText.size() != kUUIDForm.size()) {
    return false;
  }
  for (size_t i = 0; i < aText.size(); ++i) {
    bool theIsHex = (aText[i] >= '0' && aText[i] <= '9') || (aText[i] >= 'a' && aText[i] <= 'f');
    if (kUUIDForm[i] == '-' ? aText[i] != '-' : !theIsHex) {
      return false;
    }
  }
  return true;
}

bool LogStreamHeader_ParseLost(std::string_view aLine, uint32* aCount) {
  if (!LogStreamHeader_S_BeginsWith(aLine, kLostKey)) {
    return false;
  }
  std::string_view theDigits = aLine.substr(kLostKey.size());
  if (theDigits.empty() || theDigits.size() > kMaxDigits || (theDigits[0] == '0' && theDigits.size() > 1)) {
    return false;
  }
  uint64 theCount = 0;
  for (char theDigit : theDigits) {
    if (theDigit < '0' || theDigit > '9') {
      return false;
    }
    theCount = theCount * 10 + static_cast<uint64>(theDigit - '0');
  }
  *aCount = static_cast<uint32>(theCount);
  return theCount <= UINT32_MAX;
}

LogStreamHeader::LogStreamHeader(size_t aMaxLength)
    : mMaxLength(aMaxLength), mLength(0), mStep(Step_Start), mfHasReport(false), mLost(0), mFault(nullptr) {}

LogStreamHeader::Result LogStreamHeader::Next(bool afFits, Step aNext, const char* aFault) {
  if (!afFits) {
    mFault = aFault;
    return Result_None;
  }
  mStep = aNext;
  return Result_More;
}

LogStreamHeader::Result LogStreamHeader::Take(std::string_view aLine) {
  switch (mStep) {
    case Step_Start:
      mLength = 1;
      return Next(aLine.empty(), Step_ReportOrProtocol,
                  "the connection header does not begin with an empty line");
    case Step_ReportOrProtocol:
      if (LogStreamHeader_ParseLost(aLine, &mLost)) {
        mfHasReport = true;
        mStep = Step_AfterReport;
        return Result_More;
      }
      break;
    case Step_AfterReport:
      mLength = 1;
      return Next(aLine.empty(), Step_Protocol, "no connection header behind the loss report at the start");
    default:
      break;
  }
  mLength += aLine.size() + 1;
  if (mLength > mMaxLength) {
    return Next(false, mStep, "the connection header is longer than the limit");
  }
  switch (mStep) {
    case Step_UUID:
      mUUID = aLine.size() > kUUIDKey.size() ? aLine.substr(kUUIDKey.size()) : std::string_view();
      return Next(LogStreamHeader_S_BeginsWith(aLine, kUUIDKey) && LogStreamHeader_S_IsUUID(mUUID), Step_Lost,
                  "the connection header has no valid UUID line in its place");
    case Step_Lost:
      return TakeLost(aLine);
    case Step_Name:
      return TakeName(aLine);
    default:
      return Next(aLine == kProtocolLine, Step_UUID,
                  "the connection header has no \"PROTOCOL: qvLogd-1.0\" line in its place");
  }
}

LogStreamHeader::Result LogStreamHeader::TakeLost(std::string_view aLine) {
  uint32 theLost = 0;
  bool theFits = LogStreamHeader_ParseLost(aLine, &theLost);
  if (theFits && mfHasReport && theLost != mLost) {
    return Next(false, mStep, "the connection header's count differs from the loss report before it");
  }
  mLost = theLost;
  return Next(theFits, Step_Name, "the connection header has no valid LOST line in its place");
}

LogStreamHeader::Result LogStreamHeader::TakeName(std::string_view aLine) {
  std::string theTail = "(log started, " + std::to_string(mLost) + " logs previously lost)";
  bool theFits = LogStreamHeader_S_BeginsWith(aLine, kNameKey) &&
                 aLine.size() >= kNameKey.size() + theTail.size() &&
                 aLine.substr(aLine.size() - theTail.size()) == theTail;
  if (!theFits) {
    return Next(false, mStep, "the connection header has no valid NAME line in its place");
  }
  mProcess = aLine.substr(kNameKey.size(), aLine.size() - kNameKey.size() - theTail.size());
  return Result_Complete;
}
