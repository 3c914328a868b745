#include "tools/qvlogd/LogForwarder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "LogReceiver.h"
#include "support/ChildProcess.h"

namespace {

LogForwarderOptions To(const LogReceiver& aReceiver) {
  LogForwarderOptions theOptions;
  theOptions.mHost = "127.0.0.1";
  theOptions.mPort = aReceiver.Port();
  theOptions.mFraming = LogFraming_LF;
  theOptions.mFirstPause = 10;
  theOptions.mLongestPause = 50;
  return theOptions;
}

void Forward(LogForwarder& aForwarder, std::string_view aText) {
  LogRecord theRecord;
  theRecord.mProcess = "player";
  theRecord.mText = aText;
  aForwarder.Take(theRecord);
  aForwarder.Flush();
}

// The texts of the messages, each in a line.
std::string Texts(const std::string& aMessages) {
  std::string theTexts;
  for (size_t i = 0; i < aMessages.size(); i = aMessages.find('\n', i) + 1) {
    std::string theMessage = aMessages.substr(i, aMessages.find('\n', i) - i);
    theTexts += theMessage.substr(theMessage.find("] ") + 2) + "\n";
  }
  return theTexts;
}

int CountOf(const std::string& aText, const std::string& aWord) {
  int theCount = 0;
  for (size_t i = aText.find(aWord); i != std::string::npos; i = aText.find(aWord, i + aWord.size())) {
    ++theCount;
  }
  return theCount;
}

// The sum of the losses that are told.
uint64 ToldIn(const std::string& aTexts) {
  const std::string kTelling = "suppressed ";
  uint64 theSum = 0;
  for (size_t i = aTexts.find(kTelling); i != std::string::npos; i = aTexts.find(kTelling, i + 1)) {
    theSum += std::stoull(aTexts.substr(i + kTelling.size()));
  }
  return theSum;
}

}  // namespace

TEST(LogForwarder, LinesGoToTheTarget) {
  LogReceiver theReceiver;
  LogForwarder theForwarder(To(theReceiver));
  Forward(theForwarder, "one");
  Forward(theForwarder, "two");
  theReceiver.Accept();
  EXPECT_EQ("one\ntwo\n", Texts(theReceiver.ReadUntil("two\n")));
  theForwarder.Close();
  EXPECT_EQ(2u, theForwarder.Sent());
  EXPECT_EQ(0u, theForwarder.Dropped());
}

TEST(LogForwarder, OctetCountingIsTheDefault) {
  LogReceiver theReceiver;
  LogForwarderOptions theOptions = To(theReceiver);
  theOptions.mFraming = LogForwarderOptions().mFraming;
  LogForwarder theForwarder(theOptions);
  Forward(theForwarder, "one");
  theForwarder.Close();
  theReceiver.Accept();
  std::string theText = theReceiver.ReadToTheEnd();
  EXPECT_EQ(theText.size(),
            SyslogFormatter_FrameLength(LogFraming_Octet, theText.data(), theText.size() + 1));
}

TEST(LogForwarder, TheEndSendsWhatIsQueued) {
  LogReceiver theReceiver;
  {
    LogForwarder theForwarder(To(theReceiver));
    Forward(theForwarder, "one");
  }
  theReceiver.Accept();
  EXPECT_EQ("one\n", Texts(theReceiver.ReadToTheEnd()));
}

TEST(LogForwarder, LinesWaitForATargetThatComesLater) {
  LogReceiver theReceiver;
  theReceiver.StopListening();
  LogForwarder theForwarder(To(theReceiver));
  Forward(theForwarder, "early");
  theReceiver.ListenAgain();
  theReceiver.Accept();
  EXPECT_EQ("early\n", Texts(theReceiver.ReadUntil("early\n")));
}

TEST(LogForwarder, ATargetThatHangsUpIsConnectedToAgain) {
  LogReceiver theReceiver;
  LogForwarder theForwarder(To(theReceiver));
  Forward(theForwarder, "one");
  theReceiver.Accept();
  theReceiver.ReadUntil("one\n");
  theReceiver.Hang();
  Forward(theForwarder, "two");
  theReceiver.Accept();
  EXPECT_EQ("two\n", Texts(theReceiver.ReadUntil("two\n")));
}

TEST(LogForwarder, AMessageThatWasCutOffIsSentAgainAsAWhole) {
  LogReceiver theReceiver;
  LogForwarder theForwarder(To(theReceiver));
  std::string theLong(7000, 'x');
  uint64 theCount = 0;
  Forward(theForwarder, "first");
  theReceiver.Accept();
  while (theCount < 500) {
    Forward(theForwarder, std::to_string(theCount++) + theLong);
  }
  // Long messages are sent in blocks of many: when the first of them have gone, the connection is stuffed,
  // and one is only half on its way.
  for (int i = 0; i < 6000 && theForwarder.Sent() < 3; ++i) {
    poll(nullptr, 0, 10);
  }
  theReceiver.Hang();
  Forward(theForwarder, "last");
  theReceiver.Accept();
  std::string theMessages = theReceiver.ReadUntil("last\n");
  EXPECT_EQ(0u, theMessages.find("<14>1 ")) << theMessages.substr(0, 100);
  EXPECT_EQ(CountOf(theMessages, "\n"), CountOf(theMessages, "<14>1 "));
}

TEST(LogForwarder, AStalledTargetNeverHoldsTheLoopAndTheLossIsTold) {
  LogReceiver theReceiver;
  LogForwarderOptions theOptions = To(theReceiver);
  theOptions.mQueueBytes = 100000;
  LogForwarder theForwarder(theOptions);
  std::string theText(1000, 'x');
  auto theStart = std::chrono::steady_clock::now();
  uint64 theCount = 0;
  while (theForwarder.Dropped() < 1000 && theCount < 1000000) {
    Forward(theForwarder, theText);
    ++theCount;
  }
  EXPECT_LT(std::chrono::steady_clock::now() - theStart, std::chrono::seconds(20));
  theReceiver.Accept();
  std::thread theReader([&] { theReceiver.ReadToTheEnd(); });
  uint64 theBefore;
  do {  // the queue empties at its own pace; lines that come too early are part of the loss
    theBefore = theForwarder.Dropped();
    poll(nullptr, 0, 10);
    Forward(theForwarder, "last");
    ++theCount;
  } while (theForwarder.Dropped() != theBefore);
  theForwarder.Close();
  theReader.join();
  std::string theTexts = Texts(theReceiver.ReadToTheEnd());
  EXPECT_EQ(theForwarder.Dropped(), ToldIn(theTexts));
  EXPECT_EQ(theCount - theForwarder.Dropped(),
            static_cast<uint64>(CountOf(theTexts, theText) + CountOf(theTexts, "last\n")));
  EXPECT_EQ("last\n", theTexts.substr(theTexts.size() - 5));
}

TEST(LogForwarder, WhatTheTargetSaysIsIgnored) {
  LogReceiver theReceiver;
  LogForwarder theForwarder(To(theReceiver));
  Forward(theForwarder, "one");
  theReceiver.Accept();
  theReceiver.ReadUntil("one\n");
  theReceiver.Say("220 hello\r\n");
  Forward(theForwarder, "two");
  theForwarder.Close();
  EXPECT_EQ("one\ntwo\n", Texts(theReceiver.ReadToTheEnd()));
}

TEST(LogForwarder, TheEndDoesNotWaitForATargetThatIsNotThere) {
  LogReceiver theReceiver;
  theReceiver.StopListening();
  LogForwarderOptions theOptions = To(theReceiver);
  theOptions.mFirstPause = 600000;
  theOptions.mLongestPause = 600000;
  LogForwarder theForwarder(theOptions);
  Forward(theForwarder, "one");
  Forward(theForwarder, "two");
  auto theStart = std::chrono::steady_clock::now();
  theForwarder.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - theStart, std::chrono::seconds(20));
  EXPECT_EQ(0u, theForwarder.Sent());
  EXPECT_EQ(2u, theForwarder.Dropped());
}

TEST(LogForwarder, ATargetThatCannotBeReachedIsToldOnce) {
  ChildResult theResult = RunInChild([] {
    LogReceiver theReceiver;
    theReceiver.StopListening();
    LogForwarder theForwarder(To(theReceiver));
    Forward(theForwarder, "one");
    theForwarder.Close();
    printf("LogForwarder_test: cannot forward to 127.0.0.1:%s: Connection refused\n",
           theReceiver.Port().c_str());
  });
  EXPECT_EQ(theResult.mStdout, theResult.mStderr);
}

TEST(LogForwarderTarget, TargetsAreHostAndPort) {
  const struct {
    const char* mText;
    const char* mHost;  // null: not a target
    const char* mPort;
  } kCases[] = {
      {"tcp://127.0.0.1:514", "127.0.0.1", "514"},
      {"tcp://log.example.org:65535", "log.example.org", "65535"},
      {"tcp://[::1]:601", "::1", "601"},
      {"tcp://::1:601", nullptr, nullptr},
      {"tcp://host:0", nullptr, nullptr},
      {"tcp://host:65536", nullptr, nullptr},
      {"tcp://host:123456", nullptr, nullptr},
      {"tcp://host:5x", nullptr, nullptr},
      {"tcp://host:514/", nullptr, nullptr},
      {"tcp://host:", nullptr, nullptr},
      {"tcp://host", nullptr, nullptr},
      {"tcp://:514", nullptr, nullptr},
      {"tcp://[]:514", nullptr, nullptr},
      {"tcp://a/b:514", nullptr, nullptr},
      {"udp://host:514", nullptr, nullptr},
      {"host:514", nullptr, nullptr},
      {"tcp:", nullptr, nullptr},
      {"", nullptr, nullptr},
  };
  for (const auto& theCase : kCases) {
    LogForwarderOptions theOptions;
    theOptions.mHost = "untouched";
    EXPECT_EQ(theCase.mHost != nullptr, LogForwarder_ParseTarget(theCase.mText, &theOptions))
        << theCase.mText;
    EXPECT_EQ(theCase.mHost != nullptr ? theCase.mHost : "untouched", theOptions.mHost) << theCase.mText;
    EXPECT_EQ(theCase.mPort != nullptr ? theCase.mPort : "", theOptions.mPort) << theCase.mText;
  }
}
