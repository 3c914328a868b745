// What reading and printing a stream needs of the heap, counted in place of the standard operators.
#include <gtest/gtest.h>
#include <malloc.h>
#include <stdlib.h>

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "tools/logstream/LogPrinter.h"
#include "tools/logstream/LogStreamParser.h"

static size_t sAllocations = 0;
static size_t sBytes = 0;
static size_t sPeak = 0;

void* operator new(size_t aSize) {
  void* theBlock = malloc(aSize);
  if (theBlock == nullptr) {
    throw std::bad_alloc();
  }
  ++sAllocations;
  sBytes += malloc_usable_size(theBlock);
  sPeak = std::max(sPeak, sBytes);
  return theBlock;
}

void operator delete(void* aBlock) noexcept {
  sBytes -= aBlock != nullptr ? malloc_usable_size(aBlock) : 0;
  free(aBlock);
}

void operator delete(void* aBlock, size_t) noexcept { operator delete(aBlock); }

// Of the heap for a line at the limit: the bytes that wait, twice while they move to a larger place.
static constexpr size_t kLimit = 65536;
static constexpr size_t kMaxUse = 6 * kLimit;

static const char kHeader[] =
    "\nPROTOCOL: qvLogd-1.0\nUUID: 01234567-89ab-cdef-0123-456789abcdef\nLOST: 0\n"
    "NAME: player(log started, 0 logs previously lost)\n";
static const char kLine[] = "I 14:03:07:042|b6f2a000|GRAPHICS   a text\n";

class CountingSink : public LogRecordSink {
 public:
  void Take(const LogRecord& aRecord) override {
    ++mRecords;
    mBytes += aRecord.mRaw.size();
  }
  size_t mRecords = 0;
  size_t mBytes = 0;
};

class PrintingSink : public LogRecordSink {
 public:
  explicit PrintingSink(LogForm aForm) : mPrinter(aForm, true, true) { mOut.reserve(65536); }
  void Take(const LogRecord& aRecord) override {
    mOut.clear();
    mPrinter.Print(aRecord, mOut);
  }
  LogPrinter mPrinter;
  std::string mOut;
};

static void Feed(LogStreamParser& aParser, const std::string& aText) {
  aParser.Feed(aText.data(), aText.size(), 1795266187042123LL);
}

// The most that the heap grew by while the parser took aPiece aTimes.
static size_t PeakOf(const LogStreamLimits& aLimits, const std::string& aPiece, int aTimes,
                     CountingSink& aSink) {
  size_t theStart = sBytes;
  sPeak = sBytes;
  LogStreamParser theParser(aLimits, aSink);
  for (int i = 0; i < aTimes; ++i) {
    Feed(theParser, aPiece);
  }
  theParser.Close(0);
  return sPeak - theStart;
}

TEST(LogStreamMemory, ALineWithoutAnEndNeedsNoMoreThanTheLimitAllows) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = kLimit;
  CountingSink theSink;
  EXPECT_LT(PeakOf(theLimits, std::string(10000, 'x'), 1000, theSink), kMaxUse);
  EXPECT_EQ(10000000u, theSink.mBytes);
}

TEST(LogStreamMemory, AMessageOfEndlessLinesNeedsNoMoreThanTheLimitAllows) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = kLimit;
  for (const char* theLine : {"x\n", "\n"}) {
    std::string thePiece;
    for (int i = 0; i < 1000; ++i) {
      thePiece += theLine;
    }
    CountingSink theSink;
    EXPECT_LT(PeakOf(theLimits, kLine + thePiece, 1000, theSink), kMaxUse);
    EXPECT_EQ(1001000u, theSink.mRecords);
  }
}

TEST(LogStreamMemory, AHeaderThatNeverEndsNeedsNoMoreThanTheLimitAllows) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = kLimit;
  CountingSink theSink;
  std::string theStart(kHeader, std::string(kHeader).find("player"));
  size_t theBefore = sBytes;
  sPeak = sBytes;
  LogStreamParser theParser(theLimits, theSink);
  Feed(theParser, theStart);
  std::string thePiece(1000, 'x');
  for (int i = 0; i < 1000; ++i) {
    Feed(theParser, thePiece);
  }
  EXPECT_LT(sPeak - theBefore, kMaxUse);
}

TEST(LogStreamMemory, AnIdleConnectionKeepsLittle) {
  CountingSink theSink;
  std::string theText = kHeader;
  while (theText.size() < 60000) {
    theText += kLine;
  }
  theText += "and a long line " + std::string(100000, 'x');
  constexpr size_t kParsers = 50;
  std::vector<std::unique_ptr<LogStreamParser>> theParsers;
  theParsers.reserve(kParsers);
  size_t theStart = sBytes;
  for (size_t i = 0; i < kParsers; ++i) {
    theParsers.push_back(std::make_unique<LogStreamParser>(LogStreamLimits(), theSink));
    Feed(*theParsers.back(), theText);
    Feed(*theParsers.back(), "\n");
    theParsers.back()->Drain();
  }
  EXPECT_LT((sBytes - theStart) / kParsers, 8192u);
}

TEST(LogStreamMemory, ReadingAndPrintingALineAllocatesNothing) {
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_Cat, LogForm_Raw, LogForm_JSON}) {
    PrintingSink theSink(theForm);
    LogStreamParser theParser(LogStreamLimits(), theSink);
    std::string theText = kHeader;
    for (int i = 0; i < 100; ++i) {
      theText += kLine;
    }
    std::string theLines = theText.substr(sizeof(kHeader) - 1);
    Feed(theParser, theText);
    theParser.Drain();
    Feed(theParser, theLines);
    theParser.Drain();
    size_t theStart = sAllocations;
    Feed(theParser, theLines);
    theParser.Drain();
    EXPECT_EQ(theStart, sAllocations);
  }
}
