// Whatever a settings file holds, it loads as the format's description says; and what the format can carry
// comes back the same when it is saved and loaded again.
#include "qvraTools/qvINIFile.h"

#include <algorithm>

#include "FuzzInput.h"
#include "MemoryFiles.h"
#include "SettingsModel.h"

static const char kPath[] = "/settings.ini";
static const int kMaxLines = 16;

// What is in the file then.
static const std::string& Save(qvDictionary* aDictionary) {
  FUZZ_REQUIRE(qvINIFile_SaveINIFile(kPath, aDictionary) == 1);
  return *MemoryFiles_Get(kPath);
}

static void CheckEntries(const qvDictionary* aDictionary, const SettingsModel& aModel) {
  const std::vector<SettingsModel::Entry>& theEntries = aModel.Entries();
  FUZZ_REQUIRE(qvDictionary_GetEntryCount(aDictionary) == theEntries.size());
  for (size_t i = 0; i < theEntries.size(); ++i) {
    FUZZ_REQUIRE(theEntries[i].first == qvDictionary_GetKeyAtIndex(aDictionary, i));
    FUZZ_REQUIRE(theEntries[i].second == qvDictionary_GetValueAtIndex(aDictionary, i));
  }
}

// What the typed readers make of a text, by the C library's.
static void CheckTypedReads(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                            const std::string& aValue) {
  int theFound = 0;
  double theDouble = qvINIFile_ReadKeyAsDouble(aDictionary, aSection, aKey, -1.0, &theFound);
  double theExpected = atof(aValue.c_str());
  FUZZ_REQUIRE(theFound == 1 && memcmp(&theDouble, &theExpected, sizeof(theDouble)) == 0);
  char theFirst = aValue.empty() ? '\0' : aValue[0];
  int theBool = qvINIFile_ReadKeyAsBool(aDictionary, aSection, aKey, 7, &theFound);
  bool theSignFlag = strchr("+-0123456789 \t\n\v\f\r", theFirst) != nullptr;
  if (!theSignFlag) {
    FUZZ_REQUIRE(theBool == (strchr("tTyY", theFirst) ? 1 : strchr("fFnN", theFirst) ? 0 : 7));
  }
  int32 theInt32 = qvINIFile_ReadKeyAsInt32(aDictionary, aSection, aKey, 7, &theFound);
  uint32 theUInt32 = qvINIFile_ReadKeyAsUInt32(aDictionary, aSection, aKey, 7, &theFound);
  char* theEnd;
  unsigned long long theUnsigned = strtoull(aValue.c_str(), &theEnd, 0);
  if (aValue.find('-') == std::string::npos && theUnsigned <= UINT32_MAX) {
    bool theWholeFlag = theEnd != aValue.c_str() && *theEnd == '\0';
    FUZZ_REQUIRE(theUInt32 == (theWholeFlag ? theUnsigned : 7));
  }
  long long theNumber = strtoll(aValue.c_str(), &theEnd, 10);
  if (theSignFlag && theFirst != '\0' && *theEnd == '\0' && llabs(theNumber) < INT32_MAX) {
    bool theNumberFlag = theEnd != aValue.c_str();
    FUZZ_REQUIRE(theInt32 == (theNumberFlag ? theNumber : 7));
    FUZZ_REQUIRE(theBool == (theNumberFlag ? theNumber != 0 : 7));
  }
}

// Reads every setting by its section and its key, as an application does.
static void CheckReads(qvDictionary* aDictionary, const SettingsModel& aModel) {
  size_t theSectionCount = 0;
  for (const SettingsModel::Entry& theEntry : aModel.Entries()) {
    size_t theSlash = theEntry.first.find('/');
    if (theSlash == std::string::npos) {
      bool theDefaultFlag = theEntry.first == "default";
      FUZZ_REQUIRE((theDefaultFlag ? "" : theEntry.first) ==
                   qvINIFile_GetSectionName(aDictionary, theSectionCount));
      ++theSectionCount;
      continue;
    }
    std::string theSection = theEntry.first.substr(0, theSlash);
    std::string theKey = theEntry.first.substr(theSlash + 1);
    if (theKey.size() < 128 && aModel.Find(theSection) != nullptr) {
      int theFound = 0;
      FUZZ_REQUIRE(theEntry.second ==
                   qvINIFile_ReadKeyAsString(aDictionary, theSection.c_str(), theKey.c_str(), "", &theFound));
      FUZZ_REQUIRE(theFound == 1);
      CheckTypedReads(aDictionary, theSection.c_str(), theKey.c_str(), theEntry.second);
    }
  }
  FUZZ_REQUIRE(qvINIFile_GetNumberOfSections(aDictionary) == theSectionCount);
}

static void CheckKeyNames(qvDictionary* aDictionary, const SettingsModel& aModel,
                          const std::string& aSection) {
  std::string thePrefix = aSection + "/";
  size_t theCount = 0;
  for (const SettingsModel::Entry& theEntry : aModel.Entries()) {
    if (theEntry.first.compare(0, thePrefix.size(), thePrefix) == 0) {
      FUZZ_REQUIRE(std::string_view(theEntry.first).substr(thePrefix.size()) ==
                   qvINIFile_GetKeyName(aDictionary, aSection.c_str(), theCount));
      ++theCount;
    }
  }
  FUZZ_REQUIRE(qvINIFile_GetNumberOfKeys(aDictionary, aSection.c_str()) == theCount);
}

// Whether both have the same entries, in whatever order.
static bool HoldTheSame(const SettingsModel& aModel, const SettingsModel& anOther) {
  for (const SettingsModel::Entry& theEntry : aModel.Entries()) {
    const std::string* theValue = anOther.Find(theEntry.first);
    if (theValue == nullptr || *theValue != theEntry.second) {
      return false;
    }
  }
  return aModel.Entries().size() == anOther.Entries().size();
}

// Loads what was saved last from its file.
static void CheckLoadingAgain(const SettingsModel& aBefore, const std::string& aSaved) {
  SettingsModel theModel;
  theModel.Load(aSaved);
  qvDictionary* theDictionary = qvDictionary_New(0);
  FUZZ_REQUIRE(qvINIFile_LoadINIFile(kPath, theDictionary) == 1);
  CheckEntries(theDictionary, theModel);
  if (aBefore.SurvivesSaving()) {
    FUZZ_REQUIRE(HoldTheSame(theModel, aBefore));
    FUZZ_REQUIRE(Save(theDictionary) == aSaved);
  }
  qvDictionary_Delete(theDictionary);
}

// The time that an input takes grows with the square of its lines, and what many show, a few show too.
static std::string_view FirstLines(std::string_view aText) {
  size_t theEnd = 0;
  for (int i = 0; i < kMaxLines && theEnd < aText.size(); ++i) {
    theEnd = std::min(aText.find_first_of("\r\n", theEnd), aText.size() - 1) + 1;
  }
  return aText.substr(0, theEnd);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string_view theText =
      SettingsModel::LoadablePart(FirstLines({reinterpret_cast<const char*>(aBytes), aLength}));
  SettingsModel theModel;
  theModel.Load(theText);
  qvDictionary* theDictionary = qvDictionary_New(0);
  FUZZ_REQUIRE(qvINIFile_LoadINIFileFromBuffer(ExactCopy(theText).Data(), theText.size(), theDictionary) ==
               1);
  CheckEntries(theDictionary, theModel);
  CheckReads(theDictionary, theModel);
  CheckKeyNames(theDictionary, theModel, "default");
  std::string theSaved = Save(theDictionary);
  FUZZ_REQUIRE(theSaved == theModel.Save());
  CheckLoadingAgain(theModel, theSaved);
  qvDictionary_Delete(theDictionary);
  return 0;
}
