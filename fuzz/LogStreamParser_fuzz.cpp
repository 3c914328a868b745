// However a stream is cut into pieces, the same records come out; and what comes out is what went in, byte by
// byte, in whatever order the bytes, the pauses and the time limits come.
#include "tools/logstream/LogStreamParser.h"

#include <algorithm>
#include <string_view>

#include "FuzzInput.h"

namespace {

// Puts the stream together again and remembers how the records looked.
class Rebuilder : public LogRecordSink {
 public:
  // Its room is that of the last input: to get it from the heap each time takes longer than all the rest.
  void Begin(size_t aMaxLine) {
    mMaxLine = aMaxLine;
    mRecords.clear();
    mStream.clear();
    mHeaderCount = UINT64_MAX;
    mDisconnects = 0;
  }

  void Take(const LogRecord& aRecord) override {
    switch (aRecord.mKind) {
      case LogRecordKind_Line:
        TakeLine(aRecord);
        break;
      case LogRecordKind_Connect:
        FUZZ_REQUIRE(mStream.empty() && aRecord.mUUID.size() == 36);
        mHeaderCount = aRecord.mCount;
        mStream = "\nPROTOCOL: qvLogd-1.0\nUUID: " + std::string(aRecord.mUUID) +
                  "\nLOST: " + std::to_string(aRecord.mCount) + "\nNAME: " + std::string(aRecord.mProcess) +
                  "(log started, " + std::to_string(aRecord.mCount) + " logs previously lost)\n";
        break;
      case LogRecordKind_Lost:
        mStream += "\nLOST: " + std::to_string(aRecord.mCount) + "\n";
        break;
      case LogRecordKind_Disconnect:
        ++mDisconnects;
        break;
      default:
        FUZZ_REQUIRE(false);
    }
    mRecords += static_cast<char>('0' + aRecord.mKind);
    mRecords += aRecord.mfContinuation ? '+' : ':';
    mRecords += aRecord.mfPartial ? '~' : '.';
    mRecords += aRecord.mLevel;
    mRecords.append(reinterpret_cast<const char*>(&aRecord.mCount), sizeof(aRecord.mCount));
    for (std::string_view theField :
         {aRecord.mProcess, aRecord.mUUID, aRecord.mStamp, aRecord.mThread, aRecord.mModule, aRecord.mText}) {
      mRecords.append(theField) += '\n';
    }
  }

  // Whether the records hold aStream, behind a loss report that the header repeats or without one. Line ends
  // behind partial lines cannot be told, so afExactly compares without them.
  bool Holds(std::string_view aStream, bool afExactly) const {
    std::string theReport = "\nLOST: " + std::to_string(mHeaderCount) + "\n";
    bool theIsRepeated = mHeaderCount != UINT64_MAX && aStream.substr(0, theReport.size()) == theReport;
    return IsAlike(aStream, mStream, afExactly) ||
           (theIsRepeated && IsAlike(aStream.substr(theReport.size()), mStream, afExactly));
  }

  std::string mRecords;
  uint64_t mHeaderCount = UINT64_MAX;
  int mDisconnects = 0;

 private:
  void TakeLine(const LogRecord& aRecord) {
    FUZZ_REQUIRE(aRecord.mRaw.size() <= mMaxLine);
    FUZZ_REQUIRE(aRecord.mRaw.size() >= aRecord.mText.size());
    FUZZ_REQUIRE(aRecord.mRaw.substr(aRecord.mRaw.size() - aRecord.mText.size()) == aRecord.mText);
    FUZZ_REQUIRE(aRecord.mRaw.find('\n') == std::string_view::npos);
    mStream.append(aRecord.mRaw);
    if (!aRecord.mfPartial) {
      mStream += '\n';
    }
  }

  static bool IsAlike(std::string_view aText, std::string_view anOther, bool afExactly) {
    if (afExactly) {
      return aText == anOther;
    }
    size_t thePosition = 0;
    for (char theChar : aText) {
      if (theChar == '\n') {
        continue;
      }
      thePosition = std::min(anOther.find_first_not_of('\n', thePosition), anOther.size());
      if (thePosition == anOther.size() || anOther[thePosition++] != theChar) {
        return false;
      }
    }
    return anOther.find_first_not_of('\n', thePosition) == std::string_view::npos;
  }

  size_t mMaxLine = 0;
  std::string mStream;
};

Rebuilder& sWhole = *new Rebuilder;
Rebuilder& sPieces = *new Rebuilder;

}  // namespace

// Takes the stream in one piece.
static void ParseWhole(const std::string& aStream, const LogStreamLimits& aLimits) {
  sWhole.Begin(aLimits.mLineLength);
  LogStreamParser theParser(aLimits, sWhole);
  theParser.Feed(aStream.data(), aStream.size(), 0);
  theParser.Close(0);
  FUZZ_REQUIRE(sWhole.Holds(aStream, true));
  FUZZ_REQUIRE(sWhole.mDisconnects == (theParser.HasHeader() ? 1 : 0));
  FUZZ_REQUIRE((sWhole.mHeaderCount != UINT64_MAX) == theParser.HasHeader());
  FUZZ_REQUIRE(theParser.HasHeader() || theParser.Fault() != nullptr);
  FUZZ_REQUIRE(theParser.FaultOffset() <= aStream.size());
}

// A header in front of any bytes is recognised, and one in which a byte is wrong is not.
static void CheckHeader(const std::string& aStream, uint32_t aLost, bool afWhole, size_t aWrong) {
  static const std::string kUUID = "1a2b3c4d-0000-1000-8000-0123456789ab";
  const std::string theLost = std::to_string(aLost);
  const std::string theHeader = "\nPROTOCOL: qvLogd-1.0\nUUID: " + kUUID + "\nLOST: " + theLost +
                                "\nNAME: box(log started, " + theLost + " logs previously lost)\n";
  std::string theStream = theHeader + aStream;
  if (!afWhole) {
    theStream[aWrong % theHeader.find(" box")] = '#';
  }
  LogStreamLimits theLimits;
  sWhole.Begin(theLimits.mLineLength);
  LogStreamParser theParser(theLimits, sWhole);
  theParser.Feed(theStream.data(), theStream.size(), 0);
  theParser.Close(0);
  FUZZ_REQUIRE(sWhole.Holds(theStream, true));
  FUZZ_REQUIRE(theParser.HasHeader() == afWhole);
  FUZZ_REQUIRE(!afWhole || (theParser.Process() == "box" && theParser.UUID() == kUUID));
  FUZZ_REQUIRE(!afWhole || sWhole.mHeaderCount == aLost);
}

// Takes it in pieces whose lengths the bytes of aCuts tell; with the top bit of a byte there is a pause. The
// piece's bytes are gone after the call, so that a parser that still looks at them is found.
static void ParsePieces(const std::string& aStream, const std::string& aCuts, const LogStreamLimits& aLimits,
                        bool afFlush) {
  sPieces.Begin(aLimits.mLineLength);
  LogStreamParser theParser(aLimits, sPieces);
  size_t theStart = 0;
  for (size_t i = 0; theStart < aStream.size(); ++i) {
    unsigned int theCut = aCuts.empty() ? 0 : static_cast<unsigned char>(aCuts[i % aCuts.size()]);
    const std::string_view thePiece =
        std::string_view(aStream).substr(theStart, theCut % 64 == 63 ? 1000 : theCut % 64 + 1);
    theStart += thePiece.size();
    theParser.Feed(ExactCopy(thePiece).Data(), thePiece.size(), static_cast<int64>(i));
    if ((theCut & 0x80) != 0) {
      theParser.Drain();
    }
    if ((theCut & 0x40) != 0 && afFlush) {
      theParser.Flush();
      FUZZ_REQUIRE(!theParser.IsWaiting());
    }
    FUZZ_REQUIRE(!theParser.IsWaiting() || theParser.WaitingSince() <= static_cast<int64>(i));
  }
  theParser.Close(0);
  FUZZ_REQUIRE(!theParser.IsWaiting());
  FUZZ_REQUIRE(sPieces.Holds(aStream, !afFlush));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  LogStreamLimits theLimits;
  uint8_t theLimit = theInput.Byte();
  if (theLimit < 200) {
    theLimits.mLineLength = static_cast<size_t>(theLimit) + 1;
  }
  uint8_t theHeaderLimit = theInput.Byte();
  if (theHeaderLimit < 200) {
    theLimits.mHeaderLength = theHeaderLimit;
  }
  std::string theCuts = theInput.Text();
  std::string theStream = theInput.Rest();
  // With time limits or without: the length says.
  bool theFlushFlag = aLength % 2 != 0;
  ParsePieces(theStream, theCuts, theLimits, theFlushFlag);
  if (!theFlushFlag) {
    ParseWhole(theStream, theLimits);
    FUZZ_REQUIRE(sPieces.mRecords == sWhole.mRecords);
  }
  if (theHeaderLimit % 4 == 0) {  // as this takes as long as all the rest
    CheckHeader(theStream, theLimit * 65521u, theHeaderLimit % 8 == 0,
                theHeaderLimit / 8u + theStream.size());
  }
  return 0;
}
