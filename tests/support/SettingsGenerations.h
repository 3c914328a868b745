// SettingsGenerations.h - settings that tell which save they come from, for tests that interrupt a save.
//
// All 42 values of a generation are its name, so that a mixture of two and a file cut short both show.
#ifndef TESTS_SUPPORT_SETTINGSGENERATIONS_H
#define TESTS_SUPPORT_SETTINGSGENERATIONS_H

#include <stddef.h>

#include <functional>
#include <string>
#include <vector>

#include "qvraTools/qvConfigFile.h"
#include "support/ScratchFolder.h"

// The saved file of a generation.
std::string GenerationText(const std::string& aGeneration);
void SetGeneration(qvConfigFile* aConfigFile, const std::string& aGeneration);

// Saves a generation as the INI back-end does; its result as text.
std::string TrySave(const std::string& aFile, const std::string& aGeneration);
// What a program does that changes its settings.
void OpenAndSave(const std::string& aFile, const std::string& aGeneration);
// The generation that the next open finds: "" for no settings, "(mixed)" unless there are all 42 values and
// all agree.
std::string GenerationAtOpen(const std::string& aFile);

// What is beside a settings file when a program starts; an empty text means no such file.
struct StartState {
  const char* mName;
  std::string mFile;
  std::string mCompleted;
  std::string mTemporary;
  std::string mOldGeneration;  // what an open finds before the save
};
const std::vector<StartState>& StartStates();
void Prepare(const StartState& aState, const std::string& aFile);

// Kills its body in a child right before the body's call of this index; false when the body ended before it.
using KillBefore = std::function<bool(size_t anIndex, const std::function<void()>& aBody)>;

// Kills aBody, which gets the name of the settings file, before each of its calls, each time in a fresh
// folder. Expects that there is a complete file at every instant, that the next open finds the old or the new
// settings and leaves nothing beside them, and that the next save works.
void KillEverywhere(const StartState& aState, const KillBefore& aKill,
                    const std::function<void(const std::string& aFile)>& aBody);

#endif
