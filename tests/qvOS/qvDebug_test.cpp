#include "qvOS/qvDebug.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "qvOS/qvDebug_p.h"
#include "support/ChildProcess.h"
#include "support/FakeBackTrace.h"
#include "support/FreeDescriptor.h"
#include "support/LogEcho.h"
#include "support/ScratchFolder.h"

namespace {

std::string TraceFile() { return "/tmp/backtrace_" + std::to_string(getpid()) + ".txt"; }

struct Trace {
  ChildResult mResult;
  std::string mFile;
  std::string mLog;
};

// Runs aBody in a child that logs to its standard error, and keeps the trace file that it leaves.
Trace TraceOf(const std::function<void()>& aBody) {
  ScratchFolder theFolder;
  Trace theTrace;
  theTrace.mResult = RunInChild([&] {
    EchoLogRecords();
    aBody();
    fflush(nullptr);
    WriteWholeFile(theFolder.File("trace"), ReadWholeFile(TraceFile()));
    if (testing::Test::HasFailure()) {
      _exit(1);
    }
  });
  EXPECT_EQ(0, theTrace.mResult.mExitCode);
  theTrace.mFile = ReadWholeFile(theFolder.File("trace"));
  theTrace.mLog = EchoedText(theTrace.mResult.mStderr);
  return theTrace;
}

std::string Announcement(const Trace& aTrace, int aDepth) {
  return "Backtracing this thread (pid=" + std::to_string(aTrace.mResult.mPid) +
         ", depth=" + std::to_string(aDepth) + "):\n";
}

const std::vector<std::string> kSixSymbols = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta"};
const char kSixLines[] = "00: alpha\n01: beta\n02: gamma\n03: delta\n04: epsilon\n05: zeta\n";

// The lines of a stack dump of which every word reads as "word".
std::string StackDumpLines() {
  std::string theLines;
  for (int i = 0; i < 256; ++i) {
    theLines += (i < 10 ? "0" : "") + std::to_string(i) + ": word\n";
  }
  return theLines;
}

int CountOf(const std::string& aPart, const std::string& aText) {
  int theCount = 0;
  for (size_t theAt = aText.find(aPart); theAt != std::string::npos; theAt = aText.find(aPart, theAt + 1)) {
    ++theCount;
  }
  return theCount;
}

}  // namespace

// Each test begins with the frames that it sets itself.
class qvDebug : public testing::Test {
 protected:
  qvDebug() {
    gBackTrace = FakeBackTrace();
    gBackTrace.mfActive = true;
    gBackTrace.mSymbols = kSixSymbols;
  }
  ~qvDebug() override { gBackTrace = FakeBackTrace(); }
};
using qvDebugKept = qvDebug;

TEST_F(qvDebug, ATraceGoesToTheFileTheLogAndStandardOutput) {
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ(std::string("log\n") + kSixLines + "\nlog end\n", theTrace.mFile);
  EXPECT_EQ(Announcement(theTrace, 6) + kSixLines, theTrace.mLog);
  EXPECT_EQ(Announcement(theTrace, 6) + kSixLines, theTrace.mResult.mStdout);
}

TEST_F(qvDebug, EveryLineIsOneRecordOfLevelOneAndTheDefaultModuleFromThisSource) {
  gBackTrace.mSymbols.resize(5);  // with a stack dump
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  gBackTrace.mfSymbolsFail = true;
  Trace theUnresolved = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  std::vector<EchoedRecord> theRecords = EchoedRecords(theTrace.mResult.mStderr);
  ASSERT_EQ(264u, theRecords.size()) << "announcement, 5 frames, announcement, 256 words, end";
  std::vector<EchoedRecord> theOthers = EchoedRecords(theUnresolved.mResult.mStderr);
  ASSERT_EQ(8u, theOthers.size()) << "announcement, 5 frames, announcement, end";
  theRecords.insert(theRecords.end(), theOthers.begin(), theOthers.end());
  for (const EchoedRecord& theRecord : theRecords) {
    EXPECT_EQ(1, theRecord.mLevel);
    EXPECT_EQ(0, theRecord.mModule);
    EXPECT_NE(std::string::npos, theRecord.mFile.find("qvDebug.posix")) << theRecord.mFile;
    EXPECT_GT(theRecord.mLine, 0);
    EXPECT_EQ(1, CountOf("\n", theRecord.mText));
  }
}

TEST_F(qvDebug, ATraceWithMemoryMarkedCorruptedLeavesAnEmptyFrameAndNothingElse) {
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(1); });
  EXPECT_EQ("log\n\nlog end\n", theTrace.mFile);
  EXPECT_EQ("", theTrace.mLog);
  EXPECT_EQ("", theTrace.mResult.mStdout);
}

TEST_F(qvDebug, ATraceTakesAtMost64Frames) {
  gBackTrace.mSymbols.assign(100, "frame");
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ(0u, theTrace.mResult.mStdout.find(Announcement(theTrace, 64)));
  EXPECT_NE(std::string::npos, theTrace.mFile.find("\n63: frame\n\nlog end\n"));
}

TEST_F(qvDebug, UnresolvedFramesAppearAsAddressesButNotInTheFile) {
  gBackTrace.mfSymbolsFail = true;
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ("log\n\nlog end\n", theTrace.mFile);
  std::string theLines = Announcement(theTrace, 6) +
                         "00: [0x0x00001000]\n01: [0x0x00001001]\n02: [0x0x00001002]\n"
                         "03: [0x0x00001003]\n04: [0x0x00001004]\n05: [0x0x00001005]\n";
  EXPECT_EQ(theLines, theTrace.mLog);
  EXPECT_EQ(theLines, theTrace.mResult.mStdout);
}

TEST_F(qvDebugKept, AnUnresolvedAddressHasItsPrefixTwice) {
  Trace theTrace = TraceOf([] { qvDebug_S_PutAddress(0, reinterpret_cast<void*>(0x1000)); });
  EXPECT_EQ("00: [0x0x00001000]\n", theTrace.mLog);
  EXPECT_EQ("00: [0x0x00001000]\n", theTrace.mResult.mStdout);
}

TEST_F(qvDebug, FewerThanSixFramesAreFollowedByAStackDump) {
  gBackTrace.mSymbols.resize(5);
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  const std::string kFive = "00: alpha\n01: beta\n02: gamma\n03: delta\n04: epsilon\n";
  EXPECT_EQ("log\n" + kFive + StackDumpLines() + "\nlog end\n", theTrace.mFile);
  EXPECT_EQ(Announcement(theTrace, 5) + kFive + "Here is a stack dump, try to find something on your own:\n" +
                StackDumpLines() + "[End of stack dump (4*256 bytes)\n",
            theTrace.mLog);
  EXPECT_EQ(Announcement(theTrace, 5) + kFive +
                "Here is a stack dump, try to find something on your own:" + StackDumpLines(),
            theTrace.mResult.mStdout);
}

TEST_F(qvDebugKept, TheTextsAroundAStackDumpAreThoseOfTheLogOnly) {
  std::vector<void*> theStack(256, nullptr);
  Trace theTrace = TraceOf([&] { qvDebug_S_PutStackDump(-1, theStack.data()); });
  EXPECT_EQ("Here is a stack dump, try to find something on your own:\n" + StackDumpLines() +
                "[End of stack dump (4*256 bytes)\n",
            theTrace.mLog);
  EXPECT_EQ("Here is a stack dump, try to find something on your own:" + StackDumpLines(),
            theTrace.mResult.mStdout);
}

TEST_F(qvDebug, NoFrameAtAllGivesOnlyTheStackDump) {
  gBackTrace.mSymbols.clear();
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ("log\n" + StackDumpLines() + "\nlog end\n", theTrace.mFile);
  EXPECT_EQ(0u, theTrace.mResult.mStdout.find(Announcement(theTrace, 0)));
}

TEST_F(qvDebug, AStackDumpWithoutSymbolsHasNoLines) {
  gBackTrace.mSymbols.clear();
  gBackTrace.mfSymbolsFail = true;
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ("log\n\nlog end\n", theTrace.mFile);
  EXPECT_EQ(Announcement(theTrace, 0) + "Here is a stack dump, try to find something on your own:\n" +
                "[End of stack dump (4*256 bytes)\n",
            theTrace.mLog);
}

TEST_F(qvDebug, AStackDumpReadsTheWordsFromTheGivenPlace) {
  // Where these words read as frames, the dump shows their names.
  std::vector<void*> theStack(256, nullptr);
  theStack[0] = reinterpret_cast<void*>(0x1000);
  theStack[255] = reinterpret_cast<void*>(0x1002);
  Trace theTrace = TraceOf([&] { qvDebug_S_PutStackDump(-1, theStack.data()); });
  EXPECT_NE(std::string::npos, theTrace.mResult.mStdout.find(":00: alpha\n01: word\n"));
  EXPECT_NE(std::string::npos, theTrace.mResult.mStdout.find("\n254: word\n255: gamma\n"));
}

TEST_F(qvDebug, TheStackDumpOfATraceBeginsAtItsOwnFrame) {
  gBackTrace.mSymbols.resize(5);
  Trace theTrace = TraceOf([] {
    // Words of the caller's frame, which begins a little above the tracing function's own.
    void* volatile theWords[8];
    for (void* volatile& theWord : theWords) {
      theWord = reinterpret_cast<void*>(0x1002);
    }
    qvDebug_BackTraceCurrent(0);
    EXPECT_EQ(reinterpret_cast<void*>(0x1002), theWords[7]);
  });
  const std::string kDump = theTrace.mFile.substr(theTrace.mFile.find("04: epsilon\n"));
  EXPECT_LE(8, CountOf(": gamma\n", kDump));
}

TEST_F(qvDebug, CopyingTheStackStopsWhereMemoryEnds) {
  size_t thePageSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  char* thePages = static_cast<char*>(
      mmap(nullptr, 3 * thePageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  memset(thePages, 'x', 2 * thePageSize);
  mprotect(thePages + 2 * thePageSize, thePageSize, PROT_NONE);
  char theCopy[300];
  qvDebug_S_CopyStack(thePages + thePageSize - 100, theCopy, sizeof(theCopy));
  EXPECT_EQ(std::string(300, 'x'), std::string(theCopy, 300)) << "across two pages that are there";
  qvDebug_S_CopyStack(thePages + 2 * thePageSize - 100, theCopy, sizeof(theCopy));
  EXPECT_EQ(std::string(100, 'x') + std::string(200, '\0'), std::string(theCopy, 300));
  qvDebug_S_CopyStack(thePages + 2 * thePageSize, theCopy, sizeof(theCopy));
  EXPECT_EQ(std::string(300, '\0'), std::string(theCopy, 300));
  munmap(thePages, 3 * thePageSize);
}

TEST_F(qvDebug, ALineOf999CharactersIsWrittenToTheFileWithItsNumber) {
  const std::string kSymbol(994, 's');  // "00: " and the line end make it 999
  gBackTrace.mSymbols[0] = kSymbol;
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  EXPECT_EQ(0u, theTrace.mFile.find("log\n00: " + kSymbol + "\n01: beta\n"));
}

TEST_F(qvDebug, ALongerLineIsWrittenToTheFileAsItIsWithoutNumber) {
  for (size_t theLength : {size_t{995}, size_t{5000}}) {
    const std::string kSymbol(theLength, 's');
    gBackTrace.mSymbols[0] = kSymbol;
    Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
    EXPECT_EQ(0u, theTrace.mFile.find("log\n" + kSymbol + "\n01: beta\n")) << theLength;
    EXPECT_NE(std::string::npos, theTrace.mResult.mStdout.find("\n00: " + kSymbol + "\n01: beta\n"));
  }
}

TEST_F(qvDebug, AnOlderFileIsReplaced) {
  Trace theTrace = TraceOf([] {
    WriteWholeFile(TraceFile(), std::string(10000, 'x'));
    qvDebug_BackTraceCurrent(1);
  });
  EXPECT_EQ("log\n\nlog end\n", theTrace.mFile);
}

TEST_F(qvDebug, TheFileHasTheRightsThatTheProcessGivesToItsFiles) {
  TraceOf([] {
    umask(027);
    qvDebug_BackTraceCurrent(1);
    struct stat theStatus = {};
    EXPECT_EQ(0, stat(TraceFile().c_str(), &theStatus));
    EXPECT_EQ(0640u, theStatus.st_mode & 0777);
  });
}

TEST_F(qvDebug, APlantedLinkIsNotFollowed) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("victim"), "precious");
  for (bool fSymbolic : {true, false}) {
    Trace theTrace = TraceOf([&] {
      const std::string kVictim = theFolder.File("victim");
      int theResult = fSymbolic ? symlink(kVictim.c_str(), TraceFile().c_str())
                                : link(kVictim.c_str(), TraceFile().c_str());
      EXPECT_EQ(0, theResult);
      qvDebug_BackTraceCurrent(1);
      EXPECT_FALSE(std::filesystem::is_symlink(TraceFile()));
    });
    EXPECT_EQ("precious", ReadWholeFile(theFolder.File("victim"))) << "symbolic: " << fSymbolic;
    EXPECT_EQ("log\n\nlog end\n", theTrace.mFile) << "symbolic: " << fSymbolic;
  }
}

TEST_F(qvDebug, ALinkToNowhereMakesNoFileThere) {
  ScratchFolder theFolder;
  TraceOf([&] {
    EXPECT_EQ(0, symlink(theFolder.File("new").c_str(), TraceFile().c_str()));
    qvDebug_BackTraceCurrent(1);
  });
  EXPECT_FALSE(FileExists(theFolder.File("new")));
}

TEST_F(qvDebug, NothingStaysOpen) {
  gBackTrace.mSymbols.resize(5);  // with a stack dump
  TraceOf([] {
    qvDebug_BackTraceCurrent(0);
    int theDescriptor = LowestFreeDescriptor();
    qvDebug_BackTraceCurrent(0);
    EXPECT_EQ(theDescriptor, LowestFreeDescriptor());
  });
}

TEST_F(qvDebug, AFileThatCannotBeMadeOnlyDropsTheFileOutput) {
  Trace theTrace = TraceOf([] {
    ASSERT_EQ(0, mkdir(TraceFile().c_str(), 0700));
    qvDebug_BackTraceCurrent(0);
    qvDebug_BackTraceCurrent(1);
    rmdir(TraceFile().c_str());
  });
  EXPECT_EQ("", theTrace.mFile);
  EXPECT_EQ(Announcement(theTrace, 6) + kSixLines, theTrace.mResult.mStdout);
  EXPECT_EQ(Announcement(theTrace, 6) + kSixLines, theTrace.mLog);
}

TEST_F(qvDebug, ARealTraceHasAsManyLinesAsItsDepth) {
  gBackTrace = FakeBackTrace();
  Trace theTrace = TraceOf([] { qvDebug_BackTraceCurrent(0); });
  int theDepth = -1;
  ASSERT_EQ(1, sscanf(strstr(theTrace.mResult.mStdout.c_str(), "depth="), "depth=%d", &theDepth));
  ASSERT_GT(theDepth, 0);
  std::string theLast = (theDepth <= 10 ? "0" : "") + std::to_string(theDepth - 1) + ": ";
  EXPECT_NE(std::string::npos, theTrace.mResult.mStdout.find("\n" + theLast));
  EXPECT_NE(std::string::npos, theTrace.mFile.find("\n" + theLast));
}

TEST_F(qvDebug, GetBackTraceWritesOneLineAFrame) {
  char theBuffer[200];
  EXPECT_EQ(sizeof(kSixLines) - 1, qvDebug_GetBackTrace(theBuffer, sizeof(theBuffer)));
  EXPECT_STREQ(kSixLines, theBuffer);
}

TEST_F(qvDebug, GetBackTraceStopsWhenTheBufferIsFull) {
  const struct {
    size_t mSize;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {1, "", "room for the terminator only"},
      {2, "0", "one character"},
      {10, "00: alpha", "the line end does not fit"},
      {11, "00: alpha\n", "one line fits exactly"},
      {12, "00: alpha\n0", "one character of the next"},
      {59, "00: alpha\n01: beta\n02: gamma\n03: delta\n04: epsilon\n05: zet", "two characters short"},
  };
  for (const auto& theCase : kCases) {
    std::string theBuffer(100, '#');
    size_t theLength = qvDebug_GetBackTrace(&theBuffer[0], theCase.mSize);
    EXPECT_EQ(strlen(theCase.mText), theLength) << theCase.mWhy;
    EXPECT_STREQ(theCase.mText, theBuffer.c_str()) << theCase.mWhy;
    EXPECT_EQ(std::string(100 - theCase.mSize, '#'), theBuffer.substr(theCase.mSize)) << theCase.mWhy;
  }
}

TEST_F(qvDebug, GetBackTraceWith16BytesStopsAfterTheFirstLineWhichIsCut) {
  gBackTrace.mSymbols[0] = "a_very_long_symbol_name";
  char theBuffer[16];
  EXPECT_EQ(15u, qvDebug_GetBackTrace(theBuffer, sizeof(theBuffer)));
  EXPECT_STREQ("00: a_very_long", theBuffer);
}

TEST_F(qvDebug, GetBackTraceOfThisVeryThreadFillsASmallBuffer) {
  gBackTrace = FakeBackTrace();
  char theBuffer[16];
  EXPECT_EQ(15u, qvDebug_GetBackTrace(theBuffer, sizeof(theBuffer)));
  EXPECT_EQ(0, memcmp("00: ", theBuffer, 4));
  EXPECT_EQ(15u, strlen(theBuffer));
}

TEST_F(qvDebug, GetBackTraceWithoutABufferWritesNothing) {
  EXPECT_EQ(0u, qvDebug_GetBackTrace(nullptr, 0));
  char theByte = '#';
  EXPECT_EQ(0u, qvDebug_GetBackTrace(&theByte, 0));
  EXPECT_EQ('#', theByte);
}

TEST_F(qvDebug, GetBackTraceWithoutSymbolsWritesNothing) {
  gBackTrace.mfSymbolsFail = true;
  char theBuffer[100] = "before";
  EXPECT_EQ(0u, qvDebug_GetBackTrace(theBuffer, sizeof(theBuffer)));
  EXPECT_STREQ("before", theBuffer);
}

TEST_F(qvDebug, GetBackTraceTakesAtMost1024Frames) {
  gBackTrace.mSymbols.assign(2000, "f");
  std::string theBuffer(100000, '#');
  size_t theLength = qvDebug_GetBackTrace(&theBuffer[0], theBuffer.size());
  EXPECT_EQ(1024, CountOf("\n", theBuffer.substr(0, theLength)));
  EXPECT_EQ("1023: f\n", theBuffer.substr(theLength - 8, 8));
  EXPECT_EQ(1024, gBackTrace.mAskedFrames);
}

TEST_F(qvDebug, SetThreadNameAndBreakHaveNoEffect) {
  ChildResult theResult = RunInChild([] {
    qvDebug_SetThreadName("a thread");
    qvDebug_SetThreadName(nullptr);
    qvDebug_Break("a message");
    qvDebug_Break(nullptr);
  });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStdout);
  EXPECT_EQ("", theResult.mStderr);
}
