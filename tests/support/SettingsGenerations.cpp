#include "support/SettingsGenerations.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include "qvraTools/qvConfigFileINIBackend.h"
#include "qvraTools/qvConfigFileINISave_p.h"
#include "support/ScratchDictionary.h"

namespace {

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

// What the folder must be like after a kill.
void ExpectSurvived(const StartState& aState, const ScratchFolder& aFolder) {
  std::string theFile = aFolder.File("a.ini");
  if (!aState.mFile.empty() || !aState.mCompleted.empty()) {
    EXPECT_TRUE(IsCompleteFileThere(theFile));
  }
  std::string theGeneration = GenerationAtOpen(theFile);
  EXPECT_TRUE(theGeneration == "new" || theGeneration == aState.mOldGeneration) << theGeneration;
  EXPECT_EQ(theGeneration.empty() ? "" : "a.ini", aFolder.Names()) << "left after the next open";
  OpenAndSave(theFile, "next");
  EXPECT_EQ(GenerationText("next"), ReadWholeFile(theFile));
}

}  // namespace

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

std::string TrySave(const std::string& aFile, const std::string& aGeneration) {
  ScratchDictionary theDictionary;
  theDictionary.Load(GenerationText(aGeneration));
  return std::to_string(qvConfigFile_INI_S_SaveFile(aFile.c_str(), theDictionary.Get()));
}

void OpenAndSave(const std::string& aFile, const std::string& aGeneration) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, aFile.c_str(), nullptr);
  SetGeneration(theConfigFile, aGeneration);
  qvConfigFile_Save(theConfigFile);
  qvConfigFile_Delete(theConfigFile);
}

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

const std::vector<StartState>& StartStates() {
  static const std::vector<StartState> kStates = {
      {"no file", "", "", "", ""},
      {"old file", GenerationText("old"), "", "", "old"},
      {"leftover .ok beside an older file", GenerationText("older"), GenerationText("old"), "", "old"},
      {"leftover .ok without the file", "", GenerationText("old"), "", "old"},
      {"leftover .tmp beside the old file", GenerationText("old"), "", GenerationText("no").substr(0, 100),
       "old"},
      {"leftover .tmp without the file", "", "", GenerationText("no").substr(0, 100), ""},
      {"leftover .ok and .tmp", GenerationText("older"), GenerationText("old"), "first=no\n", "old"},
  };
  return kStates;
}

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

void KillEverywhere(const StartState& aState, const KillBefore& aKill,
                    const std::function<void(const std::string& aFile)>& aBody) {
  bool theWasKilled = true;
  size_t theKills = 0;
  while (theWasKilled && !testing::Test::HasFailure()) {
    ScratchFolder theFolder;
    SCOPED_TRACE(std::string(aState.mName) + ", killed before call " + std::to_string(theKills));
    Prepare(aState, theFolder.File("a.ini"));
    theWasKilled = aKill(theKills, [&] { aBody(theFolder.File("a.ini")); });
    theKills += theWasKilled ? 1 : 0;
    ExpectSurvived(aState, theFolder);
  }
  EXPECT_GE(theKills, 11u) << "too few calls for a save";
  printf("%s: killed before each of %zu calls\n", aState.mName, theKills);
}
