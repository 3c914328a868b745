#include "qvOS/qvPath.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/EnvironmentVariable.h"
#include "support/OwnedText.h"
#include "support/ScratchFolder.h"

namespace {

std::string Normalize(const char* aPath, int aMode, const char* anAnchor) {
  return TakeText(qvPath_Normalize(aPath, 0, aMode, anAnchor));
}

// What PathFakeLinks prints, less its last line with the links that it was asked for.
std::string PathsWithLinks(const std::string& anExe, const std::string& aCwd, const std::string& aPath) {
  ChildResult theResult = RunProgram(TestProgramPath("PathFakeLinks"), {anExe, aCwd, aPath});
  EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
  return theResult.mStdout.substr(0, theResult.mStdout.rfind("pid "));
}

// The output of a copy of PathProbe at aFolder/aName.
std::string Probe(const std::string& aFolder, const std::string& aName,
                  const std::vector<std::string>& aCommands) {
  ChildResult theResult = RunProgram(CopyTestProgram("PathProbe", aFolder, aName), aCommands);
  EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
  return theResult.mStdout;
}

std::string MakeFolder(const ScratchFolder& aScratch, const std::string& aName) {
  std::string thePath = aScratch.File(aName);
  EXPECT_EQ(0, mkdir(thePath.c_str(), 0700)) << thePath;
  return thePath;
}

}  // namespace

TEST(qvPath, TheNormalizeModesHaveTheirValues) {
  EXPECT_EQ(0x00, kqvPathNormalizeMode_Generic);
  EXPECT_EQ(0x01, kqvPathNormalizeMode_NativeSlash);
  EXPECT_EQ(0x02, kqvPathNormalizeMode_NativeForm);
  EXPECT_EQ(0x03, kqvPathNormalizeMode_Native);
}

TEST(qvPath, ThePathTypesHaveTheirValues) {
  EXPECT_EQ(0, kqvPathType_Unknown);
  EXPECT_EQ(1, kqvPathType_Remote);
  EXPECT_EQ(2, kqvPathType_Fixed);
  EXPECT_EQ(3, kqvPathType_Removable);
}

TEST(qvPath, APathIsAbsoluteWhenItIsEmptyOrBeginsWithASeparator) {
  const struct {
    const char* mPath;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {nullptr, 0, "no path"},
      {"", 1, "the empty path"},
      {"/", 1, "a slash"},
      {"/a", 1, "a slash first"},
      {"\\", 1, "a backslash"},
      {"\\a", 1, "a backslash first"},
      {"a", 0, "a plain name"},
      {"a/b", 0, "a slash inside"},
      {".", 0, "the dot"},
      {"./a", 0, "a dot path"},
      {"../a", 0, "a dot-dot path"},
      {" /a", 0, "a blank first"},
      {"C:\\a", 0, "a drive is no root here"},
      {"\xC3\xA4", 0, "bytes above 0x7F"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, qvPath_IsAbsolute(theCase.mPath)) << theCase.mWhy;
  }
}

TEST(qvPath, NormalizePutsARelativePathBehindTheAnchor) {
  const struct {
    const char* mPath;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"./a", "/x/a", "the dot and its slash go"},
      {".\\a", "/x/a", "the dot and its backslash go"},
      {".", "/x/", "the dot alone goes"},
      {"./", "/x/", "nothing behind the dot"},
      {".//a", "/x//a", "two characters go, no more"},
      {"././a", "/x/./a", "only the first dot goes"},
      {"..", "/x/..", "dot-dot stays"},
      {"../a", "/x/../a", "dot-dot is not resolved"},
      {"..\\a", "/x/..\\a", "with a backslash too"},
      {"a", "/x/a", "a plain name"},
      {"a/b", "/x/a/b", "a plain path"},
      {"a/./b", "/x/a/./b", "a dot inside is no dot path"},
      {".a", "/x/.a", "a hidden name is no dot path"},
      {"..a", "/x/..a", "nor a name that begins with two dots"},
      {"...", "/x/...", "nor three dots"},
      {"\xC3\xA4\xFF", "/x/\xC3\xA4\xFF", "bytes above 0x7F pass"},
      {"/etc/a.ini", "/etc/a.ini", "an absolute path is copied"},
      {"\\etc\\a.ini", "\\etc\\a.ini", "with its backslashes"},
      {"", "", "the empty path is absolute"},
      {"/../a", "/../a", "nothing is resolved"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, Normalize(theCase.mPath, kqvPathNormalizeMode_Generic, "/x/"))
        << theCase.mWhy;
  }
}

TEST(qvPath, NormalizeAddsNoSlashToTheAnchor) {
  EXPECT_EQ("/xa", Normalize("./a", kqvPathNormalizeMode_Generic, "/x"));
  EXPECT_EQ("a", Normalize("a", kqvPathNormalizeMode_Generic, ""));
  EXPECT_EQ("", Normalize(".", kqvPathNormalizeMode_Generic, ""));
}

TEST(qvPath, NormalizeTurnsEveryBackslashInTheNativeSlashModesOnly) {
  EXPECT_EQ("/x/sub/a", Normalize("sub\\a", kqvPathNormalizeMode_NativeSlash, "/x/"));
  EXPECT_EQ("/x/sub/a", Normalize("sub\\a", kqvPathNormalizeMode_Native, "/x/"));
  EXPECT_EQ("/x/sub\\a", Normalize("sub\\a", kqvPathNormalizeMode_NativeForm, "/x/"));
  EXPECT_EQ("/x/sub\\a", Normalize("sub\\a", kqvPathNormalizeMode_Generic, "/x/"));
}

TEST(qvPath, NormalizeTurnsTheBackslashesOfAbsolutePathsAndAnchorsToo) {
  EXPECT_EQ("/etc//a.ini/", Normalize("\\etc\\\\a.ini\\", kqvPathNormalizeMode_NativeSlash, "/x/"));
  EXPECT_EQ("/x/y/a", Normalize("a", kqvPathNormalizeMode_NativeSlash, "\\x\\y\\"));
  EXPECT_EQ("/x/../a", Normalize("..\\a", kqvPathNormalizeMode_NativeSlash, "/x/"));
}

TEST(qvPath, NormalizeOfNullIsNull) {
  EXPECT_EQ(nullptr, qvPath_Normalize(nullptr, 0, kqvPathNormalizeMode_Native, "/x/"));
  EXPECT_EQ(nullptr, qvPath_Normalize(nullptr, 1, kqvPathNormalizeMode_Generic, nullptr));
}

TEST(qvPath, NormalizeTakesAFileAndADirectoryAlike) {
  EXPECT_EQ("/x/a", TakeText(qvPath_Normalize("./a", 1, kqvPathNormalizeMode_Native, "/x/")));
  EXPECT_EQ("/a", TakeText(qvPath_Normalize("/a", 1, kqvPathNormalizeMode_Native, "/x/")));
}

TEST(qvPath, NormalizeGivesANewTextForAnAbsolutePath) {
  const char* thePath = "/etc/a.ini";
  char* theCopy = qvPath_Normalize(thePath, 0, kqvPathNormalizeMode_Generic, nullptr);
  EXPECT_NE(thePath, theCopy);
  EXPECT_EQ("/etc/a.ini", TakeText(theCopy));
}

TEST(qvPath, NormalizeHasNoLimitOfLength) {
  std::string theName(100000, 'n');
  EXPECT_EQ("/x/" + theName, Normalize(("./" + theName).c_str(), kqvPathNormalizeMode_Native, "/x/"));
}

TEST(qvPath, ARelativePathIsAnchoredAtTheExecutableNotAtTheWorkingDirectory) {
  ScratchFolder theScratch;
  std::string theBin = MakeFolder(theScratch, "bin");
  std::string theElsewhere = MakeFolder(theScratch, "elsewhere");
  EXPECT_EQ(theBin + "/a.ini\n" + theBin + "/a.ini\n" + theBin + "/../a.ini\n" + theBin + "/\n/etc/a.ini\n",
            Probe(theBin, "prog",
                  {"chdir", theElsewhere, "normalize", "./a.ini", "normalize", "a.ini", "normalize",
                   "../a.ini", "normalize", ".", "normalize", "/etc/a.ini"}));
}

TEST(qvPath, TheExecutableHasAFullPathADirectoryAndAName) {
  ScratchFolder theScratch;
  EXPECT_EQ(theScratch.Path() + "/prog.bin\n" + theScratch.Path() + "/\nprog.bin\n",
            Probe(theScratch.Path(), "prog.bin", {"full", "path", "name"}));
}

TEST(qvPath, TheExtensionStaysWhateverRemoveExtensionSays) {
  ScratchFolder theScratch;
  const std::string theFolder = MakeFolder(theScratch, "folder.d");
  EXPECT_EQ(theFolder + "/\nprog.bin\n" + theFolder + "/\nprog.bin\n",
            Probe(theFolder, "prog.bin", {"path", "name", "bare"}));
}

TEST(qvPath, AJavaProgramsPathIsItsWorkingDirectory) {
  ScratchFolder theScratch;
  std::string theElsewhere = MakeFolder(theScratch, "elsewhere");
  EXPECT_EQ(theElsewhere + "/java\n" + theElsewhere + "/\njava\n" + theElsewhere + "/a.ini\n",
            Probe(theScratch.Path(), "java",
                  {"chdir", theElsewhere, "full", "path", "name", "normalize", "a.ini"}));
}

TEST(qvPathKept, JavaAnywhereInThePathMakesAJavaProgram) {
  ScratchFolder theScratch;
  std::string theFolder = MakeFolder(theScratch, "myjavabox");
  std::string theElsewhere = MakeFolder(theScratch, "elsewhere");
  EXPECT_EQ(theElsewhere + "/java\n", Probe(theFolder, "prog", {"chdir", theElsewhere, "full"}));
  std::string theOther = MakeFolder(theScratch, "myJavaBox");
  EXPECT_EQ(theOther + "/prog\n", Probe(theOther, "prog", {"chdir", theElsewhere, "full"}));
}

TEST(qvPath, TheExecutablesPathIsReadOnce) {
  ScratchFolder theScratch;
  std::string theFirst = MakeFolder(theScratch, "first");
  std::string theSecond = MakeFolder(theScratch, "second");
  EXPECT_EQ(theFirst + "/java\n" + theFirst + "/java\n",
            Probe(theScratch.Path(), "java", {"chdir", theFirst, "full", "chdir", theSecond, "full"}));
}

TEST(qvPath, ThreadsThatAskForTheFirstTimeAtOnceGetTheSamePath) {
  ScratchFolder theScratch;
  EXPECT_EQ("agreed\n", Probe(theScratch.Path(), "prog", {"race"}));
}

TEST(qvPath, TheLinksAreReadOnceAndByTheProcessId) {
  ChildResult theResult = RunProgram(TestProgramPath("PathFakeLinks"), {"/opt/java/prog", "/work", "a"});
  size_t theStart = theResult.mStdout.rfind("pid ");
  ASSERT_NE(std::string::npos, theStart);
  size_t theColon = theResult.mStdout.find(':', theStart);
  std::string thePid = theResult.mStdout.substr(theStart + 4, theColon - theStart - 4);
  EXPECT_EQ(" /proc/" + thePid + "/exe /proc/" + thePid + "/cwd\n", theResult.mStdout.substr(theColon + 1));
}

TEST(qvPath, TheExampleOfAProgramInOpt) {
  EXPECT_EQ("/opt/app/bin/prog\n/opt/app/bin/\nprog\n/opt/app/bin/a.ini\n",
            PathsWithLinks("/opt/app/bin/prog", "/work", "./a.ini"));
}

TEST(qvPath, TheBackslashesOfTheExecutablesPathBecomeSlashes) {
  EXPECT_EQ("/opt/my/app/prog\n/opt/my/app/\nprog\n/opt/my/app/a\n",
            PathsWithLinks("/opt/my\\app\\prog", "/work", "a"));
}

TEST(qvPath, TheWorkingDirectoryOfAJavaProgramKeepsItsBackslashes) {
  EXPECT_EQ("/wo\\rk/java\n/wo\\rk/\njava\n/wo/rk/a\n", PathsWithLinks("/usr/bin/java", "/wo\\rk", "a"));
}

TEST(qvPath, AJavaProgramInTheRootDirectoryHasTwoSlashes) {
  EXPECT_EQ("//java\n//\njava\n//a\n", PathsWithLinks("/usr/bin/java", "/", "a"));
}

TEST(qvPath, AJavaProgramWithoutAReadableWorkingDirectoryKeepsItsOwnPath) {
  EXPECT_EQ("/usr/bin/java\n/usr/bin/\njava\n/usr/bin/a\n", PathsWithLinks("/usr/bin/java", "-", "a"));
}

TEST(qvPath, WithoutAReadableExecutableThereIsNoAnchor) {
  EXPECT_EQ("\n<null>\n<null>\n<null>\n", PathsWithLinks("-", "/work", "a"));
  EXPECT_EQ("\n<null>\n<null>\n/etc/a\n", PathsWithLinks("-", "/work", "/etc/a"));
}

TEST(qvPath, AnExecutableWithoutASlashHasNoDirectoryAndNoName) {
  EXPECT_EQ("prog\n<null>\n<null>\n<null>\n", PathsWithLinks("prog", "/work", "a"));
}

TEST(qvPath, AnExecutableInTheRootDirectoryLiesInIt) {
  EXPECT_EQ("/prog\n/\nprog\n/a\n", PathsWithLinks("/prog", "/work", "./a"));
}

TEST(qvPath, ThePathOfTheExecutableIsCutAt8192Bytes) {
  std::string theLongest = "/" + std::string(8190, 'd') + "/";
  EXPECT_EQ(theLongest + "\n" + theLongest + "\n\n" + theLongest + "a\n",
            PathsWithLinks(theLongest, "/work", "a"));
  EXPECT_EQ(theLongest + "\n" + theLongest + "\n\n" + theLongest + "a\n",
            PathsWithLinks(theLongest + "prog", "/work", "a"));
}

TEST(qvPath, ALongWorkingDirectoryOfAJavaProgramStaysInsideTheBuffer) {
  std::string theDir = "/" + std::string(8191, 'd');
  std::string theKept = theDir.substr(0, 8187);
  EXPECT_EQ(theKept + "/java\n" + theKept + "/\njava\n" + theKept + "/a\n",
            PathsWithLinks("/usr/bin/java", theDir, "a"));
}

TEST(qvPath, TheTemporaryDirectoryIsTheVariableOrSlashTmp) {
  EnvironmentVariable theVariable("TMPDIR");
  const struct {
    const char* mValue;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {nullptr, "/tmp", "unset"},
      {"/var/my tmp", "/var/my tmp", "set"},
      {"relative/", "relative/", "taken as it is"},
      {"", "", "set to nothing is set"},
  };
  for (const auto& theCase : kCases) {
    theVariable.Set(theCase.mValue);
    EXPECT_EQ(theCase.mExpected, TakeText(qvPath_GetTempDirPath())) << theCase.mWhy;
    EXPECT_EQ(theCase.mExpected, TakeText(qvPath_GetCacheDirPath())) << theCase.mWhy;
  }
}

TEST(qvPath, AFunctionLiesInTheSharedLibraryThatHoldsIt) {
  std::string theLibrary =
      TakeText(qvPath_GetFunctionSharedLibraryPath(reinterpret_cast<qvDefaultFunctionPtr>(&gethostid)));
  EXPECT_NE(std::string::npos, theLibrary.find("libc.so")) << theLibrary;
  std::string theProgram =
      TakeText(qvPath_GetFunctionSharedLibraryPath(reinterpret_cast<qvDefaultFunctionPtr>(&qvPath_GetType)));
  EXPECT_NE(std::string::npos, theProgram.find("qvPath_test")) << theProgram;
}

TEST(qvPath, AnAddressOutsideEveryLibraryHasNone) {
  EXPECT_EQ(nullptr, qvPath_GetFunctionSharedLibraryPath(nullptr));
}

TEST(qvPath, RealPathCopiesWhatHasNoPlaceholder) {
  EXPECT_EQ("/a/../b", TakeText(qvPath_RealPath("/a/../b")));
  EXPECT_EQ("a>b", TakeText(qvPath_RealPath("a>b")));
  EXPECT_EQ("", TakeText(qvPath_RealPath("")));
  EXPECT_EQ(nullptr, qvPath_RealPath("<documents>/a"));
  EXPECT_EQ(nullptr, qvPath_RealPath("/a/b<"));
  EXPECT_EQ(nullptr, qvPath_RealPath(nullptr));
}

TEST(qvPath, ThisPlatformKnowsNoFontDirectoryAndNoPathType) {
  EXPECT_EQ(nullptr, qvPath_GetSystemFontPath());
  EXPECT_EQ(kqvPathType_Unknown, qvPath_GetType("/"));
  EXPECT_EQ(kqvPathType_Unknown, qvPath_GetType(nullptr));
}

TEST(qvPath, TheDefaultConfigurationPathIsTheDotDirectory) {
  EXPECT_EQ("./", TakeText(qvPath_GetDefaultConfigPath()));
}
