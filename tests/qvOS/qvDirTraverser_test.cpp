#include <gtest/gtest.h>
#include <stddef.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "qvOS/qvDir.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

using Names = std::vector<std::string>;

constexpr uint32 kEverything = qvDIR_FILES | qvDIR_DIRS | qvDIR_HIDDEN | qvDIR_DOTDOT;

class qvDirTraverserTest : public testing::Test {
 protected:
  void MakeFile(const std::string& aName) { WriteWholeFile(mScratch.File(aName), ""); }
  void MakeFolder(const std::string& aName) {
    ASSERT_EQ(0, mkdir(mScratch.File(aName).c_str(), 0700)) << aName;
  }
  void Link(const std::string& aName, const std::string& aTarget) {
    ASSERT_EQ(0, symlink(aTarget.c_str(), mScratch.File(aName).c_str())) << aName;
  }

  // The names that a walk through the scratch folder gives, sorted; directories with a '/' behind them and
  // hidden entries with a '!'.
  Names Walk(const char* aPattern, uint32 aFlags) {
    Names theNames;
    int theStatus = -1;
    qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
    for (qvDirEntry* theEntry = qvDirTraverser_GetFirst(theTraverser, aPattern, aFlags, &theStatus);
         theEntry != nullptr; theEntry = qvDirTraverser_GetNext(theTraverser, &theStatus)) {
      EXPECT_EQ(&theTraverser->mEntry, theEntry);
      EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
      theNames.push_back(theEntry->mName + std::string(theEntry->mfDir == 1 ? "/" : "") +
                         (theEntry->mfHidden == 1 ? "!" : ""));
    }
    EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
    qvDirTraverser_Delete(theTraverser);
    std::sort(theNames.begin(), theNames.end());
    return theNames;
  }

  ScratchFolder mScratch;
};

using qvDirTraverserKept = qvDirTraverserTest;

std::string PathOf(const std::string& aPath) {
  qvDirTraverser* theTraverser = qvDirTraverser_New(aPath.c_str());
  const char* thePath = qvDirTraverser_GetDirPath(theTraverser);
  std::string theCopy = thePath != nullptr ? thePath : "<null>";
  qvDirTraverser_Delete(theTraverser);
  return theCopy;
}

}  // namespace

TEST(qvDirTraverserType, TheFlagsAndTheStatusHaveTheirValues) {
  EXPECT_EQ(0x0001, qvDIR_FILES);
  EXPECT_EQ(0x0002, qvDIR_DIRS);
  EXPECT_EQ(0x0004, qvDIR_HIDDEN);
  EXPECT_EQ(0x0008, qvDIR_DOTDOT);
  EXPECT_EQ(0x0007, qvDIR_DEFAULT);
  EXPECT_EQ(0, kqvDirTraverserStatus_NoError);
  EXPECT_EQ(1, kqvDirTraverserStatus_Error);
}

TEST(qvDirTraverserType, TheFieldsOfAnEntryStandInOrder) {
  EXPECT_EQ(0u, offsetof(qvDirEntry, mName));
  EXPECT_EQ(sizeof(void*), offsetof(qvDirEntry, mfDir));
  EXPECT_EQ(sizeof(void*) + 4, offsetof(qvDirEntry, mfHidden));
}

TEST(qvDirTraverserType, TheFieldsOfATraverserStandInOrder) {
  const size_t kWord = sizeof(void*);
  EXPECT_EQ(0u, offsetof(qvDirTraverser, mEntry));
  EXPECT_EQ(kWord + 8, offsetof(qvDirTraverser, mDir));
  EXPECT_EQ(2 * kWord + 8, offsetof(qvDirTraverser, mDirPath));
  EXPECT_EQ(3 * kWord + 8, offsetof(qvDirTraverser, mEntrySpec));
  EXPECT_EQ(4 * kWord + 8, offsetof(qvDirTraverser, mFlags));
  EXPECT_EQ(5 * kWord + 8, offsetof(qvDirTraverser, mDirEnt));
}

TEST_F(qvDirTraverserTest, ANewTraverserIsClosedAndTakesTheDefaultFlags) {
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_EQ(nullptr, theTraverser->mEntry.mName);
  EXPECT_EQ(nullptr, theTraverser->mDir);
  EXPECT_EQ(mScratch.Path(), theTraverser->mDirPath);
  EXPECT_EQ(nullptr, theTraverser->mEntrySpec);
  EXPECT_EQ(7u, theTraverser->mFlags);
  EXPECT_EQ(nullptr, theTraverser->mDirEnt);
  EXPECT_EQ(theTraverser->mDirPath, qvDirTraverser_GetDirPath(theTraverser));
  qvDirTraverser_Delete(theTraverser);
}

TEST(qvDirTraverserPath, ThePathIsNormalisedAndLosesTheSlashesAtItsEnd) {
  EXPECT_EQ("/a/b", PathOf("/a/b"));
  EXPECT_EQ("/a/b", PathOf("/a/b/"));
  EXPECT_EQ("/a/b", PathOf("/a/b///"));
  EXPECT_EQ("/a/b", PathOf("\\a\\b\\"));
  EXPECT_EQ("", PathOf(""));
}

TEST(qvDirTraverserPath, TheRootDirectoryKeepsItsSlash) {
  EXPECT_EQ("/", PathOf("/"));
  EXPECT_EQ("/", PathOf("//"));
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New("/");
  EXPECT_NE(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DIRS, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, FilesAndDirectoriesAreToldApart) {
  MakeFile("file");
  MakeFolder("folder");
  EXPECT_EQ((Names{"file", "folder/"}), Walk("*", qvDIR_FILES | qvDIR_DIRS));
  EXPECT_EQ((Names{"file"}), Walk("*", qvDIR_FILES));
  EXPECT_EQ((Names{"folder/"}), Walk("*", qvDIR_DIRS));
  EXPECT_EQ((Names{}), Walk("*", 0));
}

TEST_F(qvDirTraverserTest, HiddenEntriesNeedTheirFlag) {
  MakeFile("file");
  MakeFile(".file");
  MakeFolder(".folder");
  EXPECT_EQ((Names{"file"}), Walk("*", qvDIR_FILES | qvDIR_DIRS));
  EXPECT_EQ((Names{".file!", ".folder/!", "file"}), Walk("*", qvDIR_DEFAULT));
  EXPECT_EQ((Names{".file!", "file"}), Walk("*", qvDIR_FILES | qvDIR_HIDDEN));
  EXPECT_EQ((Names{".folder/!"}), Walk("*", qvDIR_DIRS | qvDIR_HIDDEN));
  EXPECT_EQ((Names{}), Walk("*", qvDIR_HIDDEN));
}

TEST_F(qvDirTraverserKept, ANameThatBeginsWithTwoDotsIsNotHidden) {
  MakeFile("..file");  // the kept one
  MakeFile("...");
  MakeFile(".x");
  EXPECT_EQ((Names{"...", "..file"}), Walk("*", qvDIR_FILES));
  EXPECT_EQ((Names{"...", "..file", ".x!"}), Walk("*", qvDIR_FILES | qvDIR_HIDDEN));
}

TEST_F(qvDirTraverserTest, TheDotEntriesNeedTheirFlagAndTheOneOfDirectories) {
  MakeFile("file");
  EXPECT_EQ((Names{"../", "./", "file"}), Walk("*", kEverything));
  EXPECT_EQ((Names{"../", "./"}), Walk("*", qvDIR_DIRS | qvDIR_DOTDOT));
  EXPECT_EQ((Names{"file"}), Walk("*", qvDIR_FILES | qvDIR_DOTDOT));
  EXPECT_EQ((Names{"file"}), Walk("*", qvDIR_DEFAULT));
}

TEST_F(qvDirTraverserTest, ALinkIsWhatItLeadsTo) {
  MakeFile("file");
  MakeFolder("folder");
  Link("tofile", "file");
  Link("tofolder", "folder");
  Link(".hiddenlink", "file");
  EXPECT_EQ((Names{".hiddenlink!", "file", "tofile"}), Walk("*", qvDIR_FILES | qvDIR_HIDDEN));
  EXPECT_EQ((Names{"folder/", "tofolder/"}), Walk("*", qvDIR_DIRS));
}

TEST_F(qvDirTraverserTest, WhatIsNeitherFileNorDirectoryIsSkipped) {
  MakeFile("file");
  Link("dangling", "none");
  Link("loop", ".");
  Link("device", "/dev/null");
  ASSERT_EQ(0, mkfifo(mScratch.File("pipe").c_str(), 0600));
  EXPECT_EQ((Names{"file"}), Walk("*", qvDIR_DEFAULT));
}

TEST_F(qvDirTraverserTest, APatternNarrowsTheFiles) {
  for (const char* theName : {"a.ini", "b.ini", ".c.ini", "d.INI", "e.ini2", "ini"}) {
    MakeFile(theName);
  }
  MakeFolder("f.ini");
  EXPECT_EQ((Names{"a.ini", "b.ini"}), Walk("*.ini", qvDIR_FILES));
  EXPECT_EQ((Names{".c.ini!", "a.ini", "b.ini"}), Walk("*.ini", qvDIR_FILES | qvDIR_HIDDEN));
  EXPECT_EQ((Names{"f.ini/"}), Walk("*.ini", qvDIR_DIRS));
  EXPECT_EQ((Names{"a.ini"}), Walk("a.ini", qvDIR_DEFAULT));
  EXPECT_EQ((Names{"d.INI"}), Walk("?.INI", qvDIR_DEFAULT));
  EXPECT_EQ((Names{}), Walk("z*", qvDIR_DEFAULT));
  EXPECT_EQ((Names{}), Walk("", qvDIR_DEFAULT));
}

TEST_F(qvDirTraverserTest, NamesMayHoldAnyByteAndBeAsLongAsTheSystemAllows) {
  const std::string theLongest(255, 'n');
  MakeFile(theLongest);
  MakeFile("a\nb");
  MakeFile("\xC3\xA4\xFF");
  Names theExpected = {"a\nb", theLongest, "\xC3\xA4\xFF"};
  std::sort(theExpected.begin(), theExpected.end());
  EXPECT_EQ(theExpected, Walk("*", qvDIR_DEFAULT));
}

TEST_F(qvDirTraverserTest, ManyEntriesAreAllGivenOnce) {
  Names theExpected;
  for (int i = 1000; i < 2000; ++i) {
    theExpected.push_back("file" + std::to_string(i));
    MakeFile(theExpected.back());
  }
  EXPECT_EQ(theExpected, Walk("*", qvDIR_DEFAULT));
}

TEST_F(qvDirTraverserTest, TheWalkKeepsItsOwnCopyOfThePattern) {
  MakeFile("a");
  MakeFile("b");
  MakeFile("c");
  char thePattern[] = "*";
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_NE(nullptr, qvDirTraverser_GetFirst(theTraverser, thePattern, qvDIR_FILES, &theStatus));
  thePattern[0] = 'x';
  EXPECT_STREQ("*", theTraverser->mEntrySpec);
  EXPECT_EQ(1u, theTraverser->mFlags);
  EXPECT_NE(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
  EXPECT_NE(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
  EXPECT_EQ(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, TheEndOfTheDirectoryIsNoErrorAndStaysTheEnd) {
  MakeFile("a");
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_NE(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_FILES, &theStatus));
  for (int i = 0; i < 3; ++i) {
    theStatus = -1;
    EXPECT_EQ(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
    EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
  }
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, RewindClosesAndAllowsAnotherWalk) {
  MakeFile("a");
  MakeFolder("b");
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  qvDirTraverser_Rewind(theTraverser);
  EXPECT_STREQ("a", qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_FILES, &theStatus)->mName);
  EXPECT_NE(nullptr, theTraverser->mDir);
  qvDirTraverser_Rewind(theTraverser);
  EXPECT_EQ(nullptr, theTraverser->mDir);
  EXPECT_STREQ("b", qvDirTraverser_GetFirst(theTraverser, "?", qvDIR_DIRS, &theStatus)->mName);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, AMissingDirectoryHasNoEntriesAndIsNoError) {
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.File("none").c_str());
  EXPECT_EQ(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DEFAULT, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
  EXPECT_EQ(nullptr, theTraverser->mDir);
  ASSERT_EQ(0, mkdir(mScratch.File("none").c_str(), 0700));
  MakeFile("none/a");
  EXPECT_STREQ("a", qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DEFAULT, &theStatus)->mName);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, AFileIsNoDirectoryToWalkThrough) {
  MakeFile("f");
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.File("f").c_str());
  EXPECT_EQ(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DEFAULT, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_Error, theStatus);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, WithoutAPathOrAPatternTheStatusIsError) {
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(nullptr);
  EXPECT_EQ(nullptr, qvDirTraverser_GetDirPath(theTraverser));
  EXPECT_EQ(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DEFAULT, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_Error, theStatus);
  qvDirTraverser_Delete(theTraverser);

  theStatus = -1;
  theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_EQ(nullptr, qvDirTraverser_GetFirst(theTraverser, nullptr, qvDIR_DEFAULT, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_Error, theStatus);
  EXPECT_EQ(nullptr, theTraverser->mDir);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, AReadThatFailsIsAnError) {
  MakeFile("a");
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_NE(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_FILES, &theStatus));
  // The next read from the system finds something that is no directory behind the descriptor.
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  ASSERT_NE(-1, dup2(thePipe[0], dirfd(theTraverser->mDir)));
  EXPECT_EQ(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_Error, theStatus);
  qvDirTraverser_Delete(theTraverser);
  close(thePipe[0]);
  close(thePipe[1]);
}

TEST_F(qvDirTraverserTest, ADirectoryThatIsRemovedDuringTheWalkEndsWithoutAnError) {
  MakeFolder("d");
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.File("d").c_str());
  ASSERT_NE(nullptr, qvDirTraverser_GetFirst(theTraverser, ".", kEverything, &theStatus));
  ASSERT_EQ(0, rmdir(mScratch.File("d").c_str()));
  EXPECT_EQ(nullptr, qvDirTraverser_GetNext(theTraverser, &theStatus));
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, GetFirstOfAnOpenTraverserFailsAnAssertion) {
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_EQ(nullptr, qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_FILES, &theStatus));
  EXPECT_QV_ASSERTION(qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_FILES, &theStatus),
                      "aDirTraverser->mDir == NULL", "qvDir");
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, GetNextOfAClosedTraverserFailsAnAssertion) {
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  EXPECT_QV_ASSERTION(qvDirTraverser_GetNext(theTraverser, &theStatus), "aDirTraverser->mDir != NULL",
                      "qvDir");
  qvDirTraverser_Delete(theTraverser);
}

TEST_F(qvDirTraverserTest, DeleteClosesTheDirectory) {
  int theBefore = dup(0);
  close(theBefore);
  int theStatus = -1;
  qvDirTraverser* theTraverser = qvDirTraverser_New(mScratch.Path().c_str());
  qvDirTraverser_GetFirst(theTraverser, "*", kEverything, &theStatus);
  qvDirTraverser_Delete(theTraverser);
  int theAfter = dup(0);
  close(theAfter);
  EXPECT_EQ(theBefore, theAfter);
  qvDirTraverser_Delete(nullptr);
}
