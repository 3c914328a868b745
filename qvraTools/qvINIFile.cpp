#include "qvraTools/qvINIFile.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvINIFile_NumberBufferSize 128 /* bytes; holds every number as text */
#define kqvINIFile_VariableMark     '%'

// The default of a lookup whose coming back means that the key is missing.
static const char sqvINIFile_Missing[] = "";

void qvINIFile_S_ToLower(char* aDest, const char* aSource) {
  while (*aSource != '\0') {
    *aDest++ = static_cast<char>(tolower(static_cast<unsigned char>(*aSource++)));
  }
  *aDest = '\0';
}

int qvINIFile_S_IsSection(const char* aDictionaryKey) {
  return *aDictionaryKey != '\0' && strchr(aDictionaryKey, kqvINIFIle_SectionSeparator) == NULL;
}

const char* qvINIFile_S_GetKeyOfSection(const char* aDictionaryKey, const char* aSection,
                                        size_t aSectionLength) {
  if (strncmp(aDictionaryKey, aSection, aSectionLength) != 0 ||
      aDictionaryKey[aSectionLength] != kqvINIFIle_SectionSeparator) {
    return NULL;
  }
  return aDictionaryKey + aSectionLength + 1;
}

static const char* qvINIFile_S_SectionOrDefault(const char* aSection) {
  return qvStrEmpty(aSection) ? kqvINIFile_DefaultSectionName : aSection;
}

static void qvINIFile_S_ComposeSection(const char* aSection, char* aDictionaryKey) {
  aSection = qvINIFile_S_SectionOrDefault(aSection);
  qvAssert(strlen(aSection) < kqvINIFile_SectionMaxLength);
  qvINIFile_S_ToLower(aDictionaryKey, aSection);
}

// Puts the dictionary key of a section's key into a buffer of kqvINIFile_HashTableKeyMaxLength bytes. Writes
// the section's own entry on the way when aSectionHome is the dictionary rather than null.
static void qvINIFile_S_ComposeKey(const char* aSection, const char* aKey, qvDictionary* aSectionHome,
                                   char* aDictionaryKey) {
  if (aKey == NULL) {
    qvINIFile_S_ComposeSection(aSection, aDictionaryKey);
    return;
  }
  aSection = qvINIFile_S_SectionOrDefault(aSection);
  qvAssert((strlen(aSection) < kqvINIFile_SectionMaxLength) && (strlen(aKey)) < kqvINIFile_SectionMaxLength);
  qvINIFile_S_ToLower(aDictionaryKey, aSection);
  if (aSectionHome != NULL) {
    qvDictionary_WriteKey(aSectionHome, aDictionaryKey, NULL);
  }
  char* theEnd = aDictionaryKey + strlen(aDictionaryKey);
  *theEnd = kqvINIFIle_SectionSeparator;
  qvINIFile_S_ToLower(theEnd + 1, aKey);
}

// A section's name in lower case, which a lookup compares with; released by the caller. No limit applies: a
// name that is too long for any entry just finds nothing.
static char* qvINIFile_S_NewFoldedSection(const char* aSection) {
  char* theSection = qvStrdup(qvINIFile_S_SectionOrDefault(aSection));
  qvINIFile_S_ToLower(theSection, theSection);
  return theSection;
}

size_t qvINIFile_GetNumberOfSections(qvDictionary* aDictionary) {
  qvAssert(aDictionary != NULL);
  size_t theCount = 0;
  for (size_t i = 0; i < qvDictionary_GetEntryCount(aDictionary); ++i) {
    if (qvINIFile_S_IsSection(qvDictionary_GetKeyAtIndex(aDictionary, i))) {
      ++theCount;
    }
  }
  return theCount;
}

const char* qvINIFile_GetSectionName(qvDictionary* aDictionary, size_t aSectionIndex) {
  qvAssert(aDictionary != NULL);
  for (size_t i = 0; i < qvDictionary_GetEntryCount(aDictionary); ++i) {
    const char* theKey = qvDictionary_GetKeyAtIndex(aDictionary, i);
    if (qvINIFile_S_IsSection(theKey) && aSectionIndex-- == 0) {
      return strcmp(theKey, kqvINIFile_DefaultSectionName) != 0 ? theKey : "";
    }
  }
  return "";
}

size_t qvINIFile_GetNumberOfKeys(qvDictionary* aDictionary, const char* aSection) {
  qvAssert(aDictionary != NULL);
  char* theSection = qvINIFile_S_NewFoldedSection(aSection);
  size_t theLength = strlen(theSection);
  size_t theCount = 0;
  for (size_t i = 0; i < qvDictionary_GetEntryCount(aDictionary); ++i) {
    const char* theDictionaryKey = qvDictionary_GetKeyAtIndex(aDictionary, i);
    if (qvINIFile_S_GetKeyOfSection(theDictionaryKey, theSection, theLength) != NULL) {
      ++theCount;
    }
  }
  qvFree(theSection);
  return theCount;
}

const char* qvINIFile_GetKeyName(qvDictionary* aDictionary, const char* aSection, size_t aKeyIndex) {
  qvAssert(aDictionary != NULL);
  char* theSection = qvINIFile_S_NewFoldedSection(aSection);
  size_t theLength = strlen(theSection);
  const char* theName = "";
  for (size_t i = 0; i < qvDictionary_GetEntryCount(aDictionary); ++i) {
    const char* theDictionaryKey = qvDictionary_GetKeyAtIndex(aDictionary, i);
    const char* theKey = qvINIFile_S_GetKeyOfSection(theDictionaryKey, theSection, theLength);
    if (theKey != NULL && aKeyIndex-- == 0) {
      theName = theKey;
      break;
    }
  }
  qvFree(theSection);
  return theName;
}

const char* qvINIFile_ReadKeyAsString(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                      const char* aDefaultValue, int* afValueFound) {
  qvAssert(aDictionary != NULL);
  char theDictionaryKey[kqvINIFile_HashTableKeyMaxLength];
  // KEEP qvINIFileKept.ReadingAKeyAddsItsSection
  // A read adds the section that it looks in, empty. It looks like an oversight; saved files show the header.
  qvINIFile_S_ComposeKey(aSection, aKey, aDictionary, theDictionaryKey);
  const char* theValue = qvDictionary_ReadKey(aDictionary, theDictionaryKey, sqvINIFile_Missing);
  *afValueFound = theValue != sqvINIFile_Missing;
  return *afValueFound ? theValue : aDefaultValue;
}

int qvINIFile_ReadKeyAsBool(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                            int aDefaultValue, int* afValueFound) {
  const char* theValue = qvINIFile_ReadKeyAsString(aDictionary, aSection, aKey, NULL, afValueFound);
  if (theValue == NULL) {
    return aDefaultValue;
  }
  int32 theNumber;
  if (qvConvert_strtoint32(theValue, &theNumber) == kqvConvertError_None) {
    return theNumber != 0;
  }
  switch (*theValue) {
    case 'T':
    case 't':
    case 'Y':
    case 'y':
      return 1;
    case 'F':
    case 'f':
    case 'N':
    case 'n':
      return 0;
    default:
      return aDefaultValue;
  }
}

int32 qvINIFile_ReadKeyAsInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                               int32 aDefaultValue, int* afValueFound) {
  const char* theValue = qvINIFile_ReadKeyAsString(aDictionary, aSection, aKey, NULL, afValueFound);
  int32 theNumber;
  if (theValue == NULL || qvConvert_strtoint32(theValue, &theNumber) != kqvConvertError_None) {
    return aDefaultValue;
  }
  return theNumber;
}

uint32 qvINIFile_ReadKeyAsUInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                 uint32 aDefaultValue, int* afValueFound) {
  const char* theValue = qvINIFile_ReadKeyAsString(aDictionary, aSection, aKey, NULL, afValueFound);
  uint32 theNumber;
  if (theValue == NULL || qvConvert_strtouint32_base(theValue, &theNumber, 0) != kqvConvertError_None) {
    return aDefaultValue;
  }
  return theNumber;
}

double qvINIFile_ReadKeyAsDouble(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                 double aDefaultValue, int* afValueFound) {
  const char* theValue = qvINIFile_ReadKeyAsString(aDictionary, aSection, aKey, NULL, afValueFound);
  return theValue != NULL ? atof(theValue) : aDefaultValue;
}

char* qvINIFile_ReadKeyAsStringWithSubstitution(qvDictionary* aDictionary, const char* aSection,
                                                const char* aKey, const char* aDefaultValue,
                                                int* afValueFound,
                                                qvGetReplacementStrFunc aReplacementStrFunc) {
  const char* theValue = qvINIFile_ReadKeyAsString(aDictionary, aSection, aKey, aDefaultValue, afValueFound);
  return qvStringSubstitution_Substitute(theValue, kqvINIFile_VariableMark, 0, aReplacementStrFunc, NULL);
}

int qvINIFile_WriteKeyAsString(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                               const char* aValue) {
  if (aDictionary == NULL) {
    return 0;
  }
  char theDictionaryKey[kqvINIFile_HashTableKeyMaxLength];
  qvINIFile_S_ComposeKey(aSection, aKey, aDictionary, theDictionaryKey);
  qvDictionary_WriteKey(aDictionary, theDictionaryKey, aValue);
  return 1;
}

int qvINIFile_WriteKeyAsBool(qvDictionary* aDictionary, const char* aSection, const char* aKey, int aValue) {
  return qvINIFile_WriteKeyAsString(aDictionary, aSection, aKey, aValue ? "1" : "0");
}

int qvINIFile_WriteKeyAsInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                              int32 aValue) {
  char theText[kqvINIFile_NumberBufferSize];
  qv_snprintf(theText, sizeof(theText), "%ld", static_cast<long>(aValue));
  return qvINIFile_WriteKeyAsString(aDictionary, aSection, aKey, theText);
}

int qvINIFile_WriteKeyAsUInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                               uint32 aValue) {
  char theText[kqvINIFile_NumberBufferSize];
  qv_snprintf(theText, sizeof(theText), "%lu", static_cast<unsigned long>(aValue));
  return qvINIFile_WriteKeyAsString(aDictionary, aSection, aKey, theText);
}

int qvINIFile_WriteKeyAsDouble(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                               double aValue) {
  char theText[kqvINIFile_NumberBufferSize];
  // KEEP qvINIFileKept.DoublesKeepSixSignificantDigits
  qv_snprintf(theText, sizeof(theText), "%g", aValue);
  return qvINIFile_WriteKeyAsString(aDictionary, aSection, aKey, theText);
}

int qvINIFile_DeleteKey(qvDictionary* aDictionary, const char* aSection, const char* aKey) {
  if (aDictionary == NULL) {
    return 0;
  }
  char theDictionaryKey[kqvINIFile_HashTableKeyMaxLength];
  qvINIFile_S_ComposeKey(aSection, aKey, NULL, theDictionaryKey);
  qvDictionary_DeleteKey(aDictionary, theDictionaryKey);
  return 1;
}

int qvINIFile_DeleteSection(qvDictionary* aDictionary, const char* aSection) {
  if (aDictionary == NULL) {
    return 0;
  }
  aSection = qvINIFile_S_SectionOrDefault(aSection);
  qvAssert((strlen(aSection) < kqvINIFile_SectionMaxLength));
  char theSection[kqvINIFile_SectionMaxLength];
  char theGivenName[kqvINIFile_SectionMaxLength];
  qvINIFile_S_ToLower(theSection, aSection);
  strcpy(theGivenName, aSection);  // aSection may lie in an entry that goes
  size_t theLength = strlen(theSection);
  size_t theIndex = 0;
  while (theIndex < qvDictionary_GetEntryCount(aDictionary)) {
    const char* theDictionaryKey = qvDictionary_GetKeyAtIndex(aDictionary, theIndex);
    if (qvINIFile_S_GetKeyOfSection(theDictionaryKey, theSection, theLength) != NULL) {
      // The entries behind it move down, so the next one is at this index now.
      qvDictionary_DeleteKey(aDictionary, theDictionaryKey);
    } else {
      ++theIndex;
    }
  }
  // KEEP qvINIFileKept.DeleteSectionKeepsTheEntryOfANameWithCapitals
  // The name is not folded here, so only a lower-case name removes the section's own entry.
  qvDictionary_DeleteKey(aDictionary, theGivenName);
  return 1;
}
