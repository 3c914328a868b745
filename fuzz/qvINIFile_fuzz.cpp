// Whatever a settings file holds, it loads; and what has been saved and loaded once comes back the same.
#include "qvraTools/qvINIFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "FuzzInput.h"

// A longer line without '=' is a key that is too long, which ends the process on purpose; the text of a line
// that is longer still is cut when it is saved.
static bool HasOverlongLine(const std::string& aText) {
  size_t theStart = 0;
  while (theStart < aText.size()) {
    size_t theEnd = aText.find_first_of("\r\n", theStart);
    theEnd = theEnd == std::string::npos ? aText.size() : theEnd;
    std::string theLine = aText.substr(theStart, theEnd - theStart);
    if (theLine.size() > 400 || (theLine.size() > 127 && theLine.find('=') == std::string::npos)) {
      return true;
    }
    theStart = theEnd + 1;
  }
  return false;
}

static std::string LoadAndSave(const std::string& aText) {
  static const int sFile = memfd_create("settings", 0);
  static const std::string sPath = "/proc/self/fd/" + std::to_string(sFile);
  qvDictionary* theDictionary = qvDictionary_New(0);
  FUZZ_REQUIRE(qvINIFile_LoadINIFileFromBuffer(aText.data(), aText.size(), theDictionary) == 1);
  int theFound = 0;
  for (size_t i = 0; i < qvINIFile_GetNumberOfSections(theDictionary); ++i) {
    std::string theSection = qvINIFile_GetSectionName(theDictionary, i);
    if (theSection.size() >= 128) {
      continue;
    }
    for (size_t j = 0; j < qvINIFile_GetNumberOfKeys(theDictionary, theSection.c_str()); ++j) {
      std::string theKey = qvINIFile_GetKeyName(theDictionary, theSection.c_str(), j);
      if (theKey.size() < 128) {
        FUZZ_REQUIRE(qvINIFile_ReadKeyAsString(theDictionary, theSection.c_str(), theKey.c_str(), nullptr,
                                               &theFound) != nullptr);
        qvINIFile_ReadKeyAsInt32(theDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
        qvINIFile_ReadKeyAsBool(theDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
      }
    }
  }
  FUZZ_REQUIRE(qvINIFile_SaveINIFile(sPath.c_str(), theDictionary) == 1);
  qvDictionary_Delete(theDictionary);
  off_t theSize = lseek(sFile, 0, SEEK_END);
  std::string theSaved(static_cast<size_t>(theSize), '\0');
  FUZZ_REQUIRE(pread(sFile, theSaved.data(), theSaved.size(), 0) == theSize);
  return theSaved;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string theText(reinterpret_cast<const char*>(aBytes), aLength);
  if (HasOverlongLine(theText)) {
    return 0;
  }
  std::string theSecond = LoadAndSave(LoadAndSave(theText));
  // A key that begins with a byte order mark loses it when it stands at the very start of the file.
  bool theMarkFlag = theSecond.compare(0, 3, "\xEF\xBB\xBF") == 0;
  if (!HasOverlongLine(theSecond) && !theMarkFlag) {
    FUZZ_REQUIRE(LoadAndSave(theSecond) == theSecond);
  }
  return 0;
}
