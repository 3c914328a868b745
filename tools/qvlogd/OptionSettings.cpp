#include "tools/qvlogd/OptionSettings.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>

#include "qv/Config.h"
#include "qv/ConfigConfig.h"

static const char kFileName[] = "qvlogd.ini";

// The library takes relative folders from the program's place; on a command line they start here.
static bool OptionSettings_S_FindFolder(const std::string& aFolder, qvCString& aPath, std::string* aError) {
  char* thePath = realpath(aFolder.c_str(), nullptr);
  if (thePath == nullptr) {
    *aError = "no folder '" + aFolder + "'";
    return false;
  }
  aPath = thePath;
  free(thePath);
  std::string theFolder = aPath.c_str();
  if (access((theFolder + "/" + kFileName).c_str(), R_OK) != 0 &&
      access((theFolder + "/_" + kFileName).c_str(), R_OK) != 0) {
    *aError = "neither " + std::string(kFileName) + " nor _" + kFileName + " in '" + aFolder + "'";
    return false;
  }
  return true;
}

static void OptionSettings_S_AddKeys(const qvConfig& aConfig, bool afForReadOnlyFile,
                                     std::vector<std::string>* aKeys) {
  size_t theCount = aConfig.GetKeyCount(nullptr, afForReadOnlyFile);
  for (size_t i = 0; i < theCount; ++i) {
    std::string theKey = aConfig.GetKeyNameCString(nullptr, i, afForReadOnlyFile).c_str();
    if (std::find(aKeys->begin(), aKeys->end(), theKey) == aKeys->end()) {
      aKeys->push_back(theKey);
    }
  }
}

// A setting below a header that somebody wrote in good faith would be read by nobody.
static bool OptionSettings_S_HasNoSections(const qvConfig& aConfig, std::string* aError) {
  for (bool theLayer : {true, false}) {
    for (size_t i = 0; i < aConfig.GetSectionCount(theLayer); ++i) {
      qvCString theName = aConfig.GetSectionName(i, theLayer);
      if (!theName.IsEmpty()) {
        *aError = "section '" + std::string(theName.c_str()) + "': the settings have no sections";
        return false;
      }
    }
  }
  return true;
}

bool OptionSettings_Read(const std::string& aFolder, std::vector<OptionSetting>* aSettings,
                         std::string* aError) {
  qvCString theReadPath;
  qvCString theWritePath;
  if (aFolder.empty()) {
    qvConfigConfig("ConfigPath.ini").GetPaths(theReadPath, theWritePath);
  } else {
    if (!OptionSettings_S_FindFolder(aFolder, theReadPath, aError)) {
      return false;
    }
    theWritePath = theReadPath;
  }
  qvConfig theConfig(theReadPath, theWritePath, kFileName);
  if (!OptionSettings_S_HasNoSections(theConfig, aError)) {
    return false;
  }
  std::vector<std::string> theKeys;
  for (bool theLayer : {true, false}) {
    OptionSettings_S_AddKeys(theConfig, theLayer, &theKeys);
  }
  for (const std::string& theKey : theKeys) {
    aSettings->push_back({theKey, theConfig.GetCString(nullptr, theKey.c_str(), "").c_str()});
  }
  return true;
}
