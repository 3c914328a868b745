#include "qvraTools/qvINIFile.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvDictionary_p.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvINIFile_NumberBufferSize 128 /* bytes; holds every number as text */
#define kqvINIFile_VariableMark     '%'

// What tolower does with ASCII characters in the usual locales, a word at a time; the last word overlaps the
// one before it. Returns false at a byte that is no such character. A sum sets the highest bit of each byte
// that is at least 'A', or beyond 'Z'.
template <class Word>
static bool qvINIFile_S_WordsToLower(char* aDest, const char* aSource, size_t aLength) {
  constexpr Word kEveryByte = static_cast<Word>(-1) / 0xFF;
  for (size_t i = 0; i < aLength; i += sizeof(Word)) {
    const size_t theStart = std::min(i, aLength - sizeof(Word));
    Word theWord;
    memcpy(&theWord, aSource + theStart, sizeof(Word));
    if ((theWord & kEveryByte * 0x80) != 0) {
      return false;
    }
    const Word theFrom = theWord + kEveryByte * (0x80 - 'A');
    const Word theBeyond = theWord + kEveryByte * (0x80 - 'Z' - 1);
    theWord |= (theFrom & ~theBeyond & kEveryByte * 0x80) >> 2;
    memcpy(aDest + theStart, &theWord, sizeof(Word));
  }
  return true;
}

void qvINIFile_S_ToLower(char* aDest, const char* aSource, size_t aLength) {
  aDest[aLength] = '\0';
  // Turkish locales have another small letter for 'I'; that tells them from the usual ones.
  if (tolower('I') == 'i') {
    if (aLength >= sizeof(size_t)
            ? qvINIFile_S_WordsToLower<size_t>(aDest, aSource, aLength)
            : aLength >= sizeof(uint32) && qvINIFile_S_WordsToLower<uint32>(aDest, aSource, aLength)) {
      return;
    }
  }
  for (size_t i = 0; i < aLength; ++i) {
    aDest[i] = static_cast<char>(tolower(static_cast<unsigned char>(aSource[i])));
  }
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

const char* qvINIFile_S_SectionOrDefault(const char* aSection) {
  return qvStrEmpty(aSection) ? kqvINIFile_DefaultSectionName : aSection;
}

static size_t qvINIFile_S_ComposeSection(const char* aSection, char* aDictionaryKey) {
  aSection = qvINIFile_S_SectionOrDefault(aSection);
  qvAssert(strlen(aSection) < kqvINIFile_SectionMaxLength);
  const size_t theLength = strlen(aSection);
  qvINIFile_S_ToLower(aDictionaryKey, aSection, theLength);
  return theLength;
}

// Most sections are there, as they should be, whenever one of their keys is read or written.
static void qvINIFile_S_WriteSection(qvDictionary* aDictionary, const char* aSection, size_t aLength) {
  const size_t theSlot = qvDictionary_S_FindSlot(aDictionary, aSection, aLength);
  if (theSlot == kqvDictionary_NoSlot || aDictionary->mEntries[theSlot].mValue[0] != '\0') {
    const qvDictionaryKey theKey = {aSection, aLength,
                                    qvDictionary_S_FinishHash(qvDictionary_S_HashOn(0, aSection, aLength))};
    qvDictionary_S_Put(aDictionary, &theKey, "", 0);
    qvDictionary_S_FinishPuts(aDictionary);
  }
}

// Puts the dictionary key of a section's key into a buffer of kqvINIFile_HashTableKeyMaxLength bytes and
// returns its length. Writes the section's own entry on the way when aSectionHome is the dictionary rather
// than null.
static size_t qvINIFile_S_ComposeKey(const char* aSection, const char* aKey, qvDictionary* aSectionHome,
                                     char* aDictionaryKey) {
  if (aKey == NULL) {
    return qvINIFile_S_ComposeSection(aSection, aDictionaryKey);
  }
  aSection = qvINIFile_S_SectionOrDefault(aSection);
  qvAssert((strlen(aSection) < kqvINIFile_SectionMaxLength) && (strlen(aKey)) < kqvINIFile_SectionMaxLength);
  const size_t theLength = strlen(aSection);
  const size_t theKeyLength = strlen(aKey);
  qvINIFile_S_ToLower(aDictionaryKey, aSection, theLength);
  aDictionaryKey[theLength] = kqvINIFIle_SectionSeparator;
  qvINIFile_S_ToLower(aDictionaryKey + theLength + 1, aKey, theKeyLength);
  // Both are composed before anything is looked up: bytes that have just been written are slow to read as
  // words.
  if (aSectionHome != NULL) {
    qvINIFile_S_WriteSection(aSectionHome, aDictionaryKey, theLength);
  }
  return theLength + 1 + theKeyLength;
}

// A section's name in lower case, which a lookup compares with; released by the caller. No limit applies: a
// name that is too long for any entry just finds nothing.
static char* qvINIFile_S_NewFoldedSection(const char* aSection) {
  char* theSection = qvStrdup(qvINIFile_S_SectionOrDefault(aSection));
  qvINIFile_S_ToLower(theSection, theSection, strlen(theSection));
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
  const size_t theLength = qvINIFile_S_ComposeKey(aSection, aKey, aDictionary, theDictionaryKey);
  const size_t theSlot = qvDictionary_S_FindSlot(aDictionary, theDictionaryKey, theLength);
  *afValueFound = theSlot != kqvDictionary_NoSlot;
  return *afValueFound ? aDictionary->mEntries[theSlot].mValue : aDefaultValue;
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
  char thePrefix[kqvINIFile_SectionMaxLength + 1];
  char theGivenName[kqvINIFile_SectionMaxLength];
  strcpy(theGivenName, aSection);  // aSection may lie in an entry that goes
  const size_t theLength = strlen(aSection);
  qvINIFile_S_ToLower(thePrefix, aSection, theLength);
  thePrefix[theLength] = kqvINIFIle_SectionSeparator;
  qvDictionary_S_DeleteKeysWith(aDictionary, thePrefix, theLength + 1);
  // KEEP qvINIFileKept.DeleteSectionKeepsTheEntryOfANameWithCapitals
  // The name is not folded here, so only a lower-case name removes the section's own entry.
  qvDictionary_DeleteKey(aDictionary, theGivenName);
  return 1;
}
