// What a log daemon receives, byte by byte. Messages that are lost: qvLogger_qvLogdLosses_test.cpp.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/syscall.h>

#include <algorithm>
#include <atomic>

#include "support/LogDaemonTest.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"
#include "support/TracedProcess.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

using qvLogdLoggerStream = LogDaemonTest;
using qvLogdLoggerKept = LogDaemonTest;

// Threads that this program has started.
std::atomic<int> gThreads{0};

void IgnoreMessage(void*, const qvLogData*, const char*, size_t) {}

}  // namespace

// Stands before the system's function, to count.
extern "C" int pthread_create(pthread_t* aThread, const pthread_attr_t* anAttributes, void* (*aFunc)(void*),
                              void* anArgument) noexcept {
  ++gThreads;
  auto theSystems = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return theSystems(aThread, anAttributes, aFunc, anArgument);
}

TEST_F(qvLogdLoggerStream, AMessageToEveryLoggerStartsNoThread) {
  qvLog_SetLogFunc(5, IgnoreMessage, nullptr);
  EXPECT_TRUE(LogText(1, 0, "a message\n"));
  mPeer.ReadUntil("a message\n");
  EXPECT_EQ(0, gThreads.load());
}

TEST_F(qvLogdLoggerStream, AConnectionStartsWithTheHeaderAndThenTheMessageThatMadeIt) {
  EXPECT_TRUE(LogText(1, 0, "the first message\n"));
  std::string theHeader = Header("0");
  EXPECT_EQ(theHeader, mPeer.Read(theHeader.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("the first message\n")));
  EXPECT_TRUE(Logger()->IsConnected());
}

TEST_F(qvLogdLoggerStream, TheHeaderReadsAsPublished) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG=" + mPeer.Target()});
  EXPECT_THAT(mPeer.ReadToEnd(),
              MatchesRegex("\nPROTOCOL: qvLogd-1\\.0\n"
                           "UUID: [0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\n"
                           "LOST: 0\n"
                           "NAME: box\\(log started, 0 logs previously lost\\)\n"
                           "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    x\n"));
}

TEST_F(qvLogdLoggerStream, AConnectionStartsWithoutWhatTheLastOneLeft) {
  ScriptedLogdLogger theLogger;
  qvLogDataEx theRecord = {};  // without a formatting buffer nothing is in the header
  theLogger.Append_S(&theRecord, "left", 4);
  theLogger.mLastChar = 't';
  EXPECT_TRUE(theLogger.MakeConnected(&theRecord));
  EXPECT_THAT(theLogger.mSent, ElementsAre(""));
  EXPECT_EQ('\n', theLogger.mLastChar);
}

TEST_F(qvLogdLoggerStream, ADerivedLoggerMayNameTheProcessInTheHeader) {
  struct NamedLogger : ScriptedLogdLogger {
    void Append_ProcessNameOrId(qvLogDataEx* aRecord) override { Append_S(aRecord, "a name ", 7); }
  };
  NamedLogger theLogger;
  theLogger.EnterChain();
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  ASSERT_EQ(2u, theLogger.mSent.size());
  EXPECT_THAT(theLogger.mSent[0], EndsWith("\nNAME: a name (log started, 0 logs previously lost)\n"));
}

TEST_F(qvLogdLoggerStream, EachLineCarriesThePrefixOfEveryTextOutput) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run(
      {"clock", "1709642045", "42999", "log", "0", "28", "zero\n",  "log", "1", "28", "one\n", "log",
       "2",     "170",        "two\n", "log", "3", "0",  "three\n", "log", "4", "0",  "four\n"},
      {"QVRALOG=" + mPeer.Target()});
  mPeer.ReadUntil("NAME: ");
  mPeer.ReadUntil("\n");
  EXPECT_THAT(mPeer.ReadToEnd(), MatchesRegex("E 12:34:05:042\\|[0-9a-f]{8}\\|TUNER      zero\n"
                                              "E 12:34:05:042\\|[0-9a-f]{8}\\|TUNER      one\n"
                                              "W 12:34:05:042\\|[0-9a-f]{8}\\|0000000170 two\n"
                                              "I 12:34:05:042\\|[0-9a-f]{8}\\|DEFAULT    three\n"
                                              "D 12:34:05:042\\|[0-9a-f]{8}\\|DEFAULT    four\n"));
}

TEST_F(qvLogdLoggerStream, EveryLineOfAMultiLineMessageCarriesAPrefix) {
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_FML("%s\n%s\n", "one", "two");
  qvLog_End(theData);
  mPeer.ReadUntil("lost)\n");
  EXPECT_THAT(mPeer.ReadUntil("two\n"),
              MatchesRegex(kErrorPrefix + std::string("one\n") + kErrorPrefix + "two\n"));
}

TEST_F(qvLogdLoggerStream, MessagesWithoutLineEndsShareOneLineAndOnePrefix) {
  for (const char* theText : {"one ", "two ", "three\n", "four\n"}) {
    EXPECT_TRUE(LogText(1, 0, theText));
  }
  mPeer.ReadUntil("lost)\n");
  EXPECT_THAT(mPeer.ReadUntil("four\n"),
              MatchesRegex(kErrorPrefix + std::string("one two three\n") + kErrorPrefix + "four\n"));
}

TEST_F(qvLogdLoggerStream, AMessageMayHoldZeroBytes) {
  EXPECT_TRUE(LogText(1, 0, std::string(2000, 'a')));  // cut with a zero byte at its end
  mPeer.ReadUntil("DEFAULT    ");
  EXPECT_EQ(std::string(1023, 'a') + '\0', mPeer.Read(1024));
}

TEST_F(qvLogdLoggerStream, AMessageIsSentWithOneCallWhateverItsParts) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.EnterChain();
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_F("%d ", 1);
  qvLog_Append_B("bytes", 5);
  qvLog_Append_U(L"wide", 4);
  EXPECT_TRUE(theLogger.mSent.empty()) << "nothing before the end";
  qvLog_End(theData);
  ASSERT_EQ(1u, theLogger.mSent.size());
  EXPECT_THAT(theLogger.mSent[0],
              MatchesRegex(std::string(kErrorPrefix) + "1 Buffer pointer=0x[0-9a-f]+ length=5\n"
                                                       "   62 79 74 65 73 +- bytes\nwide"));
  EXPECT_THAT(theLogger.mSockets, ElementsAre(theLogger.mSocket));
}

TEST_F(qvLogdLoggerStream, WithoutADaemonEachMessageIsCountedAndTheNextHeaderTellsTheCount) {
  mPeer.StopListening();
  testing::internal::CaptureStderr();
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(LogText(1, 0, "lost\n"));
  }
  EXPECT_EQ(3u, Logger()->mLostLogs);
  EXPECT_EQ(-1, Logger()->mSocket);
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_EQ(0u, Logger()->mLostLogs);
  std::string theExpected = "\nLOST: 3\n" + Header("3");
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("delivered\n")));
}

TEST_F(qvLogdLoggerKept, ALossReportWithTheSameCountPrecedesTheHeader) {
  mPeer.StopListening();
  EXPECT_FALSE(LogText(1, 0, "lost\n"));
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_EQ("\nLOST: 1\n\nPROTOCOL: ", mPeer.ReadUntil("PROTOCOL: "));
  EXPECT_THAT(mPeer.ReadUntil("delivered\n"), HasSubstr("\nLOST: 1\n"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  mPeer.Accept();
  EXPECT_EQ("\nPROTOCOL: ", mPeer.ReadUntil("PROTOCOL: ")) << "without losses there is none";
}

TEST_F(qvLogdLoggerStream, AReconnectionSendsANewHeaderWithTheSameUUID) {
  EXPECT_TRUE(LogText(1, 0, "one\n"));
  mPeer.ReadUntil("one\n");
  std::string theUUID = Logger()->mUUIDStr;
  mPeer.Reset();
  LogText(1, 0, "two\n");
  EXPECT_FALSE(Logger()->IsConnected()) << "the message found that the connection is broken";
  EXPECT_TRUE(LogText(1, 0, "three\n"));
  EXPECT_EQ(theUUID, Logger()->mUUIDStr);
  std::string theExpected = "\nLOST: 1\n" + Header("1");
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("three\n")));
}

TEST_F(qvLogdLoggerStream, AReloadStartsANewConnectionWithAHeader) {
  EXPECT_TRUE(LogText(1, 0, "one\n"));
  mPeer.ReadUntil("one\n");
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "two\n"));
  EXPECT_EQ("", mPeer.ReadToEnd());
  mPeer.Accept();
  std::string theHeader = Header("0");
  EXPECT_EQ(theHeader, mPeer.Read(theHeader.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("two\n")));
}

TEST_F(qvLogdLoggerStream, TheLineThatABrokenConnectionCutIsNotContinued) {
  EXPECT_TRUE(LogText(1, 0, "without a line end"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  mPeer.Accept();
  EXPECT_THAT(mPeer.ReadToEnd(), EndsWith("without a line end"));
  mPeer.Accept();
  EXPECT_THAT(mPeer.ReadUntil("x\n"), MatchesRegex("(.|\n)*lost\\)\n" + std::string(kErrorPrefix) + "x\n"));
}

TEST_F(qvLogdLoggerStream, TheEndOfTheProcessClosesTheConnectionBehindTheLastMessage) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run({"log", "1", "0", "the last words"}, {"QVRALOG=" + mPeer.Target()});
  EXPECT_THAT(mPeer.ReadToEnd(), EndsWith("the last words"));
}

TEST_F(qvLogdLoggerStream, AMessageToAStandingConnectionCostsOneSystemCall) {
  if (!CanTraceProcesses()) {
    GTEST_SKIP() << "system calls cannot be watched here";
  }
  std::vector<long> theCalls[2];
  for (int i = 0; i < 2; ++i) {
    theCalls[i] = SystemCallsOf([&] {
      for (int theMessage = 0; theMessage < 1 + 10 * i; ++theMessage) {
        LogText(1, 0, "x\n");
      }
    });
  }
  for (long theCall : {SYS_sendto, SYS_poll, SYS_connect, SYS_socket, SYS_recvfrom}) {
    EXPECT_EQ(std::count(theCalls[0].begin(), theCalls[0].end(), theCall) + (theCall == SYS_sendto ? 10 : 0),
              std::count(theCalls[1].begin(), theCalls[1].end(), theCall))
        << theCall;
  }
}
