// The crash-safe save: what is on disk after a save, after an interrupted one, and after a failed one.

#include "qvraTools/qvConfigFileINISave_p.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvConfigFileINIBackend.h"
#include "support/ChildProcess.h"
#include "support/ScratchDictionary.h"
#include "support/ScratchFolder.h"
#include "support/TracedProcess.h"

namespace {

// Settings of one generation: every value says which, so that a mixture shows.
std::string GenerationText(const std::string& aGeneration) {
  std::string theText = "first=" + aGeneration + "\n\n[net]\n";
  for (int i = 0; i < 40; ++i) {
    theText += "key" + std::to_string(i) + "=" + aGeneration + "\n";
  }
  return theText + "\n[last]\nend=" + aGeneration + "\n";
}

void SetGeneration(qvConfigFile* aConfigFile, const std::string& aGeneration) {
  qvConfigFile_SetString(aConfigFile, nullptr, "first", aGeneration.c_str());
  for (int i = 0; i < 40; ++i) {
    qvConfigFile_SetString(aConfigFile, "net", ("key" + std::to_string(i)).c_str(), aGeneration.c_str());
  }
  qvConfigFile_SetString(aConfigFile, "last", "end", aGeneration.c_str());
}

// What a program does that changes its settings.
void OpenAndSave(const std::string& aFile, const std::string& aGeneration) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, aFile.c_str(), nullptr);
  SetGeneration(theConfigFile, aGeneration);
  qvConfigFile_Save(theConfigFile);
  qvConfigFile_Delete(theConfigFile);
}

// The generation that the next open finds: "" for no settings, "(mixed)" unless all values agree.
std::string GenerationAtOpen(const std::string& aFile) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, aFile.c_str(), nullptr);
  qvDictionary* theDictionary = reinterpret_cast<qvConfigFile_INI*>(theConfigFile)->mRWDictionary;
  std::string theGeneration;
  size_t theValueCount = 0;
  for (size_t i = 0; i < qvDictionary_GetEntryCount(theDictionary); ++i) {
    std::string theValue = qvDictionary_GetValueAtIndex(theDictionary, i);
    if (!theValue.empty()) {
      ++theValueCount;
      theGeneration = theGeneration.empty() || theGeneration == theValue ? theValue : "(mixed)";
    }
  }
  qvConfigFile_Delete(theConfigFile);
  return theValueCount == 0 || theValueCount == 42 ? theGeneration : "(mixed)";
}

// The names in a folder, sorted, one blank between them.
std::string Names(const ScratchFolder& aFolder) {
  std::vector<std::string> theNames;
  for (const auto& theEntry : std::filesystem::directory_iterator(aFolder.Path())) {
    theNames.push_back(theEntry.path().filename().string());
  }
  std::sort(theNames.begin(), theNames.end());
  std::string theText;
  for (const std::string& theName : theNames) {
    theText += (theText.empty() ? "" : " ") + theName;
  }
  return theText;
}

// What is in the folder when the program starts; an empty text means no such file.
struct StartState {
  const char* mName;
  std::string mFile;
  std::string mCompleted;
  std::string mTemporary;
  std::string mOldGeneration;  // what an open finds before the save
};

const StartState kStartStates[] = {
    {"no file", "", "", "", ""},
    {"old file", GenerationText("old"), "", "", "old"},
    {"leftover .ok beside an older file", GenerationText("older"), GenerationText("old"), "", "old"},
    {"leftover .ok without the file", "", GenerationText("old"), "", "old"},
    {"leftover .tmp beside the old file", GenerationText("old"), "", GenerationText("no").substr(0, 100),
     "old"},
    {"leftover .tmp without the file", "", "", GenerationText("no").substr(0, 100), ""},
    {"leftover .ok and .tmp", GenerationText("older"), GenerationText("old"), "first=no\n", "old"},
};

void Prepare(const StartState& aState, const std::string& aFile) {
  if (!aState.mFile.empty()) {
    WriteWholeFile(aFile, aState.mFile);
  }
  if (!aState.mCompleted.empty()) {
    WriteWholeFile(aFile + ".ok", aState.mCompleted);
  }
  if (!aState.mTemporary.empty()) {
    WriteWholeFile(aFile + ".tmp", aState.mTemporary);
  }
}

// Whether at least one complete file is in the folder, before anything is repaired.
bool IsCompleteFileThere(const std::string& aFile) {
  for (const std::string& theName : {aFile, aFile + ".ok"}) {
    std::string theText = ReadWholeFile(theName);
    if (theText == GenerationText("older") || theText == GenerationText("old") ||
        theText == GenerationText("new")) {
      return true;
    }
  }
  return false;
}

// What the folder must be like after a kill, and that the next save works.
void ExpectSurvived(const StartState& aState, const ScratchFolder& aFolder) {
  std::string theFile = aFolder.File("a.ini");
  if (!aState.mFile.empty() || !aState.mCompleted.empty()) {
    EXPECT_TRUE(IsCompleteFileThere(theFile));
  }
  std::string theGeneration = GenerationAtOpen(theFile);
  EXPECT_TRUE(theGeneration == "new" || theGeneration == aState.mOldGeneration) << theGeneration;
  EXPECT_EQ(theGeneration.empty() ? "" : "a.ini", Names(aFolder)) << "something is left after the next open";
  OpenAndSave(theFile, "next");
  EXPECT_EQ(GenerationText("next"), ReadWholeFile(theFile));
}

// Kills aBody, which gets the file's name, before each of its system calls, each time in a fresh folder.
template <typename Body>
void KillEverywhere(const StartState& aState, const Body& aBody) {
  bool theWasKilled = true;
  size_t theIndex = 0;
  for (; theWasKilled && !testing::Test::HasFailure(); ++theIndex) {
    ScratchFolder theFolder;
    SCOPED_TRACE(std::string(aState.mName) + ", killed before system call " + std::to_string(theIndex));
    Prepare(aState, theFolder.File("a.ini"));
    theWasKilled = KillBeforeSystemCall(theIndex, [&] { aBody(theFolder.File("a.ini")); });
    ExpectSurvived(aState, theFolder);
  }
  EXPECT_GT(theIndex, 10u) << "too few system calls for a save";
  printf("%s: killed before each of %zu system calls\n", aState.mName, theIndex - 1);
}

// What a child that has the body says about its save: "1", "0", or something else when it could not try.
template <typename Body>
std::string ResultInChild(const Body& aBody) {
  return RunInChild([&] { printf("%s", aBody().c_str()); }).mStdout;
}

std::string TrySave(const std::string& aFile, const std::string& aGeneration) {
  ScratchDictionary theDictionary;
  theDictionary.Load(GenerationText(aGeneration));
  return std::to_string(qvConfigFile_INI_S_SaveFile(aFile.c_str(), theDictionary.Get()));
}

// A save in a child in which one system call fails; "(no filter)" where that cannot be arranged.
std::string TrySaveWithFailing(long aSystemCall, int anErrno, const std::string& aFile) {
  return ResultInChild([&]() -> std::string {
    if (!MakeSystemCallFail(aSystemCall, anErrno)) {
      return "(no filter)";
    }
    return TrySave(aFile, "new");
  });
}

// Puts a disk of 256 KiB over a folder, for this process alone. False where that is not allowed, or where
// the process's user is unknown on the new disk.
bool MountSmallDisk(const std::string& aFolder) {
  if ((unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) ||
      mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("none", aFolder.c_str(), "tmpfs", 0, "size=256k") != 0) {
    return false;
  }
  std::string theProbe = aFolder + "/probe";
  int theFD = open(theProbe.c_str(), O_WRONLY | O_CREAT, 0600);
  return theFD >= 0 && close(theFD) == 0 && unlink(theProbe.c_str()) == 0;
}

#define SKIP_WITHOUT_TRACING()                       \
  if (!CanTraceProcesses()) {                        \
    GTEST_SKIP() << "no process can be traced here"; \
  }

}  // namespace

TEST(qvConfigFileINISave, SaveWritesTheFileAndLeavesNothingElse) {
  ScratchFolder theFolder;
  EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("new"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, SaveReplacesALongerFile) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), std::string(100000, 'x'));
  EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("new"), ReadWholeFile(theFolder.File("a.ini")));
}

TEST(qvConfigFileINISave, EmptySettingsAreSavedAsAnEmptyFile) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvConfigFile_INI_S_SaveFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ("", ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, SaveReplacesLeftovers) {
  for (const StartState& theState : kStartStates) {
    SCOPED_TRACE(theState.mName);
    ScratchFolder theFolder;
    Prepare(theState, theFolder.File("a.ini"));
    EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
    EXPECT_EQ(GenerationText("new"), ReadWholeFile(theFolder.File("a.ini")));
    EXPECT_EQ("a.ini", Names(theFolder));
  }
}

TEST(qvConfigFileINISave, SaveDoesNotWriteThroughALinkThatLiesThere) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("victim"), "untouched");
  ASSERT_EQ(0, symlink(theFolder.File("victim").c_str(), theFolder.File("a.ini.tmp").c_str()));
  EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ("untouched", ReadWholeFile(theFolder.File("victim")));
  EXPECT_EQ("a.ini victim", Names(theFolder));
}

TEST(qvConfigFileINISave, NameWithBackslashesIsSavedUnderSlashes) {
  ScratchFolder theFolder;
  EXPECT_EQ("1", TrySave(theFolder.Path() + "\\a.ini", "new"));
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, MissingFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  EXPECT_EQ("0", TrySave(theFolder.File("none/a.ini"), "new"));
  EXPECT_EQ("", Names(theFolder));
}

TEST(qvConfigFileINISave, TemporaryNameThatIsAFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.tmp").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.tmp", Names(theFolder));
}

TEST(qvConfigFileINISave, CompletedNameThatIsAFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.ok").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.ok", Names(theFolder));
}

TEST(qvConfigFileINISave, FileThatIsAFolderMakesTheSaveFailAndIsCompletedByTheNextOpen) {
  ScratchFolder theFolder;
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ("a.ini a.ini.ok", Names(theFolder));
  ASSERT_EQ(0, rmdir(theFolder.File("a.ini").c_str()));
  EXPECT_EQ("new", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, FailedSystemCallsMakeTheSaveFailAndTheOldFileStays) {
  const struct {
    long mSystemCall;
    int mErrno;
    const char* mWhy;
  } kCases[] = {
      {SYS_write, ENOSPC, "the disk is full"},
      {SYS_write, EIO, "the medium fails"},
      {SYS_fsync, EIO, "the medium fails when flushed"},
      {SYS_close, EIO, "the medium fails when closed"},
      {SYS_rename, EIO, "the medium fails when the name changes"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    ScratchFolder theFolder;
    WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
    ChildResult theResult = RunInChild([&] {
      // The exit code speaks, since the call that fails may be the one that prints.
      if (!MakeSystemCallFail(theCase.mSystemCall, theCase.mErrno)) {
        _exit(12);
      }
      _exit(TrySave(theFolder.File("a.ini"), "new") == "0" ? 10 : 11);
    });
    if (theResult.mExitCode == 12) {
      GTEST_SKIP() << "no system call can be made to fail here";
    }
    EXPECT_EQ(10, theResult.mExitCode);
    EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
    EXPECT_EQ("a.ini", Names(theFolder)) << "the temporary file is still there";
  }
}

TEST(qvConfigFileINISave, FolderWithoutLocksIsSavedToAllTheSame) {
  ScratchFolder theFolder;
  std::string theResult = TrySaveWithFailing(SYS_flock, ENOLCK, theFolder.File("a.ini"));
  if (theResult == "(no filter)") {
    GTEST_SKIP() << "no system call can be made to fail here";
  }
  EXPECT_EQ("1", theResult);
  EXPECT_EQ("new", GenerationAtOpen(theFolder.File("a.ini")));
}

TEST(qvConfigFileINISave, FileLimitLeavesTheOldFileWhole) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  std::string theResult = ResultInChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit theLimit = {200, 200};
    setrlimit(RLIMIT_FSIZE, &theLimit);
    return TrySave(theFolder.File("a.ini"), "new");
  });
  EXPECT_EQ("0", theResult);
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, FullDiskLeavesTheOldFileWhole) {
  ScratchFolder theFolder;
  std::string theResult = ResultInChild([&]() -> std::string {
    if (!MountSmallDisk(theFolder.Path())) {
      return "(no disk)";
    }
    std::string theFile = theFolder.File("a.ini");
    WriteWholeFile(theFile, GenerationText("old"));
    ScratchDictionary theDictionary;
    for (int i = 0; i < 400; ++i) {
      theDictionary.Write("default", "");
      theDictionary.Write("default/k" + std::to_string(i), std::string(1000, 'v'));
    }
    int theSaved = qvConfigFile_INI_S_SaveFile(theFile.c_str(), theDictionary.Get());
    bool theOldIsWhole = ReadWholeFile(theFile) == GenerationText("old");
    return std::to_string(theSaved) + (theOldIsWhole ? " old" : " lost") + ", " + Names(theFolder);
  });
  if (theResult == "(no disk)") {
    GTEST_SKIP() << "no small disk can be mounted here";
  }
  EXPECT_EQ("0 old, a.ini", theResult);
}

TEST(qvConfigFileINISave, OpenSettlesEveryLeftover) {
  for (const StartState& theState : kStartStates) {
    SCOPED_TRACE(theState.mName);
    ScratchFolder theFolder;
    Prepare(theState, theFolder.File("a.ini"));
    EXPECT_EQ(theState.mOldGeneration, GenerationAtOpen(theFolder.File("a.ini")));
    EXPECT_EQ(theState.mOldGeneration.empty() ? "" : "a.ini", Names(theFolder));
  }
}

TEST(qvConfigFileINISave, OpenLeavesAFolderOfALeftoversNameAlone) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.tmp").c_str(), 0755));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.ok").c_str(), 0755));
  EXPECT_EQ("old", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.ok a.ini.tmp", Names(theFolder));
}

TEST(qvConfigFileINISave, OpenDoesNotTouchOtherFilesOfTheFolder) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  WriteWholeFile(theFolder.File("b.ini.tmp"), "b");
  WriteWholeFile(theFolder.File("a.tmp"), "c");
  EXPECT_EQ("old", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.tmp b.ini.tmp", Names(theFolder));
}

TEST(qvConfigFileINISave, ProcessKilledAnywhereFromOpenToSaveLeavesOldOrNewSettings) {
  SKIP_WITHOUT_TRACING();
  for (const StartState& theState : kStartStates) {
    KillEverywhere(theState, [](const std::string& aFile) { OpenAndSave(aFile, "new"); });
  }
}

TEST(qvConfigFileINISave, ProcessKilledAnywhereInASaveAmongLeftoversLeavesOldOrNewSettings) {
  SKIP_WITHOUT_TRACING();
  for (const StartState& theState : kStartStates) {
    // The leftovers come into being after the open, so that it is the save that meets them.
    KillEverywhere(theState, [](const std::string& aFile) { TrySave(aFile, "new"); });
  }
}

TEST(qvConfigFileINISave, TextIsDurableBeforeItsNameAndTheNameBeforeTheOldFileGoes) {
  SKIP_WITHOUT_TRACING();
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  std::string theOrder;
  for (long theNumber : SystemCallsOf([&] { TrySave(theFolder.File("a.ini"), "new"); })) {
    theOrder += theNumber == SYS_flock    ? "flock "
                : theNumber == SYS_write  ? "write "
                : theNumber == SYS_fsync  ? "fsync "
                : theNumber == SYS_rename ? "rename "
                                          : "";
  }
  EXPECT_EQ("flock write fsync rename fsync rename flock ", theOrder);
}

TEST(qvConfigFileINISave, LockOfAProcessThatDiedDoesNotHoldUpASave) {
  ScratchFolder theFolder;
  RunInChild([&] {
    int theFolderFD = open(theFolder.Path().c_str(), O_RDONLY);
    flock(theFolderFD, LOCK_EX);
    raise(SIGKILL);
  });
  EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
}

TEST(qvConfigFileINISave, ProcessesThatSaveAtOnceAllSucceedAndNeverMix) {
  constexpr int kProcesses = 6;
  constexpr int kSaves = 15;
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  std::vector<pid_t> theChildren;
  for (int i = 0; i < kProcesses; ++i) {
    pid_t theChild = fork();
    if (theChild == 0) {
      for (int j = 0; j < kSaves; ++j) {
        qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFile.c_str(), nullptr);
        SetGeneration(theConfigFile, std::to_string(i) + "-" + std::to_string(j));
        if (qvConfigFile_Save(theConfigFile) != 1) {
          _exit(1);
        }
        qvConfigFile_Delete(theConfigFile);
        std::string theGeneration = GenerationAtOpen(theFile);
        if (theGeneration == "(mixed)" || theGeneration.empty()) {
          _exit(2);
        }
      }
      _exit(0);
    }
    theChildren.push_back(theChild);
  }
  for (pid_t theChild : theChildren) {
    int theStatus = -1;
    waitpid(theChild, &theStatus, 0);
    EXPECT_EQ(0, theStatus);
  }
  EXPECT_EQ("a.ini", Names(theFolder));
}

TEST(qvConfigFileINISave, ThreadsThatSaveAtOnceAllSucceedAndNeverMix) {
  constexpr int kThreads = 6;
  constexpr int kSaves = 15;
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  std::atomic<int> theFailed{0};
  std::atomic<int> theMixed{0};
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kThreads; ++i) {
    theThreads.emplace_back([&, i] {
      for (int j = 0; j < kSaves; ++j) {
        qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFile.c_str(), nullptr);
        SetGeneration(theConfigFile, std::to_string(i) + "-" + std::to_string(j));
        theFailed += qvConfigFile_Save(theConfigFile) != 1;
        qvConfigFile_Delete(theConfigFile);
        std::string theGeneration = GenerationAtOpen(theFile);
        theMixed += theGeneration == "(mixed)" || theGeneration.empty();
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  EXPECT_EQ(0, theFailed);
  EXPECT_EQ(0, theMixed);
  EXPECT_EQ("a.ini", Names(theFolder));
}
