// The table of the INI back-end and the object that it makes.

#include "qvraTools/qvConfigFileINIBackend.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "support/ChildProcess.h"
#include "support/FatalLine.h"
#include "support/Sanitizers.h"
#include "support/ScratchFolder.h"

namespace {

const qvConfigFile_INI* AsINI(const qvConfigFile* aConfigFile) {
  return reinterpret_cast<const qvConfigFile_INI*>(aConfigFile);
}

}  // namespace

TEST(qvConfigFileINIBackend, TableHasNineteenFunctionsInOrder) {
  const struct {
    size_t mOffset;
    const char* mName;
  } kFields[] = {
      {offsetof(qvConfigFileBackend, mNew), "mNew"},
      {offsetof(qvConfigFileBackend, mDelete), "mDelete"},
      {offsetof(qvConfigFileBackend, mReset), "mReset"},
      {offsetof(qvConfigFileBackend, mSave), "mSave"},
      {offsetof(qvConfigFileBackend, mCreatePath), "mCreatePath"},
      {offsetof(qvConfigFileBackend, mWriteKeyAsString), "mWriteKeyAsString"},
      {offsetof(qvConfigFileBackend, mWriteKeyAsUInt32), "mWriteKeyAsUInt32"},
      {offsetof(qvConfigFileBackend, mWriteKeyAsInt32), "mWriteKeyAsInt32"},
      {offsetof(qvConfigFileBackend, mReadKeyAsString), "mReadKeyAsString"},
      {offsetof(qvConfigFileBackend, mReadKeyAsUInt32), "mReadKeyAsUInt32"},
      {offsetof(qvConfigFileBackend, mReadKeyAsInt32), "mReadKeyAsInt32"},
      {offsetof(qvConfigFileBackend, mReadKeyAsBool), "mReadKeyAsBool"},
      {offsetof(qvConfigFileBackend, mGetSectionCount), "mGetSectionCount"},
      {offsetof(qvConfigFileBackend, mGetSectionName), "mGetSectionName"},
      {offsetof(qvConfigFileBackend, mGetKeyCount), "mGetKeyCount"},
      {offsetof(qvConfigFileBackend, mGetKeyName), "mGetKeyName"},
      {offsetof(qvConfigFileBackend, mDeleteSection), "mDeleteSection"},
      {offsetof(qvConfigFileBackend, mDeleteKey), "mDeleteKey"},
      {offsetof(qvConfigFileBackend, mReleaseBackend), "mReleaseBackend"},
  };
  size_t theExpected = 0;
  for (const auto& theField : kFields) {
    EXPECT_EQ(theExpected, theField.mOffset) << theField.mName;
    theExpected += sizeof(void*);
  }
  EXPECT_EQ(19 * sizeof(void*), sizeof(qvConfigFileBackend));
}

TEST(qvConfigFileINIBackend, TableIsFilled) {
  qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
  void* const* theFunctions = reinterpret_cast<void* const*>(theBackend);
  for (size_t i = 0; i < 19; ++i) {
    EXPECT_NE(nullptr, theFunctions[i]) << i;
  }
  EXPECT_EQ(qvConfigFile_INI_ReleaseBackend, theBackend->mReleaseBackend);
  qvConfigFile_INI_ReleaseBackend(theBackend);
}

TEST(qvConfigFileINIBackend, ObjectHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvConfigFile_INI, mBackend));
  EXPECT_EQ(1 * sizeof(void*), offsetof(qvConfigFile_INI, mROFileName));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvConfigFile_INI, mRWFileName));
  EXPECT_EQ(3 * sizeof(void*), offsetof(qvConfigFile_INI, mRODictionary));
  EXPECT_EQ(4 * sizeof(void*), offsetof(qvConfigFile_INI, mRWDictionary));
}

TEST(qvConfigFileINIBackend, ObjectHoldsFullNamesAndBothDictionaries) {
  ScratchFolder theFolder;
  qvConfigFile* theConfigFile =
      qvConfigFile_New(theFolder.File("ro.ini").c_str(), (theFolder.Path() + "\\rw.ini").c_str(), nullptr);
  EXPECT_EQ(theFolder.File("ro.ini"), AsINI(theConfigFile)->mROFileName);
  // The name is kept in its generic form.
  EXPECT_EQ(theFolder.Path() + "\\rw.ini", AsINI(theConfigFile)->mRWFileName);
  EXPECT_NE(nullptr, AsINI(theConfigFile)->mRODictionary);
  EXPECT_NE(nullptr, AsINI(theConfigFile)->mRWDictionary);
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, NameThatIsNotGivenStaysNull) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, nullptr, "ignored.ini");
  EXPECT_EQ(nullptr, AsINI(theConfigFile)->mROFileName);
  EXPECT_EQ(nullptr, AsINI(theConfigFile)->mRWFileName);
  ASSERT_NE(nullptr, AsINI(theConfigFile)->mRODictionary);
  EXPECT_EQ(0u, qvDictionary_GetEntryCount(AsINI(theConfigFile)->mRODictionary));
  EXPECT_EQ(nullptr, AsINI(theConfigFile)->mRWDictionary);
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, EmptyNamesAreThoseOfLayersWithoutAFile) {
  qvConfigFile* theConfigFile = qvConfigFile_New("", "", nullptr);
  EXPECT_EQ(nullptr, AsINI(theConfigFile)->mROFileName);
  EXPECT_EQ(nullptr, AsINI(theConfigFile)->mRWFileName);
  EXPECT_NE(nullptr, AsINI(theConfigFile)->mRWDictionary);
  EXPECT_EQ(0, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, RelativeNamesLieBesideTheExecutable) {
  qvConfigFile* theConfigFile = qvConfigFile_New("./ro.ini", "sub/rw.ini", nullptr);
  char thePath[4096] = "";
  ASSERT_GT(readlink("/proc/self/exe", thePath, sizeof(thePath) - 1), 0);
  std::string theFolder = thePath;
  theFolder.resize(theFolder.rfind('/') + 1);
  EXPECT_EQ(theFolder + "ro.ini", AsINI(theConfigFile)->mROFileName);
  EXPECT_EQ(theFolder + "sub/rw.ini", AsINI(theConfigFile)->mRWFileName);
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, LoadedLayersBeginWithTheDefaultSection) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("rw.ini"), "[a]\n");
  qvConfigFile* theConfigFile =
      qvConfigFile_New(theFolder.File("none.ini").c_str(), theFolder.File("rw.ini").c_str(), nullptr);
  EXPECT_EQ(0u, qvDictionary_GetEntryCount(AsINI(theConfigFile)->mRODictionary));
  EXPECT_STREQ("default", qvDictionary_GetKeyAtIndex(AsINI(theConfigFile)->mRWDictionary, 0));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, TableIsOneForTheProcess) {
  qvConfigFileBackend* theFirst = qvConfigFile_INI_GetBackend();
  qvConfigFileBackend* theSecond = qvConfigFile_INI_GetBackend();
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, nullptr, nullptr);
  EXPECT_EQ(theFirst, theSecond);
  EXPECT_EQ(theFirst, theConfigFile->mBackend);
  qvConfigFile_INI_ReleaseBackend(theFirst);
  qvConfigFile_INI_ReleaseBackend(theSecond);
  // The configuration file still holds its own reference.
  EXPECT_EQ(0, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFileINIBackend, TableIsBuiltAnewAfterItsLastRelease) {
  for (int i = 0; i < 3; ++i) {
    qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
    EXPECT_NE(nullptr, theBackend->mNew);
    theBackend->mNew = nullptr;  // the next one is filled again
    qvConfigFile_INI_ReleaseBackend(theBackend);
  }
}

TEST(qvConfigFileINIBackend, LastReleaseOfAnythingButTheTableFailsAnAssertion) {
  qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
  qvConfigFileBackend theOther = {};
  EXPECT_QV_ASSERTION(qvConfigFile_INI_ReleaseBackend(&theOther),
                      "aConfigFilebackend == sqvConfigFileINIBackend", "qvConfigFileINIBackend");
  EXPECT_QV_ASSERTION(qvConfigFile_INI_ReleaseBackend(nullptr),
                      "aConfigFilebackend == sqvConfigFileINIBackend", "qvConfigFileINIBackend");
  qvConfigFile_INI_ReleaseBackend(theBackend);
}

TEST(qvConfigFileINIBackend, OnlyTheLastReleaseLooksAtThePointer) {
  qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
  qvConfigFile_INI_GetBackend();
  qvConfigFile_INI_ReleaseBackend(nullptr);
  qvConfigFile_INI_ReleaseBackend(theBackend);
}

TEST(qvConfigFileINIBackend, ReleaseWithoutGetIsHarmless) {
  qvConfigFile_INI_ReleaseBackend(nullptr);
  qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
  ASSERT_NE(nullptr, theBackend);
  EXPECT_NE(nullptr, theBackend->mNew);
  qvConfigFile_INI_ReleaseBackend(theBackend);
}

TEST(qvConfigFileINIBackend, ThreadsThatGetAndReleaseAtOnceNeverLoseTheTable) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 2000;
  std::atomic<int> theBroken{0};
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kThreads; ++i) {
    theThreads.emplace_back([&] {
      for (int j = 0; j < kRounds; ++j) {
        qvConfigFileBackend* theBackend = qvConfigFile_INI_GetBackend();
        theBroken += theBackend->mReleaseBackend != qvConfigFile_INI_ReleaseBackend;
        theBackend->mReleaseBackend(theBackend);
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  EXPECT_EQ(0, theBroken);
}

TEST(qvConfigFileINIBackend, ThreadsWithObjectsOfTheirOwnWorkInParallel) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("ro.ini"), "[a]\nk=1\n");
  std::atomic<int> theWrong{0};
  std::vector<std::thread> theThreads;
  for (int i = 0; i < 8; ++i) {
    theThreads.emplace_back([&] {
      for (int j = 0; j < 50; ++j) {
        qvConfigFile* theConfigFile = qvConfigFile_New(theFolder.File("ro.ini").c_str(), nullptr, nullptr);
        theWrong += qvConfigFile_GetInt32(theConfigFile, "a", "k", 0) != 1;
        qvConfigFile_Delete(theConfigFile);
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  EXPECT_EQ(0, theWrong);
}

TEST(qvConfigFileINIBackend, TableForWhichThereIsNoMemoryEndsTheProcess) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
  }
  // The end is logged, and the logger reads its settings through the table.
  ChildResult theResult = RunProgram(TestProgramPath("OutOfMemory"), {"once"});
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ("qvFatalError: memory:malloc, size=" + std::to_string(19 * sizeof(void*)),
            FatalLine(theResult.mStderr));
}
