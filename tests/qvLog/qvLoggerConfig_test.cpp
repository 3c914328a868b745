// How loggers read their configuration: qvLog/qvLoggerConfig.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/LogProgram.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// What one operation of a probe prints, with this text as the probe's section of the configuration.
std::string Probe(const std::string& aSection, const std::vector<std::string>& anOperation) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[probe]\n" + aSection);
  std::vector<std::string> theOperations = {"reload", "probe"};
  theOperations.insert(theOperations.end(), anOperation.begin(), anOperation.end());
  std::string theText = theProgram.Run(theOperations).mStdout;
  return theText.substr(0, theText.find('\n'));
}

// The capacity of the formatting buffer with this section "options".
std::string Capacity(const std::string& anOptions) {
  LogProgram theProgram;
  theProgram.Configure("[options]\n" + anOptions);
  return theProgram.Run({"reload", "capacity"}).mStdout;
}

}  // namespace

TEST(qvLoggerConfig, TheFileIsNamedAfterTheProcess) {
  EXPECT_EQ("qvLog.box.ini\n", LogProgram().Run({"file-name"}).mStdout);
}

TEST(qvLoggerConfig, ALongProcessNameIsCutTo63Characters) {
  ScratchFolder theFolder;
  std::string theName = std::string(60, 'n') + "abcdef";
  ChildResult theResult = RunProgram(CopyTestProgram("LogScript", theFolder.Path(), theName), {"file-name"});
  EXPECT_EQ("qvLog." + std::string(60, 'n') + "abc.ini\n", theResult.mStdout);
  EXPECT_TRUE(FileExists(theFolder.File("_qvLog." + std::string(60, 'n') + "abc.ini")));
}

TEST(qvLoggerConfig, ALevelWordOrNumberGivesItsThreshold) {
  struct {
    const char* mSetting;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"off", "0", "word"},
      {"error", "2", "word"},
      {"warn", "3", "word"},
      {"warning", "3", "word"},
      {"info", "4", "word"},
      {"debug", "65535", "word"},
      {"all", "65535", "word"},
      {"Warning", "3", "any case"},
      {"WARNING", "3", "any case"},
      {"7", "7", "a number is a threshold"},
      {"0", "0", "a number is a threshold"},
      {"65535", "65535", "the largest threshold"},
      {"65536", "0", "the low 16 bits count"},
      {"65543", "7", "the low 16 bits count"},
      {"4294967303", "7", "the low 16 bits count, beyond 32 bits too"},
      {"-1", "65535", "the low 16 bits count"},
      {"0x7", "0", "decimal only"},
      {"7up", "0", "not a number"},
      {"verbose", "0", "no level word"},
      {"warnings", "0", "no level word"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, Probe(std::string("level=") + theCase.mSetting, {"get-level", "Error"}))
        << theCase.mSetting << ": " << theCase.mWhy;
  }
}

TEST(qvLoggerConfig, AMissingLevelHasTheThresholdOfTheDefault) {
  struct {
    const char* mDefault;
    const char* mExpected;
  } kCases[] = {{"Off", "0"},
                {"All", "65535"},
                {"0", "0"},
                {"1", "0"},
                {"2", "2"},
                {"3", "3"},
                {"4", "4"},
                {"5", "5"},
                {"7", "7"},
                {"65535", "65535"},
                {"99999", "65535"},
                {"Info", "4"},
                {"-1", "65535"},
                {"5000000000", "65535"},
                {"99999999999999999999", "65535"}};
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, Probe("", {"get-level", theCase.mDefault})) << theCase.mDefault;
  }
}

TEST(qvLoggerConfig, ANumericDefaultLevelIsPopulatedAsAWord) {
  struct {
    const char* mDefault;
    const char* mExpected;
  } kCases[] = {{"0", "level=Off"},
                {"1", "level=Off"},
                {"2", "level=Error"},
                {"3", "level=Warn"},
                {"4", "level=Info"},
                {"5", "level=5"},
                {"65534", "level=65534"},
                {"65535", "level=All"},
                {"99999", "level=All"},
                {"warning", "level=warning"},
                {"Debug", "level=Debug"},
                {"-1", "level=-1"},
                {"99999999999999999999", "level=All"},
                {"-99999999999999999999", "level=-99999999999999999999"}};
  for (const auto& theCase : kCases) {
    LogProgram theProgram;
    theProgram.Run({"reload", "probe", "get-level", theCase.mDefault});
    EXPECT_THAT(theProgram.Populated(), HasSubstr(std::string("[probe]\n") + theCase.mExpected + "\n"))
        << theCase.mDefault;
  }
}

TEST(qvLoggerConfigKept, DebugOpensEveryLevel) {
  EXPECT_EQ("4", Probe("level=info", {"get-level", "Off"}));
  EXPECT_EQ("65535", Probe("level=debug", {"get-level", "Off"})) << "not 5";
  EXPECT_EQ("65535", Probe("level=all", {"get-level", "Off"}));
}

TEST(qvLoggerConfig, AnIntegerIsReadOrItsDefaultTaken) {
  EXPECT_EQ("12", Probe("key=12", {"get-int", "key", "5"}));
  EXPECT_EQ("0", Probe("key=0", {"get-int", "key", "5"}));
  EXPECT_EQ("5", Probe("other=12", {"get-int", "key", "5"}));
  EXPECT_EQ("5", Probe("key=text", {"get-int", "key", "5"}));
  EXPECT_EQ("5", Probe("key=12abc", {"get-int", "key", "5"}));
  EXPECT_EQ("2147483647", Probe("key=2147483647", {"get-int", "key", "5"}));
  EXPECT_EQ("-2147483648", Probe("key=-2147483648", {"get-int", "key", "5"}));
  EXPECT_EQ("5", Probe("key=2147483648", {"get-int", "key", "5"}));
  EXPECT_EQ("-1", Probe("other=12", {"get-int", "key", "-1"}));
}

TEST(qvLoggerConfigKept, AStoredMinusOneCountsAsMissing) {
  EXPECT_EQ("-2", Probe("key=-2", {"get-int", "key", "5"}));
  EXPECT_EQ("5", Probe("key=-1", {"get-int", "key", "5"}));
  EXPECT_EQ("0", Probe("key=0", {"get-int", "key", "5"}));
  LogProgram theProgram;
  theProgram.Configure("[probe]\nkey=-1\n");
  theProgram.Run({"reload", "probe", "get-int", "key", "5"});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[probe]\nkey=5\n")) << "and so it is populated";
}

TEST(qvLoggerConfig, ATextIsReadOrItsDefaultTaken) {
  EXPECT_EQ("<a text>", Probe("key=a text", {"get-text", "key", "default"}));
  EXPECT_EQ("<default>", Probe("key=", {"get-text", "key", "default"}));
  EXPECT_EQ("<default>", Probe("", {"get-text", "key", "default"}));
  EXPECT_EQ("<>", Probe("", {"get-text", "key", ""}));
}

TEST(qvLoggerConfig, DefaultsArePopulatedExceptAnEmptyText) {
  LogProgram theProgram;
  theProgram.Run(
      {"reload", "probe", "get-int", "number", "5", "get-text", "text", "words", "get-text", "nothing", ""});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[probe]\nnumber=5\ntext=words\n"));
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("nothing")));
}

TEST(qvLoggerConfig, AFirstStartLeavesACompleteFileBehind) {
  LogProgram theProgram;
  theProgram.RemoveConfiguration();
  theProgram.Run({"reload"});
  EXPECT_EQ(
      "[options]\nmax_len_logger=1024\ndate=off\n"
      "\n[file]\nlevel=Off\nfile=stderr\nappend=0\n"
      "\n[qvlogd]\nlevel=All\ntarget=%QVRALOG%\nblocking=0\n",
      theProgram.Populated());
}

TEST(qvLoggerConfig, AnEmptyFileWithPopulateOnIsCompletedToo) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=1\n");
  theProgram.Run({"reload"});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[file]\nlevel=Off\nfile=stderr\nappend=0\n"));
}

TEST(qvLoggerConfig, EveryNumberButZeroSwitchesPopulatingOn) {
  struct {
    const char* mSetting;
    bool mfPopulates;
  } kCases[] = {{"1", true}, {"2", true}, {"-2", true}, {"-1", true}, {"no", true}, {"", true}, {"0", false}};
  for (const auto& theCase : kCases) {
    LogProgram theProgram;
    theProgram.Configure(std::string("[options]\npopulate=") + theCase.mSetting + "\n");
    theProgram.Run({"reload"});
    EXPECT_EQ(theCase.mfPopulates, FileExists(theProgram.Path("_qvLog.box.ini"))) << theCase.mSetting;
  }
}

TEST(qvLoggerConfigKept, AFirstStartDoesNotWritePopulate) {
  LogProgram theProgram;
  theProgram.RemoveConfiguration();
  theProgram.Run({"reload"});
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("populate")));
  theProgram.Run({"reload"});
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("populate"))) << "nor does a second start";
  theProgram.Run({"reload", "term", "reload"});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("populate=1\n"))
      << "populating is known to be on the second time";
}

TEST(qvLoggerConfig, SettingsThatExistAreNotPopulated) {
  LogProgram theProgram;
  theProgram.Configure("[options]\nmax_len_logger=2000\n[file]\nlevel=Error\n");
  theProgram.Run({"reload"});
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("max_len_logger")));
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("level")));
  EXPECT_THAT(theProgram.Populated(), HasSubstr("date=off"));
}

TEST(qvLoggerConfig, WithPopulateOffNothingIsWritten) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n");
  theProgram.Run({"reload", "will", "1", "0", "probe", "get-int", "key", "5"});
  EXPECT_FALSE(FileExists(theProgram.Path("_qvLog.box.ini")));
}

TEST(qvLoggerConfig, AProgramThatNeverLogsReadsItsConfigurationWhenItExits) {
  LogProgram theProgram;
  theProgram.Run({});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[file]\n"));
}

TEST(qvLoggerConfig, TheBootstrapFileNamesTheDirectories) {
  LogProgram theProgram;
  mkdir(theProgram.Path("shipped").c_str(), 0777);
  WriteWholeFile(theProgram.Path("shipped/qvLog.box.ini"), "[file]\nlevel=Error\n");
  WriteWholeFile(theProgram.Path("ConfigPath.ini"), "ReadPath=./shipped\nWritePath=./changed\n");
  EXPECT_EQ("2\n", theProgram.Run({"reload", "threshold", "File"}).mStdout);
  EXPECT_THAT(theProgram.Read("changed/_qvLog.box.ini"), HasSubstr("[file]\nfile=stderr\n"));
  EXPECT_FALSE(FileExists(theProgram.Path("_qvLog.box.ini")));
}

TEST(qvLoggerConfig, DirectoriesThatCannotBeMadeAreReplacedByTheProgramsOwn) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=Warn\n");
  WriteWholeFile(theProgram.Path("ConfigPath.ini"), "ReadPath=./box/no\nWritePath=./box/no\n");
  EXPECT_EQ("3\n", theProgram.Run({"reload", "threshold", "File"}).mStdout);
  EXPECT_THAT(theProgram.Populated(), HasSubstr("append=0\n"));
}

TEST(qvLoggerConfig, ChangesOfTheDeviceGoBeforeTheShippedSettings) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=Error\n");
  WriteWholeFile(theProgram.Path("_qvLog.box.ini"), "[file]\nlevel=Info\n");
  EXPECT_EQ("4\n", theProgram.Run({"reload", "threshold", "File"}).mStdout);
}

TEST(qvLoggerConfig, TheBufferHas1024BytesAtLeastAnd100MebibytesAtMost) {
  EXPECT_EQ("1024\n", Capacity(""));
  EXPECT_EQ("1024\n", Capacity("max_len_logger=0\n"));
  EXPECT_EQ("1024\n", Capacity("max_len_logger=-5\n"));
  EXPECT_EQ("1024\n", Capacity("max_len_logger=1023\n"));
  EXPECT_EQ("1025\n", Capacity("max_len_logger=1025\n"));
  EXPECT_EQ("104857600\n", Capacity("max_len_logger=104857600\n"));
  EXPECT_EQ("104857600\n", Capacity("max_len_logger=104857601\n"));
}

TEST(qvLoggerConfig, TheOptionsAreReadOnceForEachLifeOfTheFramework) {
  LogProgram theProgram;
  theProgram.Configure("[options]\nmax_len_logger=2000\n");
  EXPECT_EQ("2000\n2000\n3000\n",
            theProgram
                .Run({"reload", "capacity", "write", "qvLog.box.ini", "[options]\nmax_len_logger=3000\n",
                      "reload", "capacity", "term", "reload", "capacity"})
                .mStdout);
}

TEST(qvLoggerConfig, ALargerBufferTakesLongerMessages) {
  LogProgram theProgram;
  theProgram.Configure("[options]\nmax_len_logger=5000\n");
  std::string theText(4000, 'a');
  EXPECT_EQ("[" + theText + "]\n", theProgram.Run({"func", "2", "log", "1", "0", theText}).mStdout);
}

TEST(qvLoggerConfig, DatesAreInTheTimeStampsUnlessTheSettingIsOff) {
  struct {
    const char* mSetting;
    bool mfDate;
    const char* mWhy;
  } kCases[] = {
      {"", false, "off by default"},
      {"date=off\n", false, "off"},
      {"date=on\n", true, "anything else"},
      {"date=1\n", true, "anything else"},
      {"date=OFF\n", true, "compared exactly"},
  };
  for (const auto& theCase : kCases) {
    LogProgram theProgram;
    theProgram.Configure(std::string("[options]\n") + theCase.mSetting + "[file]\nlevel=all\n");
    std::string theText = theProgram.Run({"clock", "1709642045", "42999", "log", "1", "0", "x\n"}).mStderr;
    EXPECT_THAT(theText, HasSubstr(theCase.mfDate ? "\nE 03/05/2024 12:34:05:042|" : "\nE 12:34:05:042|"))
        << theCase.mWhy;
  }
}

TEST(qvLoggerConfig, AModuleIsSwitchedByItsKeyInTheLoggersSection) {
  LogProgram theProgram;
  theProgram.Configure(
      "[options]\npopulate=0\n"
      "[file]\nlevel=all\nLOG_DEFAULT=0\nLOG_SYSTEM=1\nLOG_SCHEDULER=7\nLOG_PACKETS=-3\nLOG_170=0\n");
  EXPECT_EQ("0\n1\n1\n0\n0\n1\n0\n1\n",
            theProgram
                .Run({"will", "1", "0",     // DEFAULT: switched off
                      "will", "1", "1",     // SYSTEM: switched on
                      "will", "1", "4",     // SCHEDULER: silent by default, switched on by a number above 0
                      "will", "1", "20",    // PACKETS: a number below 0 is off
                      "will", "1", "170",   // without a name, by its number
                      "will", "1", "171",   // without a setting
                      "will", "1", "22",    // PES_HEADER: silent by default
                      "will", "1", "600"})  // no switch at all
                .mStdout);
}

TEST(qvLoggerConfig, AModuleIsSwitchedOffForOneLoggerOnly) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nLOG_DEFAULT=0\n");
  ChildResult theResult = theProgram.Run({"func", "2", "log", "1", "0", "one\n", "log", "1", "1", "two\n"});
  EXPECT_EQ("[one\n]\n[two\n]\n", theResult.mStdout);
  EXPECT_THAT(theResult.mStderr, Not(HasSubstr("one")));
  EXPECT_THAT(theResult.mStderr, HasSubstr("two"));
}

TEST(qvLoggerConfig, ModuleDefaultsArePopulated) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\n");
  theProgram.Run(
      {"log", "1", "0", "x\n", "log", "1", "4", "x\n", "log", "1", "170", "x\n", "log", "1", "600", "x\n"});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("log_default=1\n"));
  EXPECT_THAT(theProgram.Populated(), HasSubstr("log_scheduler=0\n"));
  EXPECT_THAT(theProgram.Populated(), HasSubstr("log_170=1\n"));
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("600")));
}

TEST(qvLoggerConfig, AReloadSeesTheModuleSwitchesAsTheyAreThen) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\n");
  EXPECT_EQ("0\n0\n1\n", theProgram
                             .Run({"will", "1", "4", "write", "qvLog.box.ini",
                                   std::string(kNoLogDaemon) +
                                       "[options]\npopulate=0\n[file]\nlevel=all\nLOG_SCHEDULER=1\n",
                                   "will", "1", "4", "reload", "will", "1", "4"})
                             .mStdout);
}

TEST(qvLoggerConfig, WithPopulateOffADefaultIsTheTables) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\n");
  EXPECT_EQ("0\n1\n", theProgram.Run({"will", "1", "4", "will", "1", "5"}).mStdout);
}

TEST(qvLoggerConfig, PopulatingMakesModulesLogByDefault) {
  LogProgram theProgram;
  std::vector<std::string> theOperations = {"modules-off", "will", "1", "0", "will", "1", "170"};
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\n");
  EXPECT_EQ("0\n0\n", theProgram.Run(theOperations).mStdout) << "without populating they stay silent";
  theProgram.Configure("[options]\npopulate=1\n[file]\nlevel=all\n");
  EXPECT_EQ("1\n1\n", theProgram.Run(theOperations).mStdout);
  EXPECT_THAT(theProgram.Populated(), HasSubstr("log_default=1\n"));
}

TEST(qvLoggerConfig, AModuleThatIsSwitchedOnLogsAlthoughModulesAreSilentByDefault) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nLOG_SYSTEM=1\nLOG_170=1\n");
  EXPECT_EQ("0\n1\n1\n",
            theProgram.Run({"modules-off", "will", "1", "0", "will", "1", "1", "will", "1", "170"}).mStdout);
}

TEST(qvLoggerConfig, ALoggerWithoutConfigurationTakesItsDefaultsAndWritesNothing) {
  LogProgram theProgram;
  theProgram.Configure("[probe]\nkey=12\ntext=words\nlevel=info\n");
  EXPECT_EQ("5\n<default>\n2\n7\n",
            theProgram
                .Run({"reload", "probe-without-config", "get-int", "key", "5", "get-text", "text", "default",
                      "get-level", "Error", "get-int", "missing", "7"})
                .mStdout);
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("probe")));
}

TEST(qvLoggerConfig, OtherOptionsOfALoggerLeaveItItsConfiguration) {
  LogProgram theProgram;
  theProgram.Configure("[probe]\nkey=12\n");
  EXPECT_EQ("12\n", theProgram.Run({"reload", "probe-with-other-options", "get-int", "key", "5"}).mStdout);
}

// The bootstrap file is looked at as well, and the directories that it names are made, with every read.
TEST(qvLoggerConfig, ALoggerWithoutConfigurationTouchesNoFile) {
  struct {
    const char* mProbe;
    bool mfMakesFolder;
  } kCases[] = {{"probe", true}, {"probe-without-config", false}};
  for (const auto& theCase : kCases) {
    LogProgram theProgram;
    theProgram.Run({"reload", theCase.mProbe, "write", "ConfigPath.ini", "WritePath=./changed\n", "get-int",
                    "key", "5", "get-text", "key", "default", "get-level", "Error"});
    EXPECT_EQ(theCase.mfMakesFolder, FileExists(theProgram.Path("changed"))) << theCase.mProbe;
  }
}

TEST(qvLoggerConfig, AConfigurationThatCannotBeWrittenIsNoFailure) {
  LogProgram theProgram;
  mkdir(theProgram.Path("_qvLog.box.ini").c_str(), 0777);
  ChildResult theResult = theProgram.Run({"reload", "probe", "get-int", "key", "5"});
  EXPECT_EQ("5\n", theResult.mStdout);
  EXPECT_EQ("", theResult.mStderr);
}

TEST(qvLoggerConfig, AConfigurationThatCannotBeReadIsAnEmptyOne) {
  LogProgram theProgram;
  theProgram.RemoveConfiguration();
  mkdir(theProgram.Path("qvLog.box.ini").c_str(), 0777);
  ChildResult theResult = theProgram.Run({"threshold", "File", "reload", "threshold", "File"});
  EXPECT_EQ("none\n0\n", theResult.mStdout);
  EXPECT_EQ("", theResult.mStderr);
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[file]\nlevel=Off\nfile=stderr\nappend=0\n"));
}
