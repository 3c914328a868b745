// The viewer as its user meets it: tools/qvlogcat/main.cpp and what it calls.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const char kFirst[] = "Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: first\n";
const char kSecond[] = "Nov 21 14:03:08.042 player-1a2b3c4d E NET b6f2a000: second\n";
const char kThird[] = "Nov 21 14:03:09.042 tuner-2a2b3c4d D GRAPHICS b6f2a000: third\n";
const char kLost[] = "Nov 21 14:03:10.042 tuner-2a2b3c4d - lost 3\n";

class qvlogcat : public ::testing::Test {
 protected:
  std::string File(const std::string& aName) const { return mFolder.File(aName); }
  void Write(const std::string& aName, const std::string& aText) { WriteWholeFile(File(aName), aText); }

  ChildResult Run(std::vector<std::string> anArguments, std::vector<std::string> anEnvironment = {}) {
    anEnvironment.insert(anEnvironment.begin(), {"TZ=UTC0", "QVLOG_TAGS"});
    return RunProgram(QVLOGCAT, anArguments, anEnvironment);
  }
  // What is printed of a file with the four lines above.
  std::string Shown(std::vector<std::string> anArguments, std::vector<std::string> anEnvironment = {}) {
    Write("box.log", std::string(kFirst) + kSecond + kThird + kLost);
    anArguments.push_back(File("box.log"));
    ChildResult theResult = Run(anArguments, anEnvironment);
    EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
    EXPECT_EQ("", theResult.mStderr);
    return theResult.mStdout;
  }
  void ExpectBadOption(std::vector<std::string> anArguments, const std::string& aLine,
                       std::vector<std::string> anEnvironment = {}) {
    ChildResult theResult = Run(anArguments, anEnvironment);
    EXPECT_EQ(2, theResult.mExitCode) << aLine;
    EXPECT_EQ("qvlogcat: " + aLine + "\n", theResult.mStderr);
    EXPECT_EQ("", theResult.mStdout);
  }

  ScratchFolder mFolder;
};

}  // namespace

TEST_F(qvlogcat, ShowsAFileAsItIsWhenNothingIsAskedFor) {
  EXPECT_EQ(std::string(kFirst) + kSecond + kThird + kLost, Shown({}));
}

TEST_F(qvlogcat, ShowsRenamedFilesFirst) {
  Write("box.log.2", kFirst);
  Write("box.log.1", kSecond);
  Write("box.log", kThird);
  EXPECT_EQ(std::string(kFirst) + kSecond + kThird, Run({File("box.log")}).mStdout);
}

TEST_F(qvlogcat, ShowsFilesOneAfterTheOther) {
  Write("a.log", kThird);
  Write("b.log", kFirst);
  EXPECT_EQ(std::string(kThird) + kFirst, Run({File("a.log"), "--input=" + File("b.log")}).mStdout);
}

TEST_F(qvlogcat, TheInputOptionTakesANameThatLooksLikeAFilter) {
  Write("a:D", kFirst);
  for (const std::vector<std::string>& theArguments :
       std::vector<std::vector<std::string>>{{"-i", "a:D"}, {"./a:D"}}) {
    ChildResult theResult = RunInChild([&] {
      std::filesystem::current_path(mFolder.Path());
      BecomeProgram(QVLOGCAT, theArguments, {"QVLOG_TAGS"});
    });
    EXPECT_EQ(kFirst, theResult.mStdout) << theResult.mStderr;
  }
}

TEST_F(qvlogcat, ALineWithoutEndIsShown) {
  Write("box.log", "last");
  EXPECT_EQ("last\n", Run({"-o", "cat", File("box.log")}).mStdout);
}

TEST_F(qvlogcat, AFileThatCannotBeReadDoesNotHideTheOthers) {
  Write("box.log", kFirst);
  ChildResult theResult = Run({File("missing.log"), File("box.log")});
  EXPECT_EQ(1, theResult.mExitCode);
  EXPECT_EQ(kFirst, theResult.mStdout);
  EXPECT_EQ("qvlogcat: " + File("missing.log") + ": No such file or directory\n", theResult.mStderr);
}

TEST_F(qvlogcat, AFolderIsNoFile) {
  ChildResult theResult = Run({mFolder.Path()});
  EXPECT_EQ(1, theResult.mExitCode);
  EXPECT_EQ("qvlogcat: " + mFolder.Path() + ": Is a directory\n", theResult.mStderr);
}

TEST_F(qvlogcat, ShowsTheLastLines) {
  EXPECT_EQ(std::string(kThird) + kLost, Shown({"-n", "2"}));
  EXPECT_EQ("", Shown({"--lines=0"}));
  EXPECT_EQ(std::string(kFirst) + kSecond + kThird + kLost, Shown({"--lines=100"}));
}

TEST_F(qvlogcat, LinesCountAcrossFiles) {
  Write("box.log.1", std::string(kFirst) + kSecond);
  Write("box.log", kThird);
  Write("other.log", kLost);
  EXPECT_EQ(std::string(kSecond) + kThird, Run({"-n2", File("box.log")}).mStdout);
  EXPECT_EQ(std::string(kSecond) + kThird + kLost, Run({"-n3", File("box.log"), File("other.log")}).mStdout);
}

TEST_F(qvlogcat, LinesThatAFilterHidesDoNotCount) {
  std::string theText = kSecond;
  for (int i = 0; i < 10000; ++i) {
    theText += kFirst;
  }
  Write("box.log", theText);
  EXPECT_EQ(kSecond, Run({"-n", "1", "-p", "E", File("box.log")}).mStdout) << "a megabyte of others follows";
}

TEST_F(qvlogcat, TheLastLinesOfALargeFileAreItsLast) {
  std::string theText;
  for (int i = 0; i < 100000; ++i) {
    theText += "Nov 21 14:03:07.042 p-1a2b3c4d I M b6f2a000: line " + std::to_string(i) + "\n";
  }
  Write("box.log", theText);
  EXPECT_EQ("line 99998\nline 99999\n", Run({"-n", "2", "-o", "cat", File("box.log")}).mStdout);
}

TEST_F(qvlogcat, TheLastLinesOfTextAreFoundToo) {
  std::string theText;
  for (int i = 0; i < 100000; ++i) {
    theText += "line " + std::to_string(i) + "\n";
  }
  Write("box.log", theText);
  EXPECT_EQ("line 99998\nline 99999\n", Run({"-n", "2", "-o", "cat", File("box.log")}).mStdout);
}

TEST_F(qvlogcat, ALineOfTwoMegabytesIsShownWhole) {
  std::string theLine = "Nov 21 14:03:07.042 p-1a2b3c4d I M b6f2a000: " + std::string(2097152, 'x') + "\n";
  Write("box.log", kFirst + theLine + kThird);
  EXPECT_TRUE(Run({File("box.log")}).mStdout == kFirst + theLine + kThird);
  EXPECT_TRUE(Run({"-n", "2", File("box.log")}).mStdout == theLine + kThird);
}

TEST_F(qvlogcat, FiltersByModuleAndLevel) {
  EXPECT_EQ(std::string(kFirst) + kThird + kLost, Shown({"NET:S"}));
  EXPECT_EQ(std::string(kFirst) + kSecond + kLost, Shown({"graph*:I"}));
}

TEST_F(qvlogcat, SilentHidesWhatNoFilterNames) {
  EXPECT_EQ(std::string(kSecond) + kLost, Shown({"-s", "NET:D"}));
  EXPECT_EQ(std::string(kSecond) + kLost, Shown({"NET:D", "*:S"}));
}

TEST_F(qvlogcat, TheVariableHoldsTheFiltersWhenNoneAreGiven) {
  EXPECT_EQ(std::string(kFirst) + kThird + kLost, Shown({}, {"QVLOG_TAGS=NET:S GRAPHICS:D"}));
  EXPECT_EQ(std::string(kSecond) + kLost, Shown({"GRAPHICS:S"}, {"QVLOG_TAGS=NET:S"}));
}

TEST_F(qvlogcat, FiltersByPriority) {
  EXPECT_EQ(std::string(kSecond) + kLost, Shown({"-p", "W"}));
  EXPECT_EQ(std::string(kFirst) + kSecond + kLost, Shown({"--priority=info"}));
}

TEST_F(qvlogcat, FiltersByProcess) {
  EXPECT_EQ(std::string(kThird) + kLost, Shown({"-t", "tuner"}));
  EXPECT_EQ(std::string(kFirst) + kSecond, Shown({"--identifier=pl*"}));
  EXPECT_EQ(std::string(kFirst) + kSecond + kThird + kLost, Shown({"-t", "player-1a2b3c4d", "-t", "tuner"}));
}

TEST_F(qvlogcat, FiltersByText) { EXPECT_EQ(std::string(kFirst) + kThird, Shown({"-g", "^(first|thi.d)$"})); }

TEST_F(qvlogcat, FiltersByTime) {
  Write("box.log",
        "2026-11-21T14:03:07.000000+00:00 p-1a2b3c4d I M 1: one\n"
        "2026-11-21T14:03:08.000000+00:00 p-1a2b3c4d I M 1: two\n"
        "2026-11-21T14:03:09.000000+00:00 p-1a2b3c4d I M 1: three\n");
  EXPECT_EQ("two\n",
            Run({"-S", "2026-11-21 14:03:08", "-U", "@1795269788", "-o", "cat", File("box.log")}).mStdout);
}

TEST_F(qvlogcat, ShowsOneFormInAnother) {
  Write("box.log", kFirst);
  EXPECT_THAT(Run({"-o", "short-iso", File("box.log")}).mStdout,
              ::testing::MatchesRegex(
                  "20..-11-21T14:03:07.042000\\+00:00 player-1a2b3c4d I GRAPHICS b6f2a000: first\n"));
  EXPECT_EQ("first\n", Run({"-o", "cat", File("box.log")}).mStdout);
  EXPECT_EQ("I 14:03:07:042|b6f2a000|GRAPHICS   first\n", Run({"-oraw", File("box.log")}).mStdout);
  EXPECT_THAT(
      Run({"--output=json", File("box.log")}).mStdout,
      HasSubstr("\"level\":\"info\",\"process\":\"player\",\"uuid\":\"1a2b3c4d\",\"thread\":\"b6f2a000\","
                "\"module\":\"GRAPHICS\",\"msg\":\"first\"}\n"));
}

TEST_F(qvlogcat, ColorsAreForTerminalsUnlessAsked) {
  EXPECT_EQ(std::string::npos, Shown({}).find('\033'));
  EXPECT_NE(std::string::npos, Shown({"--color=always"}).find('\033'));
  EXPECT_NE(std::string::npos, Shown({"--color=always"}, {"NO_COLOR=1"}).find('\033'));
  EXPECT_EQ(std::string::npos, Shown({"--color=never"}).find('\033'));
}

TEST_F(qvlogcat, ControlCharactersOfAFileAreEscaped) {
  Write("box.log", "evil \033]0;title\007 text\n");
  EXPECT_EQ("evil \\x1b]0;title\\x07 text\n", Run({"-o", "cat", File("box.log")}).mStdout);
}

TEST_F(qvlogcat, WithoutAFileTheCollectorsFileIsShown) {
  std::string theProgram = File("qvlogcat");
  std::filesystem::copy_file(QVLOGCAT, theProgram);
  Write("box.log", kFirst);
  Write("qvlogd.ini", "file = " + File("box.log") + "\n");
  EXPECT_EQ(kFirst, RunProgram(theProgram, {}, {"TZ=UTC0", "QVLOG_TAGS"}).mStdout);
  Write("_qvlogd.ini", "file = " + File("other.log") + "\n");
  Write("other.log", kSecond);
  EXPECT_EQ(kSecond, RunProgram(theProgram, {}, {"TZ=UTC0", "QVLOG_TAGS"}).mStdout);
}

TEST_F(qvlogcat, TheSettingsFolderCanBeGiven) {
  Write("box.log", kFirst);
  Write("qvlogd.ini", "file = " + File("box.log") + "\n");
  EXPECT_EQ(kFirst, Run({"--settings=" + mFolder.Path()}).mStdout);
}

TEST_F(qvlogcat, LeavesNoFilesBehind) {
  std::string theProgram = File("qvlogcat");
  std::filesystem::copy_file(QVLOGCAT, theProgram);
  Write("box.log", kFirst);
  EXPECT_EQ(0, RunProgram(theProgram, {File("box.log")}).mExitCode);
  EXPECT_EQ("box.log qvlogcat", mFolder.Names());
}

TEST_F(qvlogcat, ABadOptionEndsWithOneLineThatNamesIt) {
  ExpectBadOption({"--bogus"}, "unknown or ambiguous option '--bogus'");
  ExpectBadOption({"-sx"}, "unknown or ambiguous option '-x'");
  ExpectBadOption({"--lines"}, "option '--lines' needs a value");
  ExpectBadOption({"-n"}, "option '-n' needs a value");
  ExpectBadOption({"--follow=1"}, "option '--follow=1' takes no value");
  ExpectBadOption({"-n", "x"}, "--lines: 'x' is not a number of lines");
  ExpectBadOption({"-n", "-1"}, "--lines: '-1' is not a number of lines");
  ExpectBadOption({"-o", "xml"}, "--output: 'xml' is not short, short-iso, cat, raw or json");
  ExpectBadOption({"--color=blue"}, "--color: 'blue' is not auto, always or never");
  ExpectBadOption({"-p", "loud"}, "--priority: 'loud' is not one of E W I D, error, warning, info, debug");
  ExpectBadOption({"-g", "("}, "--grep: '(' is not a regular expression");
  ExpectBadOption({"-S", "soon"},
                  "--since: 'soon' is not a time, as in 2026-11-21 14:03:07, 14:03, @SECONDS or -15m");
  ExpectBadOption({"-U", "soon"},
                  "--until: 'soon' is not a time, as in 2026-11-21 14:03:07, 14:03, @SECONDS or -15m");
  ExpectBadOption({"--settings=/nonexistent"}, "--settings: /nonexistent: No such file or directory");
  ExpectBadOption({"--input="}, "--input: '' is not a file name");
  ExpectBadOption({"GRAPHICS:X"}, "filter 'GRAPHICS:X' is not MODULE:LEVEL");
  ExpectBadOption({}, "QVLOG_TAGS: 'A:X' is not MODULE:LEVEL ...", {"QVLOG_TAGS=A:X"});
}

TEST_F(qvlogcat, HelpAndVersionGoToStandardOutput) {
  ChildResult theHelp = Run({"--help"});
  EXPECT_EQ(0, theHelp.mExitCode);
  EXPECT_THAT(theHelp.mStdout, StartsWith("Usage: qvlogcat [OPTION]... [FILE]... [MODULE:LEVEL]...\n"));
  ChildResult theVersion = Run({"--version"});
  EXPECT_EQ(0, theVersion.mExitCode);
  EXPECT_EQ("qvlogcat 1.0.0\n", theVersion.mStdout);
}

TEST_F(qvlogcat, OutputThatCannotBeWrittenIsAFailure) {
  Write("box.log", kFirst);
  for (const std::string& theArgument : {File("box.log"), std::string("--help"), std::string("--version")}) {
    ChildResult theResult = RunInChild([&] {
      dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
      BecomeProgram(QVLOGCAT, {theArgument}, {});
    });
    EXPECT_EQ(1, theResult.mExitCode) << theArgument;
    EXPECT_EQ("qvlogcat: standard output: No space left on device\n", theResult.mStderr) << theArgument;
  }
}
