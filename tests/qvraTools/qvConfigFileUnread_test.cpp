// Settings that are there but could not be read or repaired: whoever opened them knows nothing of them, so a
// save must not replace them.

#include <errno.h>
#include <gtest/gtest.h>

#include <string>

#include "interposed/PlannedCalls.h"
#include "qvraTools/qvConfigFile.h"
#include "support/ScratchFolder.h"
#include "support/SettingsGenerations.h"

namespace {

// An open during which the calls of a name fail.
class UnluckyOpen {
 public:
  UnluckyOpen(const std::string& aFile, const std::string& aCallName, int anErrno) {
    CallPlan thePlan;
    thePlan.mfLooksCount = true;
    thePlan.mErrno = anErrno;
    thePlan.mFailName = aCallName;
    thePlan.mFailFrom = 0;
    thePlan.mFailCount = kNever;
    RunPlanned(thePlan, [&] { mConfigFile = qvConfigFile_New(nullptr, aFile.c_str(), nullptr); });
  }
  ~UnluckyOpen() { qvConfigFile_Delete(mConfigFile); }
  UnluckyOpen(const UnluckyOpen&) = delete;
  UnluckyOpen& operator=(const UnluckyOpen&) = delete;

  qvConfigFile* Get() const { return mConfigFile; }

 private:
  qvConfigFile* mConfigFile = nullptr;
};

}  // namespace

TEST(qvConfigFileUnread, SettingsThatCouldNotBeReadAreNotReplaced) {
  const struct {
    const char* mCall;
    int mErrno;
  } kCases[] = {{"open", EMFILE}, {"open", EACCES}, {"read", EIO}};
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mCall);
    ScratchFolder theFolder;
    std::string theFile = theFolder.File("a.ini");
    WriteWholeFile(theFile, GenerationText("old"));
    UnluckyOpen theOpen(theFile, theCase.mCall, theCase.mErrno);
    EXPECT_EQ(1, qvConfigFile_SetString(theOpen.Get(), "net", "key0", "new"));
    EXPECT_EQ(0, qvConfigFile_Save(theOpen.Get()));
    EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFile));
    EXPECT_EQ("a.ini", theFolder.Names());
  }
}

TEST(qvConfigFileUnread, CompletedSettingsThatCouldNotTakeTheirPlaceAreReadAndNotReplaced) {
  const struct {
    const char* mCall;
    int mErrno;
  } kCases[] = {{"rename", EIO}, {"stat", EIO}, {"flock", EWOULDBLOCK}};
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mCall);
    ScratchFolder theFolder;
    std::string theFile = theFolder.File("a.ini");
    WriteWholeFile(theFile, GenerationText("older"));
    WriteWholeFile(theFile + ".ok", GenerationText("old"));
    UnluckyOpen theOpen(theFile, theCase.mCall, theCase.mErrno);
    EXPECT_STREQ("old", qvConfigFile_GetString(theOpen.Get(), "net", "key0", ""));
    EXPECT_EQ(0, qvConfigFile_Save(theOpen.Get()));
    EXPECT_EQ("old", GenerationAtOpen(theFile));
  }
}

TEST(qvConfigFileUnread, CompletedSettingsThatCannotBeReadEitherLeaveTheOlderOnes) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("older"));
  WriteWholeFile(theFile + ".ok", GenerationText("old"));
  CallPlan thePlan;
  thePlan.mfLooksCount = true;
  thePlan.mErrno = EIO;
  qvConfigFile* theConfigFile = nullptr;
  // No lock, and the first open behind that fails too.
  thePlan.mFailName = "open";
  thePlan.mFailFrom = 0;
  thePlan.mFailCount = 5;
  const std::string theCalls = RunPlanned(thePlan, [&] {
                                 theConfigFile = qvConfigFile_New(nullptr, theFile.c_str(), nullptr);
                               }).Calls();
  ASSERT_EQ("stat open stat stat open open read", theCalls.substr(0, 34));
  EXPECT_STREQ("older", qvConfigFile_GetString(theConfigFile, "net", "key0", ""));
  EXPECT_EQ(0, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
  EXPECT_EQ("old", GenerationAtOpen(theFile));
}

TEST(qvConfigFileUnread, ResetGivesUpWhatCouldNotBeReadAndAllowsTheSave) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  UnluckyOpen theOpen(theFile, "read", EIO);
  qvConfigFile_Reset(theOpen.Get());
  qvConfigFile_SetString(theOpen.Get(), "net", "key0", "new");
  EXPECT_EQ(1, qvConfigFile_Save(theOpen.Get()));
  EXPECT_EQ("[net]\nkey0=new\n", ReadWholeFile(theFile));
}

TEST(qvConfigFileUnread, LeftoverTemporaryFileThatStaysDoesNotHinderASave) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  WriteWholeFile(theFile + ".tmp", "first=no\n");
  UnluckyOpen theOpen(theFile, "unlink", EIO);
  EXPECT_EQ("a.ini a.ini.tmp", theFolder.Names());
  EXPECT_EQ(1, qvConfigFile_Save(theOpen.Get()));
  EXPECT_EQ("a.ini", theFolder.Names());
}

TEST(qvConfigFileUnread, MissingFileIsNoReasonToRefuseASave) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  UnluckyOpen theOpen(theFile, "(none)", 0);
  qvConfigFile_SetString(theOpen.Get(), "net", "key0", "new");
  EXPECT_EQ(1, qvConfigFile_Save(theOpen.Get()));
  EXPECT_EQ("[net]\nkey0=new\n", ReadWholeFile(theFile));
}

TEST(qvConfigFileUnread, SignalsDuringTheOpenAreNotNoticed) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  CallPlan thePlan;
  thePlan.mfLooksCount = true;
  thePlan.mErrno = EINTR;
  thePlan.mFailCount = 2;
  EXPECT_EQ("stat stat open read read",
            RunPlanned(thePlan, [&] { GenerationAtOpen(theFile); }).Calls().substr(0, 24));
  for (size_t theIndex : {2, 3}) {
    thePlan.mFailFrom = theIndex;
    std::string theGeneration;
    RunPlanned(thePlan, [&] { theGeneration = GenerationAtOpen(theFile); });
    EXPECT_EQ("old", theGeneration);
  }
}
