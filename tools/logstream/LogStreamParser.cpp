#include "tools/logstream/LogStreamParser.h"

#include <vector>

#include "tools/logstream/LogLinePrefix.h"
#include "tools/logstream/LogLineSplitter.h"
#include "tools/logstream/LogMessage.h"
#include "tools/logstream/LogStreamHeader.h"

struct LogStreamParser::State {
  using Line = LogLineSplitter::Line;

  State(const LogStreamLimits& aLimits, LogRecordSink& aSink)
      : mSink(aSink),
        mSplitter(aLimits.mLineLength),
        mHeader(aLimits.mHeaderLength),
        mMessage(aLimits.mLineLength) {}

  void TakeLine(const Line& aLine);
  void TakeStartLine(const Line& aLine);
  void GiveUpHeader();
  bool TakeReport(const Line& aLine);
  void TakeHeldBlank();
  void TakeMessageLine(const Line& aLine);
  size_t TakeMessagePart(const Line& aLine, std::string_view aText, bool afMidLine);

  void HandOverMessage();
  void HandOverEvent(LogRecordKind aKind, uint64 aCount, int64 aTime);
  void Flush();
  uint64 WaitingFrom() const;
  void SetFault(uint64 anOffset, const char* aFault);

  LogRecordSink& mSink;
  LogLineSplitter mSplitter;

  LogStreamHeader mHeader;
  bool mfAtStart = true;          // the lines so far may become the header
  std::vector<Line> mStartLines;  // these
  bool mfHasHeader = false;
  std::string mProcess;
  std::string mUUID;

  bool mfHasBlank = false;  // the latest line is empty and may be the first of a loss report
  Line mBlank;
  bool mfMidLine = false;  // the beginning of the line to come has been taken already
  LogMessage mMessage;

  const char* mFault = nullptr;
  uint64 mFaultOffset = 0;
};

void LogStreamParser::State::SetFault(uint64 anOffset, const char* aFault) {
  if (mFault == nullptr) {
    mFault = aFault;
    mFaultOffset = anOffset;
  }
}

// --- What a line is

// Calls itself once at most: a header that was given up leaves no header to give up.
// NOLINTNEXTLINE(misc-no-recursion)
void LogStreamParser::State::TakeLine(const Line& aLine) {
  if (mfAtStart) {
    TakeStartLine(aLine);
    return;
  }
  if (mfMidLine) {
    TakeMessageLine(aLine);
    return;
  }
  if (mfHasBlank) {
    if (TakeReport(aLine)) {
      return;
    }
    TakeHeldBlank();
  }
  if (aLine.mLength == 0) {
    mfHasBlank = true;
    mBlank = aLine;
    return;
  }
  TakeMessageLine(aLine);
}

// NOLINTNEXTLINE(misc-no-recursion)
void LogStreamParser::State::TakeStartLine(const Line& aLine) {
  LogStreamHeader::Result theResult = LogStreamHeader::Result_None;
  if (!aLine.mfCut) {
    theResult = mHeader.Take(mSplitter.View(aLine.mOffset, aLine.mLength));
  }
  if (theResult == LogStreamHeader::Result_None) {
    SetFault(aLine.mOffset, mHeader.Fault());
    GiveUpHeader();
    TakeLine(aLine);
    return;
  }
  mStartLines.push_back(aLine);
  if (theResult == LogStreamHeader::Result_Complete) {
    mfAtStart = false;
    mfHasHeader = true;
    mProcess = mHeader.Process();
    mUUID = mHeader.UUID();
    HandOverEvent(LogRecordKind_Connect, mHeader.Lost(), mStartLines.front().mTime);
    mStartLines = std::vector<Line>();
  }
}

// What looked like a header is lines like others.
// NOLINTNEXTLINE(misc-no-recursion)
void LogStreamParser::State::GiveUpHeader() {
  mfAtStart = false;
  std::vector<Line> theLines;
  theLines.swap(mStartLines);
  for (const Line& theLine : theLines) {
    TakeLine(theLine);
  }
}

// Whether the line completes a loss report, of which the empty line is held.
bool LogStreamParser::State::TakeReport(const Line& aLine) {
  std::string_view theText = mSplitter.View(aLine.mOffset, aLine.mLength);
  uint32 theCount = 0;
  if (!aLine.mfCut && LogStreamHeader_ParseLost(theText, &theCount)) {
    mfHasBlank = false;
    HandOverMessage();
    HandOverEvent(LogRecordKind_Lost, theCount, mBlank.mTime);
    return true;
  }
  if (theText == "PROTOCOL: qvLogd-1.0") {
    SetFault(mBlank.mOffset, "a second connection header");
  }
  return false;
}

void LogStreamParser::State::TakeHeldBlank() {
  mfHasBlank = false;
  TakeMessageLine(mBlank);
}

// --- Messages

// Splits the line where messages begin in it: at its start, and behind a message that its sender left torn.
void LogStreamParser::State::TakeMessageLine(const Line& aLine) {
  std::string_view theText = mSplitter.View(aLine.mOffset, aLine.mLength);
  bool theMidLine = mfMidLine;
  mfMidLine = aLine.mfCut;
  if (theMidLine && theText.empty()) {
    return;  // the line end of a line that was handed over without it
  }
  Line thePart = aLine;
  for (;;) {
    size_t theTaken = TakeMessagePart(thePart, theText, theMidLine);
    if (theTaken == theText.size()) {
      return;
    }
    theText.remove_prefix(theTaken);
    thePart.mOffset += theTaken;
    thePart.mLength -= theTaken;
    thePart.mTime = mSplitter.TimeInside(aLine, thePart.mOffset);
    theMidLine = true;
    SetFault(thePart.mOffset, "a message begins in the middle of a line; the one before was cut short");
  }
}

// Takes aText, which is all of aLine, up to where the next message begins in it; returns how much that is.
size_t LogStreamParser::State::TakeMessagePart(const Line& aLine, std::string_view aText, bool afMidLine) {
  LogLinePrefix thePrefix;
  bool theBegins = LogLinePrefix_Parse(aText, &thePrefix) &&
                   (!afMidLine || LogLinePrefix_MayFollow(thePrefix, mMessage.Stamp()));
  LogMessage::Line theLine{aLine.mOffset, aText.size(), 0, aLine.mTime, !theBegins, aLine.mfCut};
  if (theBegins) {
    HandOverMessage();
    mMessage.Begin(aText.data(), thePrefix);
    theLine.mTextStart = thePrefix.mLength;
  } else if (!mMessage.HasBegun()) {
    SetFault(aLine.mOffset, "text before the first message");
    if (!afMidLine) {
      HandOverMessage();
      theLine.mfContinuation = false;
    }
  }
  size_t theNext = LogLinePrefix_Find(aText, theLine.mTextStart, mMessage.Stamp());
  if (theNext != std::string_view::npos) {
    theLine.mLength = theNext;
    theLine.mfPartial = true;
  }
  mMessage.Add(theLine);
  if (mMessage.IsFull() || theLine.mfPartial) {
    HandOverMessage();  // there is no whole message to wait for
  }
  return theLine.mLength;
}

// --- Handing over

void LogStreamParser::State::HandOverMessage() { mMessage.HandOver(mSplitter, mProcess, mUUID, mSink); }

void LogStreamParser::State::HandOverEvent(LogRecordKind aKind, uint64 aCount, int64 aTime) {
  LogRecord theEvent;
  theEvent.mKind = aKind;
  theEvent.mTime = aTime;
  theEvent.mProcess = mProcess;
  theEvent.mUUID = mUUID;
  theEvent.mCount = aCount;
  mSink.Take(theEvent);
}

void LogStreamParser::State::Flush() {
  if (mfAtStart && (!mStartLines.empty() || mSplitter.HasTail())) {
    SetFault(mSplitter.LineStart(), "the connection header is incomplete");
    GiveUpHeader();
  }
  Line theTail;
  if (mSplitter.NextTail(&theTail)) {
    TakeLine(theTail);
  }
  if (mfHasBlank) {
    TakeHeldBlank();
  }
  HandOverMessage();
  mSplitter.Keep(WaitingFrom());
}

uint64 LogStreamParser::State::WaitingFrom() const {
  if (!mStartLines.empty()) {
    return mStartLines.front().mOffset;
  }
  if (mMessage.IsWaiting()) {
    return mMessage.WaitingFrom();
  }
  return mfHasBlank ? mBlank.mOffset : mSplitter.LineStart();
}

// --- The interface

LogStreamParser::LogStreamParser(const LogStreamLimits& aLimits, LogRecordSink& aSink)
    : mState(new State(aLimits, aSink)) {}

LogStreamParser::~LogStreamParser() = default;

void LogStreamParser::Feed(const char* aBytes, size_t aLength, int64 aTime) {
  State& theState = *mState;
  theState.mSplitter.Feed(aBytes, aLength, aTime);
  State::Line theLine;
  while (theState.mSplitter.Next(&theLine)) {
    if (theLine.mfCut) {
      theState.SetFault(theLine.mOffset, "a line is longer than the limit");
    }
    theState.TakeLine(theLine);
  }
  theState.mSplitter.Keep(theState.WaitingFrom());
}

void LogStreamParser::Drain() {
  if (!mState->mSplitter.HasTail()) {
    mState->HandOverMessage();
    mState->mSplitter.Keep(mState->WaitingFrom());
  }
}

void LogStreamParser::Flush() { mState->Flush(); }

void LogStreamParser::Close(int64 aTime) {
  mState->Flush();
  if (mState->mfHasHeader) {
    mState->HandOverEvent(LogRecordKind_Disconnect, 0, aTime);
  } else {
    mState->SetFault(mState->mSplitter.LineStart(), "the stream has no connection header");
  }
}

bool LogStreamParser::IsWaiting() const {
  return mState->WaitingFrom() < mState->mSplitter.LineStart() || mState->mSplitter.HasTail();
}

int64 LogStreamParser::WaitingSince() const {
  if (!mState->mStartLines.empty()) {
    return mState->mStartLines.front().mTime;
  }
  if (mState->mMessage.IsWaiting()) {
    return mState->mMessage.WaitingSince();
  }
  return mState->mfHasBlank ? mState->mBlank.mTime : mState->mSplitter.LineTime();
}

size_t LogStreamParser::WaitingBytes() const {
  return mState->mSplitter.HeldBytes() + mState->mMessage.WaitingBytes();
}

bool LogStreamParser::HasHeader() const { return mState->mfHasHeader; }
const std::string& LogStreamParser::Process() const { return mState->mProcess; }
const std::string& LogStreamParser::UUID() const { return mState->mUUID; }
const char* LogStreamParser::Fault() const { return mState->mFault; }
uint64 LogStreamParser::FaultOffset() const { return mState->mFaultOffset; }
