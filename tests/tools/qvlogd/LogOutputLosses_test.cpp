#include <gtest/gtest.h>
#include <string.h>

#include <chrono>
#include <regex>

#include "StalledTarget.h"
#include "tools/qvlogd/LogOutput.h"

namespace {

// An output with room for ten lines of 100 bytes behind the ones that its writer holds.
class LogOutputLosses : public testing::Test {
 protected:
  void Start(LogForm aForm) {
    LogOutputOptions theOptions;
    theOptions.mForm = aForm;
    theOptions.mQueueBytes = 1000;
    mOutput = std::make_unique<LogOutput>(theOptions, std::make_unique<StalledTarget>(mControl));
    std::string theError;
    ASSERT_TRUE(mOutput->Open(&theError));
    Turn(0);
    mControl.WaitForWriter();
  }
  // A turn of the loop with one line.
  void Turn(int aNumber) {
    std::string theText = TextOf(aNumber);
    LogRecord theRecord;
    theRecord.mText = theText;
    theRecord.mRaw = theText;
    mOutput->Take(theRecord);
    mOutput->Flush();
  }
  static std::string TextOf(int aNumber) {
    std::string theText = std::to_string(aNumber);
    return theText + std::string(99 - theText.size(), '.');
  }
  static std::string Lines(int aFirst, int aLast) {
    std::string theLines;
    for (int i = aFirst; i <= aLast; ++i) {
      theLines += TextOf(i) + "\n";
    }
    return theLines;
  }

  TargetControl mControl;
  std::unique_ptr<LogOutput> mOutput;
};

}  // namespace

TEST_F(LogOutputLosses, OneLineTellsThemInTheirPlace) {
  Start(LogForm_Cat);
  for (int i = 1; i <= 25; ++i) {
    Turn(i);
  }
  EXPECT_EQ(15u, mOutput->Dropped());
  mControl.Release();
  mOutput->Close();
  EXPECT_EQ(Lines(0, 10) + "LogOutputLosses_test: suppressed 15\n", mControl.Written());
}

TEST_F(LogOutputLosses, TheLinesBehindThemFollowTheTelling) {
  Start(LogForm_Raw);
  for (int i = 1; i <= 12; ++i) {
    Turn(i);
  }
  mControl.Release();
  // The writer empties the queue at its own pace; lines that come too early are part of the loss.
  int theNext = 13;
  for (uint64 theDropped = 0; theDropped != mOutput->Dropped(); ++theNext) {
    theDropped = mOutput->Dropped();
    Turn(theNext);
  }
  mOutput->Close();
  std::string theDropped = std::to_string(theNext - 2 - 10);
  EXPECT_EQ(Lines(0, 10) + "LogOutputLosses_test: suppressed " + theDropped + "\n" +
                Lines(theNext - 1, theNext - 1),
            mControl.Written());
}

TEST_F(LogOutputLosses, FormsWithEventsTellThemAsOne) {
  Start(LogForm_JSON);
  for (int i = 1; i <= 100; ++i) {
    Turn(i);
  }
  std::string theDropped = std::to_string(mOutput->Dropped());
  mControl.Release();
  mOutput->Close();
  std::string theWritten = mControl.Written();
  std::string theLast = theWritten.substr(theWritten.rfind('\n', theWritten.size() - 2) + 1);
  EXPECT_TRUE(
      std::regex_match(theLast, std::regex("\\{\"ts\":\"[^\"]*\",\"event\":\"suppressed\",\"process\":"
                                           "\"LogOutputLosses_test\",.*\"count\":" +
                                           theDropped + "\\}\n")))
      << theLast;
}

TEST_F(LogOutputLosses, ATargetThatStaysStalledEndsTheWaitingAtTheEnd) {
  Start(LogForm_Cat);
  Turn(1);
  auto theStart = std::chrono::steady_clock::now();
  mOutput->Close();
  auto theTime = std::chrono::steady_clock::now() - theStart;
  EXPECT_GE(theTime, std::chrono::milliseconds(4900));
  EXPECT_EQ(2u, mOutput->Dropped());
  EXPECT_EQ("", mControl.Written());
}
