#include "tools/qvlogd/Options.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"
#include "tools/qvlogd/OptionTable.h"

static ChildResult RunQvlogd(const std::vector<std::string>& anArguments,
                             const std::vector<std::string>& anEnvironment = {"QVLOG_TAGS"}) {
  return RunProgram(QVLOGD, anArguments, anEnvironment);
}

// One line on standard error, exit code 2.
static void ExpectBad(const std::string& aLine, const std::vector<std::string>& anArguments,
                      const std::vector<std::string>& anEnvironment = {"QVLOG_TAGS"}) {
  ChildResult theResult = RunQvlogd(anArguments, anEnvironment);
  EXPECT_EQ(2, theResult.mExitCode) << aLine;
  EXPECT_EQ(aLine + "\n", theResult.mStderr);
  EXPECT_EQ("", theResult.mStdout);
}

// --check ends the program at once when the options are right.
static void ExpectGood(std::vector<std::string> anArguments) {
  anArguments.push_back("--check=/dev/null");
  ChildResult theResult = RunQvlogd(anArguments);
  EXPECT_EQ(1, theResult.mExitCode) << anArguments.front();
  EXPECT_EQ("", theResult.mStderr);
}

TEST(qvlogdOptions, ABadOptionIsNamedInOneLineAndEndsWith2) {
  struct {
    std::vector<std::string> mArguments;
    const char* mLine;
  } kCases[] = {
      {{"--nonsense"}, "qvlogd: unknown or ambiguous option '--nonsense'"},
      {{"--nonsense=3"}, "qvlogd: unknown or ambiguous option '--nonsense=3'"},
      {{"--max"}, "qvlogd: unknown or ambiguous option '--max'"},
      {{"-x"}, "qvlogd: unknown or ambiguous option '-x'"},
      {{"-sx"}, "qvlogd: unknown or ambiguous option '-x'"},
      {{"--rate"}, "qvlogd: option '--rate' needs a value"},
      {{"-o"}, "qvlogd: option '-o' needs a value"},
      {{"--help=3"}, "qvlogd: option '--help=3' takes no value"},
      {{"--listen=12222"}, "qvlogd: --listen: '12222' is not an address with a port, as in 127.0.0.1:12222"},
      {{"--output=nice"}, "qvlogd: --output: 'nice' is not short, short-iso, cat, raw or json"},
      {{"-onice"}, "qvlogd: --output: 'nice' is not short, short-iso, cat, raw or json"},
      {{"--color=red"}, "qvlogd: --color: 'red' is not auto, always or never"},
      {{"--rotate-size=1X"}, "qvlogd: --rotate-size: '1X' is not a number of bytes, as in 512K, 10M or 1G"},
      {{"--rotate-time=1w"}, "qvlogd: --rotate-time: '1w' is not a time, as in 90s, 15m, 12h or 7d"},
      {{"--rotate-time=500ms"}, "qvlogd: --rotate-time: '500ms' is not a time, as in 90s, 15m, 12h or 7d"},
      {{"--rotate-count=-1"}, "qvlogd: --rotate-count: '-1' is not a number of files"},
      {{"--max-use="}, "qvlogd: --max-use: '' is not a number of bytes, as in 512K, 10M or 1G"},
      {{"--keep-free=5%"}, "qvlogd: --keep-free: '5%' is not a number of bytes, as in 512K, 10M or 1G"},
      {{"--rate=fast"}, "qvlogd: --rate: 'fast' is not a number of lines a second, as in 500/s"},
      {{"--forward=udp://localhost:514"},
       "qvlogd: --forward: 'udp://localhost:514' is not a target of the form tcp://HOST:PORT"},
      {{"--framing=crlf"}, "qvlogd: --framing: 'crlf' is not octet or lf"},
      {{"--stats=xml"}, "qvlogd: --stats: 'xml' is not text or json"},
      {{"--partial-time=soon"},
       "qvlogd: --partial-time: 'soon' is not a time, as in 500ms, 90s, 15m, 12h or 7d"},
      {{"--stop-time=-1"}, "qvlogd: --stop-time: '-1' is not a time, as in 500ms, 90s, 15m, 12h or 7d"},
      {{"--max-line=79"}, "qvlogd: --max-line: '79' is not a size from 80 to 1G"},
      {{"--max-line=2G"}, "qvlogd: --max-line: '2G' is not a size from 80 to 1G"},
      {{"--max-header=127"}, "qvlogd: --max-header: '127' is not a size from 128 to 1G"},
      {{"--max-connections=0"}, "qvlogd: --max-connections: '0' is not a number from 1 to 1000000"},
      {{"--max-turn=1"}, "qvlogd: --max-turn: '1' is not a size from 1K to 1G"},
      {{"--max-held=4095"}, "qvlogd: --max-held: '4095' is not a size from 4K to 1G"},
      {{"--check="}, "qvlogd: --check: '' is not a file name, or - for standard input"},
      {{"--check=/nonexistent"}, "qvlogd: --check: /nonexistent: No such file or directory"},
      {{"--settings=/nonexistent"}, "qvlogd: --settings: no folder '/nonexistent'"},
      {{"--settings=/proc/self/fd"},
       "qvlogd: --settings: neither qvlogd.ini nor _qvlogd.ini in '/proc/self/fd'"},
      {{"--listen=1.2.3.4:x"},
       "qvlogd: --listen: '1.2.3.4:x' is not an address with a port, as in 127.0.0.1:12222"},
      {{"--listen=::1:12222"},
       "qvlogd: --listen: '::1:12222' is not an address with a port, as in 127.0.0.1:12222"},
      {{"--listen=127.0.0.1:65536"},
       "qvlogd: --listen: '127.0.0.1:65536' is not an address with a port, as in 127.0.0.1:12222"},
      {{"--listen=0.0.0.0:0"},
       "qvlogd: --listen: 0.0.0.0:0 is reached by other machines: say --allow-remote if that is meant"},
      {{"--listen=[::]:0"},
       "qvlogd: --listen: [::]:0 is reached by other machines: say --allow-remote if that is meant"},
      {{"PLAYER:X"}, "qvlogd: filter 'PLAYER:X' is not MODULE:LEVEL"},
  };
  for (const auto& theCase : kCases) {
    ExpectBad(theCase.mLine, theCase.mArguments);
  }
}

TEST(qvlogdOptions, TheVariableWithTheFiltersIsNamedWhenItIsBad) {
  ExpectBad("qvlogd: QVLOG_TAGS: 'PLAYER:X' is not MODULE:LEVEL", {}, {"QVLOG_TAGS=TUNER:W PLAYER:X"});
}

TEST(qvlogdOptions, FiltersOnTheCommandLineTakeThePlaceOfTheVariable) {
  ChildResult theResult = RunQvlogd({"--check=/dev/null", "PLAYER:E"}, {"QVLOG_TAGS=PLAYER:X"});
  EXPECT_EQ("", theResult.mStderr);
}

TEST(qvlogdOptions, AFileThatCannotBeOpenedIsBad) {
  ChildResult theResult = RunQvlogd({"--listen=127.0.0.1:0", "--file=/dev/null/log"});
  EXPECT_EQ(2, theResult.mExitCode);
  EXPECT_NE(std::string::npos, theResult.mStderr.find("/dev/null/log")) << theResult.mStderr;
}

TEST(qvlogdOptions, AnOptionMayBeShortenedAsFarAsItIsClear) { ExpectGood({"--rotate-s=10M"}); }

TEST(qvlogdOptions, TheHelpNamesEveryOptionAndEndsWell) {
  ChildResult theResult = RunQvlogd({"--help", "--rate=ignored"});
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
  for (size_t i = 0; i < kOptionTable_Count; ++i) {
    EXPECT_NE(std::string::npos, theResult.mStdout.find(std::string("--") + kOptionTable[i].mName))
        << kOptionTable[i].mName;
  }
}

TEST(qvlogdOptions, NoLineOfTheHelpIsWiderThanATerminal) {
  std::string theHelp = RunQvlogd({"--help"}).mStdout;
  for (size_t theStart = 0; theStart < theHelp.size();) {
    size_t theEnd = theHelp.find('\n', theStart);
    EXPECT_GE(110u, theEnd - theStart) << theHelp.substr(theStart, theEnd - theStart);
    theStart = theEnd + 1;
  }
}

TEST(qvlogdOptions, AnAnswerThatCannotBeWrittenIsAFailure) {
  for (const char* theOption : {"--help", "--version", "--check=/dev/null"}) {
    ChildResult theResult = RunInChild([&] {
      dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
      BecomeProgram(QVLOGD, {theOption}, {});
    });
    EXPECT_EQ(2, theResult.mExitCode) << theOption;
    EXPECT_EQ("qvlogd: standard output: No space left on device\n", theResult.mStderr) << theOption;
  }
}

TEST(qvlogdOptions, TheVersionIsOneLine) {
  ChildResult theResult = RunQvlogd({"--version"});
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("qvlogd 1.0.0\n", theResult.mStdout);
}

TEST(qvlogdSettings, EveryLongOptionIsAKeyButThoseThatEndTheProgramOrNameTheSettings) {
  ScratchFolder theFolder;
  int theKeys = 0;
  for (size_t i = 0; i < kOptionTable_Count; ++i) {
    const OptionEntry& theEntry = kOptionTable[i];
    std::string theName = theEntry.mName;
    if (theName == "file") {
      continue;  // any text is a file name
    }
    WriteWholeFile(theFolder.File("qvlogd.ini"), theName + " = '?'\n");
    ++theKeys;
    if (theName == "check" || theName == "settings" || theName == "help" || theName == "version") {
      ExpectBad("qvlogd: qvlogd.ini: unknown key '" + theName + "'", {"--settings=" + theFolder.Path()});
    } else {
      ExpectBad("qvlogd: qvlogd.ini: " + theName + ": '?' is not " + theEntry.mExpected,
                {"--settings=" + theFolder.Path()});
    }
  }
  EXPECT_EQ(25, theKeys);
}

TEST(qvlogdSettings, AnUnknownKeyIsBad) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvlogd.ini"), "rats = 500/s\n");
  ExpectBad("qvlogd: qvlogd.ini: unknown key 'rats'", {"--settings=" + theFolder.Path()});
}

TEST(qvlogdSettings, ASectionIsBadSinceNobodyWouldReadIt) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvlogd.ini"), "[qvlogd]\nrate = 500/s\n");
  ExpectBad("qvlogd: --settings: section 'qvlogd': the settings have no sections",
            {"--settings=" + theFolder.Path()});
}

TEST(qvlogdSettings, TheCommandLineWins) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvlogd.ini"), "rate = bad\n");
  ExpectGood({"--settings=" + theFolder.Path(), "--rate=500/s"});
}

TEST(qvlogdSettings, TheLayerOfThisDeviceWinsOverTheShippedOne) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvlogd.ini"), "rate = bad\n");
  WriteWholeFile(theFolder.File("_qvlogd.ini"), "rate = 500/s\n");
  ExpectGood({"--settings=" + theFolder.Path()});
  WriteWholeFile(theFolder.File("_qvlogd.ini"), "rate = worse\n");
  ExpectBad("qvlogd: qvlogd.ini: rate: 'worse' is not a number of lines a second, as in 500/s",
            {"--settings=" + theFolder.Path()});
}

TEST(qvlogdSettings, LieBesideTheProgramUnlessThePathFileSaysOtherwise) {
  ScratchFolder theFolder;
  std::string theProgram = theFolder.File("qvlogd");
  std::filesystem::copy_file(QVLOGD, theProgram);
  WriteWholeFile(theFolder.File("qvlogd.ini"), "color = beside\n");
  EXPECT_EQ("qvlogd: qvlogd.ini: color: 'beside' is not auto, always or never\n",
            RunProgram(theProgram).mStderr);
  std::filesystem::create_directory(theFolder.File("etc"));
  WriteWholeFile(theFolder.File("etc/qvlogd.ini"), "color = elsewhere\n");
  WriteWholeFile(theFolder.File("ConfigPath.ini"), "ReadPath = ./etc\nWritePath = ./etc\n");
  EXPECT_EQ("qvlogd: qvlogd.ini: color: 'elsewhere' is not auto, always or never\n",
            RunProgram(theProgram).mStderr);
}

// The library's loggers would write their defaults into qvLog.qvlogd.ini.
TEST(qvlogdSettings, RunningLeavesNoFileBehind) {
  ScratchFolder theFolder;
  std::string theProgram = theFolder.File("qvlogd");
  std::filesystem::copy_file(QVLOGD, theProgram);
  EXPECT_EQ(1, RunProgram(theProgram, {"--check=/dev/null"}).mExitCode);
  EXPECT_EQ("qvlogd", theFolder.Names());
}
