#include "qvOS/qvDir.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "qvOS/qvDir_p.h"
#include "support/ChildProcess.h"
#include "support/OwnedText.h"
#include "support/ScratchFolder.h"

namespace {

bool IsFolder(const std::string& aPath) {
  struct stat theStat;
  return lstat(aPath.c_str(), &theStat) == 0 && S_ISDIR(theStat.st_mode);
}

unsigned int Permissions(const std::string& aPath) {
  struct stat theStat;
  EXPECT_EQ(0, stat(aPath.c_str(), &theStat)) << aPath;
  return theStat.st_mode & 07777;
}

// Folders are made with the whole mode that they ask for.
class qvDir : public testing::Test {
 protected:
  qvDir() : mOldUmask(umask(0)) {}
  ~qvDir() override { umask(mOldUmask); }

  std::string MakeFolder(const std::string& aName) {
    EXPECT_EQ(0, mkdir(mScratch.File(aName).c_str(), 0700)) << aName;
    return mScratch.File(aName);
  }
  std::string Link(const std::string& aName, const std::string& aTarget) {
    EXPECT_EQ(0, symlink(aTarget.c_str(), mScratch.File(aName).c_str())) << aName;
    return mScratch.File(aName);
  }
  int Exists(const std::string& aPath) { return qvDir_Exists(aPath.c_str()); }

  // The results of qvDir_CreatePath for these paths, one digit each, in a process whose root is the scratch
  // folder; empty where that is not allowed.
  std::string CreatePathsInScratchRoot(const std::vector<std::string>& aPaths) {
    ChildResult theResult = RunInChild([&] {
      if (chroot(mScratch.Path().c_str()) == 0 && chdir("/") == 0) {
        for (const std::string& thePath : aPaths) {
          printf("%d", qvDir_CreatePath(thePath.c_str()));
        }
      }
    });
    return theResult.mStdout;
  }

  mode_t mOldUmask;
  ScratchFolder mScratch;
};
using qvDirKept = qvDir;

// The absolute name of aPath in a process that works in the folder aDir.
std::string AbsoluteNameFrom(const std::string& aDir, const std::string& aPath) {
  ChildResult theResult = RunInChild([&] {
    if (chdir(aDir.c_str()) == 0) {
      printf("%s", TakeText(qvDir_MakeAbsoluteName(aPath.c_str())).c_str());
    }
  });
  return theResult.mStdout;
}

}  // namespace

TEST_F(qvDir, OnlyADirectoryExists) {
  WriteWholeFile(mScratch.File("f"), "");
  ASSERT_EQ(0, mkfifo(mScratch.File("pipe").c_str(), 0600));
  EXPECT_EQ(1, Exists(mScratch.Path()));
  EXPECT_EQ(1, Exists(mScratch.Path() + "/"));
  EXPECT_EQ(1, Exists("/"));
  EXPECT_EQ(0, Exists(mScratch.File("f"))) << "a regular file";
  EXPECT_EQ(0, Exists(mScratch.File("pipe"))) << "a pipe";
  EXPECT_EQ(0, Exists(mScratch.File("none"))) << "nothing";
  EXPECT_EQ(0, Exists("")) << "the empty path";
  EXPECT_EQ(0, qvDir_Exists(nullptr));
}

TEST_F(qvDir, ALinkToADirectoryExistsAndALinkToAnythingElseDoesNot) {
  WriteWholeFile(mScratch.File("f"), "");
  MakeFolder("target");
  EXPECT_EQ(1, Exists(Link("link", "target")));
  EXPECT_EQ(0, Exists(Link("far", "/"))) << "everything lies below the root";
  EXPECT_EQ(0, Exists(Link("tofile", "f")));
  EXPECT_EQ(0, Exists(Link("dangling", "none")));
  EXPECT_EQ(0, Exists(Link("itself", "itself")));
}

TEST_F(qvDir, ALinkToADirectoryAboveItCountsAsAbsent) {
  MakeFolder("a");
  MakeFolder("a/b");
  EXPECT_EQ(0, Exists(Link("a/here", "."))) << "to the directory that holds it";
  EXPECT_EQ(0, Exists(Link("a/b/up", ".."))) << "to the one above";
  EXPECT_EQ(0, Exists(Link("a/b/top", mScratch.Path()))) << "to one further above";
  EXPECT_EQ(1, Exists(Link("a/down", "b"))) << "to one below";
  EXPECT_EQ(1, Exists(mScratch.File("a/here/b"))) << "only the last component is looked at";
}

TEST_F(qvDir, ALinkIsComparedByTheNameItWasAskedFor) {
  MakeFolder("a");
  MakeFolder("b");
  Link("b/loop", "../a");
  EXPECT_EQ(1, Exists(mScratch.File("b/loop")));
  EXPECT_EQ(0, Exists(mScratch.File("a/../b/loop"))) << "the name as written begins with the target";
}

TEST_F(qvDirKept, ALinkBesideItsTargetWhoseNameItContinuesCountsAsAbsent) {
  EXPECT_EQ(1, Exists(MakeFolder("b")));
  EXPECT_EQ(0, Exists(Link("bc", "b")));  // the kept one
  EXPECT_EQ(0, Exists(Link("b2", "b")));
  EXPECT_EQ(1, Exists(Link("c", "b")));
  EXPECT_EQ(1, Exists(Link("a", "b")));
  EXPECT_EQ(1, Exists(Link("B", "b")));
}

TEST_F(qvDir, ARelativeNameBecomesAbsoluteFromTheWorkingDirectory) {
  MakeFolder("w");
  const std::string theDir = MakeFolder("w/d");
  const std::string theParent = mScratch.File("w");
  const struct {
    const char* mPath;
    std::string mExpected;
    const char* mWhy;
  } kCases[] = {
      {"/a/../b", "/a/../b", "an absolute one stays"},
      {"a", theDir + "/a", "a name"},
      {"./a", theDir + "/a", "a dot goes"},
      {"././a", theDir + "/a", "so do two"},
      {"../a", theParent + "/a", "dot-dot takes a component away"},
      {".././../a", mScratch.Path() + "/a", "in any order"},
      {"a/../b", theDir + "/a/../b", "only leading parts are consumed"},
      {".a", theDir + "/.a", "a hidden name"},
      {"..a", theDir + "/..a", "a name with two dots"},
      {"../../../../../../../../../../../../a", "/a", "the root has nothing above"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, AbsoluteNameFrom(theDir, theCase.mPath)) << theCase.mWhy;
  }
  EXPECT_EQ("/a", AbsoluteNameFrom("/", "a"));
  EXPECT_EQ("/a", AbsoluteNameFrom("/", "../a"));
}

TEST_F(qvDir, CreateMakesOneDirectoryForTheOwner) {
  EXPECT_EQ(0, qvDir_Create(mScratch.File("new").c_str()));
  EXPECT_TRUE(IsFolder(mScratch.File("new")));
  EXPECT_EQ(0700u, Permissions(mScratch.File("new")));
}

TEST_F(qvDir, CreateFailsWhereSomethingIsOrTheParentIsMissing) {
  WriteWholeFile(mScratch.File("f"), "");
  EXPECT_EQ(-1, qvDir_Create(mScratch.Path().c_str()));
  EXPECT_EQ(-1, qvDir_Create(mScratch.File("f").c_str()));
  EXPECT_EQ(-1, qvDir_Create(mScratch.File("none/new").c_str()));
  EXPECT_EQ(-1, qvDir_Create(""));
  EXPECT_EQ(-1, qvDir_Create(nullptr));
}

TEST_F(qvDir, BackslashesInAPathAreSlashes) {
  EXPECT_EQ(0, qvDir_Create((mScratch.Path() + "\\new").c_str()));
  EXPECT_EQ(1, Exists(mScratch.Path() + "\\new"));
  EXPECT_EQ(1, qvDir_CreatePath((mScratch.Path() + "\\new\\a\\b").c_str()));
  EXPECT_TRUE(IsFolder(mScratch.File("new/a/b")));
  EXPECT_EQ(0, qvDir_GetTimes((mScratch.Path() + "\\new\\a").c_str(), nullptr, nullptr, nullptr));
  EXPECT_EQ(0, qvDir_Remove((mScratch.Path() + "\\new\\a\\b").c_str()));
  EXPECT_FALSE(FileExists(mScratch.File("new/a/b")));
}

TEST_F(qvDir, CreatePathMakesWhatIsMissing) {
  EXPECT_EQ(1, qvDir_CreatePath(mScratch.File("a/b/c").c_str()));
  for (const char* theName : {"a", "a/b", "a/b/c"}) {
    EXPECT_TRUE(IsFolder(mScratch.File(theName))) << theName;
    EXPECT_EQ(0700u, Permissions(mScratch.File(theName))) << theName;
  }
}

TEST_F(qvDir, CreatePathKeepsWhatExists) {
  ASSERT_EQ(0, chmod(MakeFolder("a").c_str(), 0755));
  EXPECT_EQ(1, qvDir_CreatePath(mScratch.File("a/b").c_str()));
  EXPECT_EQ(1, qvDir_CreatePath(mScratch.File("a/b").c_str())) << "nothing is missing";
  EXPECT_EQ(0755u, Permissions(mScratch.File("a")));
}

TEST_F(qvDir, CreatePathTakesSlashesAtTheEndAndDoubledOnes) {
  EXPECT_EQ(1, qvDir_CreatePath((mScratch.File("a") + "/").c_str()));
  EXPECT_EQ(1, qvDir_CreatePath((mScratch.File("a") + "//b//").c_str()));
  EXPECT_TRUE(IsFolder(mScratch.File("a/b")));
}

TEST_F(qvDir, CreatePathGoesThroughLinksToDirectories) {
  MakeFolder("target");
  Link("link", "target");
  EXPECT_EQ(1, qvDir_CreatePath(mScratch.File("link/new").c_str()));
  EXPECT_TRUE(IsFolder(mScratch.File("target/new")));
}

TEST_F(qvDir, CreatePathStopsAtTheFirstFailure) {
  WriteWholeFile(mScratch.File("f"), "");
  EXPECT_EQ(0, qvDir_CreatePath(mScratch.File("a/../f/b/c").c_str()));
  EXPECT_TRUE(IsFolder(mScratch.File("a"))) << "what was made before stays";
  EXPECT_EQ(0, qvDir_CreatePath(mScratch.File("f").c_str())) << "a file is no directory";
  Link("dangling", "none");
  EXPECT_EQ(0, qvDir_CreatePath(mScratch.File("dangling").c_str()));
  EXPECT_EQ(0, qvDir_CreatePath(mScratch.File("dangling/a").c_str()));
  Link("loop", ".");
  EXPECT_EQ(0, qvDir_CreatePath(mScratch.File("loop/new").c_str())) << "a loop counts as absent";
  EXPECT_FALSE(FileExists(mScratch.File("loop/new")));
}

TEST_F(qvDir, CreatePathOfNothingFails) {
  EXPECT_EQ(0, qvDir_CreatePath(""));
  EXPECT_EQ(0, qvDir_CreatePath(nullptr));
}

TEST_F(qvDirKept, CreatePathTakesTheFirstComponentToExist) {
  MakeFolder("there");
  std::string theResults = CreatePathsInScratchRoot({"/none/a", "/none/a/b", "/there", "/"});
  if (theResults.empty()) {
    GTEST_SKIP() << "only root may change the root directory";
  }
  EXPECT_EQ("0011", theResults);
  EXPECT_EQ("there", mScratch.Names());
}

TEST_F(qvDir, CreatePathMakesTheOnlyComponentOfAPath) {
  std::string theResults = CreatePathsInScratchRoot({"/only"});
  if (theResults.empty()) {
    GTEST_SKIP() << "only root may change the root directory";
  }
  EXPECT_EQ("1", theResults);
  EXPECT_TRUE(IsFolder(mScratch.File("only")));
}

TEST_F(qvDir, ARelativePathIsMadeBesideTheExecutable) {
  MakeFolder("bin");
  MakeFolder("work");
  ChildResult theResult = RunProgram(CopyTestProgram("PathProbe", mScratch.File("bin")),
                                     {"chdir", mScratch.File("work"), "dirs", "./a/b", "dirs", "c"});
  EXPECT_EQ("1\n1\n", theResult.mStdout);
  EXPECT_TRUE(IsFolder(mScratch.File("bin/a/b")));
  EXPECT_TRUE(IsFolder(mScratch.File("bin/c")));
}

TEST_F(qvDir, RemoveRemovesAnEmptyDirectory) {
  MakeFolder("a");
  EXPECT_EQ(0, qvDir_Remove(mScratch.File("a").c_str()));
  EXPECT_FALSE(FileExists(mScratch.File("a")));
}

TEST_F(qvDir, AMissingDirectoryCountsAsRemoved) {
  EXPECT_EQ(0, qvDir_Remove(mScratch.File("none").c_str()));
  EXPECT_EQ(0, qvDir_Remove(mScratch.File("none/a").c_str()));
}

TEST_F(qvDir, RemoveKeepsWhatIsNoEmptyDirectory) {
  WriteWholeFile(mScratch.File("f"), "");
  EXPECT_EQ(-1, qvDir_Remove(mScratch.Path().c_str()));
  EXPECT_EQ(-1, qvDir_Remove(mScratch.File("f").c_str()));
  EXPECT_EQ(-1, qvDir_Remove(nullptr));
  EXPECT_TRUE(FileExists(mScratch.File("f")));
}

TEST_F(qvDir, GetTimesGivesWholeSeconds) {
  const struct timespec theSystemTimes[2] = {{1000000001, 999999999}, {1200000002, 500000000}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, mScratch.Path().c_str(), theSystemTimes, 0));
  struct stat theStat;
  ASSERT_EQ(0, stat(mScratch.Path().c_str(), &theStat));
  qvtimeval theAccess = {-1, -1};
  qvtimeval theModification = {-1, -1};
  qvtimeval theCreation = {-1, -1};
  EXPECT_EQ(0, qvDir_GetTimes(mScratch.Path().c_str(), &theAccess, &theModification, &theCreation));
  EXPECT_EQ(1000000001, theAccess.tv_sec);
  EXPECT_EQ(0, theAccess.tv_usec);
  EXPECT_EQ(1200000002, theModification.tv_sec);
  EXPECT_EQ(0, theModification.tv_usec);
  EXPECT_EQ(static_cast<int32>(theStat.st_ctime), theCreation.tv_sec);
  EXPECT_EQ(0, theCreation.tv_usec);
}

TEST_F(qvDir, GetTimesMayBeAskedForNothingAndReportsErrors) {
  qvtimeval theTime = {-1, -2};
  EXPECT_EQ(0, qvDir_GetTimes(mScratch.Path().c_str(), nullptr, nullptr, nullptr));
  EXPECT_EQ(-3, qvDir_GetTimes(mScratch.File("none").c_str(), &theTime, &theTime, &theTime));
  EXPECT_EQ(-1, qvDir_GetTimes(nullptr, &theTime, &theTime, &theTime));
  EXPECT_EQ(-1, theTime.tv_sec);
}

TEST_F(qvDir, TheRootDirectoryListHoldsTheRootAndOwnsIt) {
  qvPtrList* theList = qvDir_GetRootDirList();
  ASSERT_EQ(1u, qvPtrList_GetCount(theList));
  EXPECT_STREQ("/", static_cast<char*>(qvPtrList_GetAt(theList, 0)->mData));
  EXPECT_EQ(&qvPtrList_DefaultFreeFunc, theList->mFreeFunc);
  qvPtrList_Delete(theList);
}
