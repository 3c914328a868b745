// What qvDir makes of a file system that does not tell the type of an entry, of names that are too long, of
// reads that fail and of somebody who makes the same folders. The functions below stand before the system's
// own in this program.
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "qvOS/qvDir.h"
#include "support/ScratchFolder.h"

namespace {

struct FakeEntry {
  const char* mName;
  unsigned char mType;
  int mErrno;  // not 0: the read fails so
};

// The one directory that is answered for, and what reading it gives.
std::string sPath;
std::vector<FakeEntry> sEntries;
size_t sNextEntry = 0;
DIR* sDir = nullptr;
// The paths below it that were asked for, in order; sfAllAreFiles says that each is a regular file.
std::vector<std::string> sAsked;
bool sfAllAreFiles = false;

// Whether somebody else makes each folder, just before this process would.
bool sfOthersAreQuicker = false;

bool IsFake(const char* aPath) { return !sPath.empty() && aPath == sPath; }
bool IsBelowFake(const char* aPath) {
  return !sPath.empty() && strncmp(aPath, (sPath + "/").c_str(), sPath.size() + 1) == 0;
}

// A walk through aPath with these entries; the names that it gives, directories with a '/' behind them.
std::vector<std::string> Walk(const std::string& aPath, const std::vector<FakeEntry>& anEntries,
                              int* aStatus) {
  sPath = aPath;
  sEntries = anEntries;
  sNextEntry = 0;
  sAsked.clear();
  std::vector<std::string> theNames;
  qvDirTraverser* theTraverser = qvDirTraverser_New(aPath.c_str());
  for (qvDirEntry* theEntry = qvDirTraverser_GetFirst(theTraverser, "*", qvDIR_DEFAULT, aStatus);
       theEntry != nullptr; theEntry = qvDirTraverser_GetNext(theTraverser, aStatus)) {
    theNames.push_back(theEntry->mName + std::string(theEntry->mfDir == 1 ? "/" : ""));
    errno = EIO;  // what an earlier call left there is no failure of the next read
  }
  qvDirTraverser_Delete(theTraverser);
  sPath.clear();
  return theNames;
}

using Names = std::vector<std::string>;

}  // namespace

extern "C" DIR* opendir(const char* aPath) {
  using OpenFunc = DIR* (*)(const char*);
  const bool theIsFake = IsFake(aPath);
  DIR* theDir = reinterpret_cast<OpenFunc>(dlsym(RTLD_NEXT, "opendir"))(theIsFake ? "/" : aPath);
  if (theIsFake) {
    sDir = theDir;
  }
  return theDir;
}

extern "C" struct dirent64* readdir64(DIR* aDir) {
  using ReadFunc = struct dirent64* (*)(DIR*);
  static struct dirent64 sEntry;
  if (sPath.empty() || aDir != sDir) {
    return reinterpret_cast<ReadFunc>(dlsym(RTLD_NEXT, "readdir64"))(aDir);
  }
  if (sNextEntry == sEntries.size()) {
    return nullptr;
  }
  const FakeEntry& theEntry = sEntries[sNextEntry++];
  if (theEntry.mErrno != 0) {
    errno = theEntry.mErrno;
    return nullptr;
  }
  sEntry.d_type = theEntry.mType;
  strcpy(sEntry.d_name, theEntry.mName);
  return &sEntry;
}

// With large files this is the C library's stat64 on a 32-bit system.
extern "C" int stat(const char* aPath, struct stat* aStat) noexcept {
  if (IsBelowFake(aPath)) {
    sAsked.push_back(aPath);
    if (sfAllAreFiles) {
      *aStat = {};
      aStat->st_mode = S_IFREG;
      return 0;
    }
  }
  return fstatat(AT_FDCWD, aPath, aStat, 0);
}

extern "C" int mkdir(const char* aPath, mode_t aMode) noexcept {
  int theResult = mkdirat(AT_FDCWD, aPath, aMode);
  return sfOthersAreQuicker ? mkdirat(AT_FDCWD, aPath, aMode) : theResult;
}

TEST(qvDirFaults, APathThatSomebodyElseMakesAtTheSameTimeExists) {
  ScratchFolder theScratch;
  sfOthersAreQuicker = true;
  EXPECT_EQ(1, qvDir_CreatePath(theScratch.File("a/b").c_str()));
  EXPECT_EQ(-1, qvDir_Create(theScratch.File("c").c_str()));
  sfOthersAreQuicker = false;
  EXPECT_EQ(1, qvDir_Exists(theScratch.File("a/b").c_str()));
}

TEST(qvDirFaults, TheTypeThatAnEntryTellsIsTaken) {
  int theStatus = -1;
  EXPECT_EQ((Names{"file", "folder/"}),
            Walk("/no/such", {{"file", DT_REG, 0}, {"folder", DT_DIR, 0}}, &theStatus));
  EXPECT_EQ((Names{}), sAsked) << "the file system was asked";
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
}

TEST(qvDirFaults, WithoutATypeTheFileSystemIsAskedForAFileThenForADirectory) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("file"), "");
  ASSERT_EQ(0, mkdir(theScratch.File("folder").c_str(), 0700));
  ASSERT_EQ(0, mkfifo(theScratch.File("pipe").c_str(), 0600));
  int theStatus = -1;
  EXPECT_EQ((Names{"file", "folder/"}), Walk(theScratch.Path(),
                                             {{"file", DT_UNKNOWN, 0},
                                              {"none", DT_UNKNOWN, 0},
                                              {"pipe", DT_UNKNOWN, 0},
                                              {"folder", DT_UNKNOWN, 0}},
                                             &theStatus));
  EXPECT_EQ((Names{theScratch.File("file"), theScratch.File("none"), theScratch.File("none"),
                   theScratch.File("pipe"), theScratch.File("pipe"), theScratch.File("folder"),
                   theScratch.File("folder")}),
            sAsked);
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
}

TEST(qvDirFaults, AnEntryWhosePathHasMoreThan8191BytesIsSkipped) {
  const std::string theDir = "/" + std::string(8188, 'd');
  sfAllAreFiles = true;
  int theStatus = -1;
  EXPECT_EQ((Names{"n", "known"}),
            Walk(theDir, {{"nn", DT_UNKNOWN, 0}, {"n", DT_LNK, 0}, {"known", DT_REG, 0}}, &theStatus));
  sfAllAreFiles = false;
  EXPECT_EQ((Names{theDir + "/n"}), sAsked) << "a cut path was asked for";
  EXPECT_EQ(kqvDirTraverserStatus_NoError, theStatus);
}

TEST(qvDirFaults, AReadThatFailsEndsTheWalk) {
  const struct {
    int mErrno;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {ENOENT, kqvDirTraverserStatus_NoError, "the directory is gone"},
      {EINVAL, kqvDirTraverserStatus_NoError, "nothing more to read"},
      {EIO, kqvDirTraverserStatus_Error, "the medium"},
      {EBADF, kqvDirTraverserStatus_Error, "the descriptor"},
      {EOVERFLOW, kqvDirTraverserStatus_Error, "an entry that does not fit"},
  };
  for (const auto& theCase : kCases) {
    int theStatus = -1;
    EXPECT_EQ((Names{"a"}),
              Walk("/no/such", {{"a", DT_REG, 0}, {"", 0, theCase.mErrno}, {"b", DT_REG, 0}}, &theStatus));
    EXPECT_EQ(theCase.mExpected, theStatus) << theCase.mWhy;
  }
}
