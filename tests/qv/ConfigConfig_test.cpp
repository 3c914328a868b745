// The bootstrap file lies beside the executable, so a copy of a small program says what it finds there.

#include "qv/ConfigConfig.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <type_traits>
#include <vector>

#include "support/ChildProcess.h"
#include "support/ClassLayout.h"
#include "support/ScratchFolder.h"

namespace {

// A folder with a program and a bootstrap file of this text.
class Bootstrap {
 public:
  explicit Bootstrap(const std::string& aText) : mProgram(CopyTestProgram("ConfigProbe", mFolder.Path())) {
    WriteWholeFile(mFolder.File("ConfigPath.ini"), aText);
  }
  std::string Run(const std::vector<std::string>& aCommands,
                  const std::vector<std::string>& anEnvironment = {}) const {
    ChildResult theResult = RunProgram(mProgram, aCommands, anEnvironment);
    EXPECT_EQ(0, theResult.mExitCode);
    EXPECT_EQ("", theResult.mStderr);
    return theResult.mStdout;
  }
  // Without the variable unless aVariable sets it.
  std::string Brand(const std::string& aKind, const std::string& aVariable = "QVBRANDID") const {
    return Run({"brand", aKind, "ConfigPath.ini"}, {aVariable});
  }
  const ScratchFolder& Folder() const { return mFolder; }

 private:
  ScratchFolder mFolder;
  std::string mProgram;
};

}  // namespace

TEST(qvConfigConfig, IsAConfigWithoutFieldsOfItsOwn) {
  EXPECT_TRUE((std::is_base_of<qvConfig, qvConfigConfig>::value));
  EXPECT_TRUE((std::is_convertible<qvConfigConfig*, qvConfig*>::value)) << "the base is not public";
  EXPECT_EQ(sizeof(qvConfig), sizeof(qvConfigConfig));
  EXPECT_TRUE(std::has_virtual_destructor<qvConfigConfig>::value);
}

TEST(qvConfigConfig, OnlyTheDestructorIsVirtual) {
  class Derived : public qvConfigConfig {
   public:
    virtual void Next() {}
  };
  EXPECT_EQ(2u, SlotOf(&Derived::Next));
}

TEST(qvConfigConfig, BootstrapFileNamesBothDirectories) {
  Bootstrap theBootstrap("ReadPath=/etc/app/\nWritePath=/var/app\n");
  EXPECT_EQ("/etc/app/|/var/app|1\n", theBootstrap.Run({"paths", "ConfigPath.ini"}));
}

TEST(qvConfigConfig, BootstrapKeysAreInTheDefaultSection) {
  Bootstrap theBootstrap("[paths]\nReadPath=/etc/app/\n[default]\nwritepath=/var/app\n");
  EXPECT_EQ("./|/var/app|1\n", theBootstrap.Run({"paths", "ConfigPath.ini"}));
}

TEST(qvConfigConfig, MissingBootstrapFileGivesTheExecutablesFolder) {
  Bootstrap theBootstrap("ReadPath=/etc/app/\n");
  EXPECT_EQ("./|./|1\n", theBootstrap.Run({"paths", "Other.ini"}));
  EXPECT_EQ("./|./|1\n", theBootstrap.Run({"check", "Other.ini"}));
}

TEST(qvConfigConfig, NullFileNameIsAMissingBootstrapFile) {
  qvCString theRead("unset");
  qvCString theWrite("unset");
  EXPECT_TRUE(qvConfigConfig::GetConfigPaths(theRead, theWrite, nullptr));
  EXPECT_STREQ("./", theRead.c_str());
  EXPECT_STREQ("./", theWrite.c_str());
}

TEST(qvConfigConfig, MissingOrEmptyKeyGivesTheExecutablesFolder) {
  Bootstrap theBootstrap("ReadPath=/etc/app/\n");
  EXPECT_EQ("/etc/app/|./|1\n", theBootstrap.Run({"paths", "ConfigPath.ini"}));
  Bootstrap theOther("ReadPath=\nWritePath=\"\"\n");
  EXPECT_EQ("./|./|1\n", theOther.Run({"paths", "ConfigPath.ini"}));
}

TEST(qvConfigConfig, BootstrapFileIsReadBesideTheExecutableAndNotInTheWorkingFolder) {
  Bootstrap theBootstrap("ReadPath=/etc/app/\n");
  ScratchFolder theElsewhere;
  WriteWholeFile(theElsewhere.File("ConfigPath.ini"), "ReadPath=/wrong/\n");
  EXPECT_EQ("/etc/app/|./|1\n", theBootstrap.Run({"chdir", theElsewhere.Path(), "paths", "ConfigPath.ini"}));
}

TEST(qvConfigConfig, BootstrapFileOfAJavaProgramIsReadInItsWorkingFolder) {
  ScratchFolder theFolder;
  ScratchFolder theElsewhere;
  const std::string theJava = CopyTestProgram("ConfigProbe", theFolder.Path(), "java");
  WriteWholeFile(theFolder.File("ConfigPath.ini"), "ReadPath=/wrong/\n");
  WriteWholeFile(theElsewhere.File("ConfigPath.ini"), "ReadPath=ro\n");
  EXPECT_EQ("ro|./|1\n",
            RunProgram(theJava, {"chdir", theElsewhere.Path(), "check", "ConfigPath.ini"}).mStdout);
  EXPECT_TRUE(FileExists(theElsewhere.File("ro"))) << "the directories that it names lie there as well";
}

TEST(qvConfigConfig, BootstrapFileIsNeverWrittenOrRepaired) {
  Bootstrap theBootstrap("; comment\nReadPath=/etc/app/\n");
  WriteWholeFile(theBootstrap.Folder().File("_ConfigPath.ini"), "ReadPath=/changed/\n");
  WriteWholeFile(theBootstrap.Folder().File("ConfigPath.ini.ok"), "ReadPath=/changed/\n");
  EXPECT_EQ("/etc/app/|./|1\n", theBootstrap.Run({"paths", "ConfigPath.ini"}));
  EXPECT_EQ("; comment\nReadPath=/etc/app/\n", ReadWholeFile(theBootstrap.Folder().File("ConfigPath.ini")));
  EXPECT_TRUE(FileExists(theBootstrap.Folder().File("ConfigPath.ini.ok")));
}

TEST(qvConfigConfig, PathsAreNotMadeUnlessTheyAreChecked) {
  Bootstrap theBootstrap("");
  std::string theRead = theBootstrap.Folder().File("a/read/");
  std::string theWrite = theBootstrap.Folder().File("b/write");
  WriteWholeFile(theBootstrap.Folder().File("ConfigPath.ini"),
                 "ReadPath=" + theRead + "\nWritePath=" + theWrite + "\n");
  EXPECT_EQ(theRead + "|" + theWrite + "|1\n", theBootstrap.Run({"paths", "ConfigPath.ini"}));
  EXPECT_FALSE(FileExists(theRead));
  EXPECT_EQ(theRead + "|" + theWrite + "|1\n", theBootstrap.Run({"check", "ConfigPath.ini"}));
  EXPECT_TRUE(FileExists(theRead));
  EXPECT_TRUE(FileExists(theWrite));
}

TEST(qvConfigConfig, RelativeDirectoriesAreMadeBesideTheExecutable) {
  Bootstrap theBootstrap("ReadPath=./ro\nWritePath=rw/deep\n");
  ScratchFolder theElsewhere;
  EXPECT_EQ("./ro|rw/deep|1\n", theBootstrap.Run({"chdir", theElsewhere.Path(), "check", "ConfigPath.ini"}));
  EXPECT_TRUE(FileExists(theBootstrap.Folder().File("ro")));
  EXPECT_TRUE(FileExists(theBootstrap.Folder().File("rw/deep")));
  EXPECT_EQ(0, rmdir(theElsewhere.Path().c_str())) << "something was made in the working folder";
}

TEST(qvConfigConfig, MissingWritePathPutsTheReadWriteFileBesideTheExecutable) {
  Bootstrap theBootstrap("ReadPath=./ro\n");
  EXPECT_EQ("./ro|./|1\n11\n",
            theBootstrap.Run({"check", "ConfigPath.ini", "save", "./ro", "./", "app.ini"}));
  EXPECT_EQ("[s]\nk=v\n", ReadWholeFile(theBootstrap.Folder().File("_app.ini")));
}

TEST(qvConfigConfig, DirectoryThatCannotBeMadeFailsTheCheck) {
  Bootstrap theBootstrap("ReadPath=ConfigPath.ini/x\nWritePath=made\n");
  EXPECT_EQ("ConfigPath.ini/x|made|0\n", theBootstrap.Run({"check", "ConfigPath.ini"}));
  EXPECT_FALSE(FileExists(theBootstrap.Folder().File("made")));
}

TEST(qvConfigConfig, StaticConfigPathsCheckLikeAnObject) {
  Bootstrap theBootstrap("ReadPath=ro\nWritePath=rw\n");
  EXPECT_EQ("ro|rw|1\n", theBootstrap.Run({"static", "ConfigPath.ini"}));
  EXPECT_TRUE(FileExists(theBootstrap.Folder().File("ro")));
  EXPECT_TRUE(FileExists(theBootstrap.Folder().File("rw")));
  Bootstrap theBroken("ReadPath=ConfigPath.ini/x\n");
  EXPECT_EQ("ConfigPath.ini/x|./|0\n", theBroken.Run({"static", "ConfigPath.ini"}));
}

TEST(qvConfigConfig, BrandIsTheKeyOfItsKind) {
  Bootstrap theBootstrap("[Brand]\nMBus=one\nSBus=two\nX_RPC=three\nAppSet=four\nOther=five\n");
  EXPECT_EQ("one\n", theBootstrap.Brand("MBus", "QVBRANDID=variable"));
  EXPECT_EQ("two\n", theBootstrap.Brand("SBus", "QVBRANDID=variable"));
  EXPECT_EQ("three\n", theBootstrap.Brand("X_RPC", "QVBRANDID=variable"));
  EXPECT_EQ("four\n", theBootstrap.Brand("AppSet", "QVBRANDID=variable"));
}

TEST(qvConfigConfig, UnknownKindGivesTheEmptyText) {
  Bootstrap theBootstrap("[Brand]\nOther=five\nmbus=one\n");
  EXPECT_EQ("\n", theBootstrap.Brand("Other", "QVBRANDID=variable"));
  EXPECT_EQ("\n", theBootstrap.Brand("mbus", "QVBRANDID=variable")) << "kinds are compared exactly";
  EXPECT_EQ("\n", theBootstrap.Brand("", "QVBRANDID=variable"));
}

TEST(qvConfigConfig, BrandWithoutKeyIsTheVariable) {
  Bootstrap theBootstrap("[Brand]\nMBus=\n");
  EXPECT_EQ("x\n", theBootstrap.Brand("MBus", "QVBRANDID=x"));
  EXPECT_EQ("x\n", theBootstrap.Brand("X_RPC", "QVBRANDID=x"));
}

TEST(qvConfigConfig, VariableOfAppSetGetsADot) {
  Bootstrap theBootstrap("");
  EXPECT_EQ("x.\n", theBootstrap.Brand("AppSet", "QVBRANDID=x"));
}

TEST(qvConfigConfig, BrandWithoutKeyAndVariableIsItsFallback) {
  Bootstrap theBootstrap("");
  for (const char* theVariable : {"QVBRANDID", "QVBRANDID="}) {
    EXPECT_EQ("qvra\n", theBootstrap.Brand("MBus", theVariable));
    EXPECT_EQ("\n", theBootstrap.Brand("X_RPC", theVariable));
    EXPECT_EQ("com.qvra.\n", theBootstrap.Brand("AppSet", theVariable));
  }
}

TEST(qvConfigConfigKept, SBusNeverTakesItsFallback) {
  Bootstrap theBootstrap("[Brand]\nAppSet=x\n");
  EXPECT_EQ("\n", theBootstrap.Brand("SBus"));
  EXPECT_EQ("\n", theBootstrap.Brand("SBus", "QVBRANDID=variable"));
  Bootstrap theOther("[Brand]\nSBus=\n");
  EXPECT_EQ("\n", theOther.Brand("SBus", "QVBRANDID=variable"));
  // Its neighbour takes both.
  EXPECT_EQ("qvra\n", theOther.Brand("MBus"));
}

TEST(qvConfigConfig, BrandOfAMissingFileIsTheFallback) {
  Bootstrap theBootstrap("[Brand]\nMBus=one\n");
  EXPECT_EQ("qvra\n", theBootstrap.Run({"brand", "MBus", "Other.ini"}, {"QVBRANDID"}));
}

TEST(qvConfigConfig, UserIdReplacesItsMarkEverywhere) {
  std::string theId = std::to_string(getuid());
  Bootstrap theBootstrap("[Brand]\nMBus=a%USERID%b%USERID%\nSBus=%USERID%\nX_RPC=%userid%\n");
  EXPECT_EQ("a" + theId + "b" + theId + "\n", theBootstrap.Brand("MBus"));
  EXPECT_EQ(theId + "\n", theBootstrap.Brand("SBus"));
  EXPECT_EQ("%userid%\n", theBootstrap.Brand("X_RPC"));
  EXPECT_EQ("v" + theId + ".\n", theBootstrap.Brand("AppSet", "QVBRANDID=v%USERID%"));
}

TEST(qvConfigConfig, NullKindGivesTheEmptyText) {
  EXPECT_TRUE(qvConfigConfig::GetBrandInfo(nullptr, "ConfigPath.ini").IsEmpty());
}
