// The crash-safe save: what is on disk after a save, after an interrupted one, and after a failed one.

#include "qvraTools/qvConfigFileINISave_p.h"

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

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "qvraTools/qvConfigFile.h"
#include "support/ChildProcess.h"
#include "support/ScratchDictionary.h"
#include "support/ScratchFolder.h"
#include "support/SettingsGenerations.h"
#include "support/TracedProcess.h"

namespace {

// What a child that has the body says about its save: "1", "0", or something else when it could not try.
template <typename Body>
std::string ResultInChild(const Body& aBody) {
  return RunInChild([&] { printf("%s", aBody().c_str()); }).mStdout;
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
  EXPECT_EQ("a.ini", theFolder.Names());
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
  EXPECT_EQ("a.ini", theFolder.Names());
}

TEST(qvConfigFileINISave, SaveReplacesLeftovers) {
  for (const StartState& theState : StartStates()) {
    SCOPED_TRACE(theState.mName);
    ScratchFolder theFolder;
    Prepare(theState, theFolder.File("a.ini"));
    EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
    EXPECT_EQ(GenerationText("new"), ReadWholeFile(theFolder.File("a.ini")));
    EXPECT_EQ("a.ini", theFolder.Names());
  }
}

TEST(qvConfigFileINISave, SaveDoesNotWriteThroughALinkThatLiesThere) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("victim"), "untouched");
  ASSERT_EQ(0, symlink(theFolder.File("victim").c_str(), theFolder.File("a.ini.tmp").c_str()));
  EXPECT_EQ("1", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ("untouched", ReadWholeFile(theFolder.File("victim")));
  EXPECT_EQ("a.ini victim", theFolder.Names());
}

TEST(qvConfigFileINISave, NameWithBackslashesIsSavedUnderSlashes) {
  ScratchFolder theFolder;
  EXPECT_EQ("1", TrySave(theFolder.Path() + "\\a.ini", "new"));
  EXPECT_EQ("a.ini", theFolder.Names());
}

TEST(qvConfigFileINISave, MissingFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  EXPECT_EQ("0", TrySave(theFolder.File("none/a.ini"), "new"));
  EXPECT_EQ("", theFolder.Names());
}

TEST(qvConfigFileINISave, TemporaryNameThatIsAFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.tmp").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.tmp", theFolder.Names());
}

TEST(qvConfigFileINISave, CompletedNameThatIsAFolderMakesTheSaveFail) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.ok").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.ok", theFolder.Names());
}

TEST(qvConfigFileINISave, FileThatIsAFolderMakesTheSaveFailAndIsCompletedByTheNextOpen) {
  ScratchFolder theFolder;
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini").c_str(), 0755));
  EXPECT_EQ("0", TrySave(theFolder.File("a.ini"), "new"));
  EXPECT_EQ("a.ini a.ini.ok", theFolder.Names());
  ASSERT_EQ(0, rmdir(theFolder.File("a.ini").c_str()));
  EXPECT_EQ("new", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini", theFolder.Names());
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
  EXPECT_EQ("a.ini", theFolder.Names());
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
    return std::to_string(theSaved) + (theOldIsWhole ? " old" : " lost") + ", " + theFolder.Names();
  });
  if (theResult == "(no disk)") {
    GTEST_SKIP() << "no small disk can be mounted here";
  }
  EXPECT_EQ("0 old, a.ini", theResult);
}

TEST(qvConfigFileINISave, OpenSettlesEveryLeftover) {
  for (const StartState& theState : StartStates()) {
    SCOPED_TRACE(theState.mName);
    ScratchFolder theFolder;
    Prepare(theState, theFolder.File("a.ini"));
    EXPECT_EQ(theState.mOldGeneration, GenerationAtOpen(theFolder.File("a.ini")));
    EXPECT_EQ(theState.mOldGeneration.empty() ? "" : "a.ini", theFolder.Names());
  }
}

TEST(qvConfigFileINISave, OpenSettlesTwoNamesOfOneFile) {
  // What a power failure in the middle of a rename can leave.
  const struct {
    const char* mFirst;
    const char* mSecond;
  } kCases[] = {{"a.ini", "a.ini.ok"}, {"a.ini.ok", "a.ini.tmp"}};
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mSecond);
    ScratchFolder theFolder;
    WriteWholeFile(theFolder.File(theCase.mFirst), GenerationText("old"));
    ASSERT_EQ(0, link(theFolder.File(theCase.mFirst).c_str(), theFolder.File(theCase.mSecond).c_str()));
    EXPECT_EQ("old", GenerationAtOpen(theFolder.File("a.ini")));
    EXPECT_EQ("a.ini", theFolder.Names());
  }
}

TEST(qvConfigFileINISave, OpenLeavesAFolderOfALeftoversNameAlone) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.tmp").c_str(), 0755));
  ASSERT_EQ(0, mkdir(theFolder.File("a.ini.ok").c_str(), 0755));
  EXPECT_EQ("old", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.ini.ok a.ini.tmp", theFolder.Names());
}

TEST(qvConfigFileINISave, OpenDoesNotTouchOtherFilesOfTheFolder) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), GenerationText("old"));
  WriteWholeFile(theFolder.File("b.ini.tmp"), "b");
  WriteWholeFile(theFolder.File("a.tmp"), "c");
  EXPECT_EQ("old", GenerationAtOpen(theFolder.File("a.ini")));
  EXPECT_EQ("a.ini a.tmp b.ini.tmp", theFolder.Names());
}

TEST(qvConfigFileINISave, ProcessKilledAnywhereFromOpenToSaveLeavesOldOrNewSettings) {
  SKIP_WITHOUT_TRACING();
  for (const StartState& theState : StartStates()) {
    KillEverywhere(theState, KillBeforeSystemCall,
                   [](const std::string& aFile) { OpenAndSave(aFile, "new"); });
  }
}

TEST(qvConfigFileINISave, ProcessKilledAnywhereInASaveAmongLeftoversLeavesOldOrNewSettings) {
  SKIP_WITHOUT_TRACING();
  for (const StartState& theState : StartStates()) {
    // The leftovers come into being after the open, so that it is the save that meets them.
    KillEverywhere(theState, KillBeforeSystemCall, [](const std::string& aFile) { TrySave(aFile, "new"); });
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
  EXPECT_EQ("a.ini", theFolder.Names());
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
  EXPECT_EQ("a.ini", theFolder.Names());
}
