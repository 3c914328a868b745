// The saving half of qvINIFile.h: from the entries of a dictionary to INI text.

#include <string.h>

#include "qvOS/qvFile_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvCStringParser.h"
#include "qvraTools/qvDictionary_p.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvINIFile_LineEnd         "\n"
#define kqvINIFile_MinTextCapacity 1024 /* bytes */

namespace {

// The file's text, collected in memory so that it is written with one call.
struct SavedText {
  char* mData;
  size_t mLength;
  size_t mCapacity;
};

}  // namespace

static void qvINIFile_S_AppendText(SavedText* aText, const char* aLine) {
  size_t theLineLength = strlen(aLine);
  if (aText->mCapacity - aText->mLength < theLineLength) {
    aText->mCapacity = (aText->mLength + theLineLength) * 2 + kqvINIFile_MinTextCapacity;
    aText->mData = static_cast<char*>(qvRealloc(aText->mData, aText->mCapacity));
  }
  memcpy(aText->mData + aText->mLength, aLine, theLineLength);
  aText->mLength += theLineLength;
}

static void qvINIFile_S_AppendKey(SavedText* aText, const char* aKey, const char* aValue) {
  char theLine[kqvINIFile_MaxLineLength];
  char* theQuotedValue = NULL;
  if (strpbrk(aValue, kqvINIFIle_CharsRequiringEscape) != NULL) {
    theQuotedValue = qvCStringParser_EscapeAndSurround(
        aValue, strlen(aValue), const_cast<char*>(kqvINIFIle_CharsToEscape), '\\', '"', '"');
  }
  // A line that is too long loses its end, the line end too. The loader reads lines of the same length, so
  // the line behind it is found again.
  qv_snprintf(theLine, sizeof(theLine), "%s=%s%s", aKey, theQuotedValue != NULL ? theQuotedValue : aValue,
              kqvINIFile_LineEnd);
  qvINIFile_S_AppendText(aText, theLine);
  qvFree(theQuotedValue);
}

// Links the entries of each section, in their order: the slot behind a section's or a key's in the result is
// that of the section's next key, or kqvDictionary_NoSlot. So each entry is looked at once, not once for each
// section. A key belongs to the section before its first separator. The caller releases the links.
static size_t* qvINIFile_S_NewLinks(const qvDictionary* aDictionary) {
  const size_t theCount = aDictionary->mEntryCount;
  size_t* theLinks = static_cast<size_t*>(qvMalloc((theCount * 2 + 1) * sizeof(size_t)));
  size_t* theLasts = theLinks + theCount;  // by the slot of a section: its last key so far
  for (size_t i = 0; i < theCount; ++i) {
    theLinks[i] = kqvDictionary_NoSlot;
    theLasts[i] = i;
  }
  for (size_t i = 0; i < theCount; ++i) {
    const char* theKey = aDictionary->mEntries[i].mKey;
    const char* theSeparator = strchr(theKey, kqvINIFIle_SectionSeparator);
    const size_t theSection =
        theSeparator != NULL
            ? qvDictionary_S_FindSlot(aDictionary, theKey, static_cast<size_t>(theSeparator - theKey))
            : kqvDictionary_NoSlot;
    if (theSection != kqvDictionary_NoSlot) {
      theLinks[theLasts[theSection]] = i;
      theLasts[theSection] = i;
    }
  }
  return theLinks;
}

// The parameter bears the name that the assertion prints.
static void qvINIFile_S_AppendHeader(SavedText* aText, const char* theSectionName) {
  qvAssert(strlen(theSectionName) < kqvINIFile_HashTableKeyMaxLength);
  if (strcmp(theSectionName, kqvINIFile_DefaultSectionName) == 0) {
    // KEEP qvINIFileKept.KeysOfALaterDefaultSectionAreSavedUnderTheHeaderBefore
    // A header "[]" would lead the loader back to this section, but it has none, wherever it stands.
    return;
  }
  char theLine[kqvINIFile_MaxLineLength];
  if (aText->mLength > 0) {
    qvINIFile_S_AppendText(aText, kqvINIFile_LineEnd);
  }
  qv_snprintf(theLine, sizeof(theLine), "[%s]%s", theSectionName, kqvINIFile_LineEnd);
  qvINIFile_S_AppendText(aText, theLine);
}

// The whole text of the file; the caller releases mData.
static SavedText qvINIFile_S_NewText(const qvDictionary* aDictionary) {
  SavedText theText = {NULL, 0, 0};
  size_t* theLinks = qvINIFile_S_NewLinks(aDictionary);
  for (size_t i = 0; i < aDictionary->mEntryCount; ++i) {
    const char* theSection = aDictionary->mEntries[i].mKey;
    if (!qvINIFile_S_IsSection(theSection)) {
      continue;
    }
    qvINIFile_S_AppendHeader(&theText, theSection);
    for (size_t k = theLinks[i]; k != kqvDictionary_NoSlot; k = theLinks[k]) {
      const char* theKey = strchr(aDictionary->mEntries[k].mKey, kqvINIFIle_SectionSeparator) + 1;
      qvINIFile_S_AppendKey(&theText, theKey, aDictionary->mEntries[k].mValue);
    }
  }
  qvFree(theLinks);
  return theText;
}

static int qvINIFile_S_OpenForSave(const char* aFileName, qvFileFD* aFD) {
  char* thePath = qvPath_Normalize(aFileName, 0, kqvPathNormalizeMode_Native, NULL);
  if (thePath == NULL) {
    return 0;
  }
  int theError = qvFile_S_OpenUninterrupted(
      thePath, qvFileOpenMode_Write | qvFileOpenMode_Create | qvFileOpenMode_Truncate, aFD);
  qvFree(thePath);
  return theError == 0;
}

// 1 when everything was written.
static int qvINIFile_S_WriteText(qvFileFD aFD, qvDictionary* aDictionary) {
  SavedText theText = qvINIFile_S_NewText(aDictionary);
  int theResult =
      theText.mLength == 0 || qvFile_Write(aFD, theText.mData, static_cast<uint32>(theText.mLength)) ==
                                  static_cast<int64>(theText.mLength);
  qvFree(theText.mData);
  return theResult;
}

int qvINIFile_SaveINIFile(const char* aFileName, qvDictionary* aDictionary) {
  qvFileFD theFD = kqvFileFDInvalid;
  if (!qvINIFile_S_OpenForSave(aFileName, &theFD)) {
    return 0;
  }
  qvAssert(aDictionary != NULL);
  qvINIFile_S_WriteText(theFD, aDictionary);
  qvFile_Close(theFD);
  return 1;
}

int qvINIFile_S_SaveINIFileDurably(const char* aFileName, qvDictionary* aDictionary) {
  qvFileFD theFD = kqvFileFDInvalid;
  if (!qvINIFile_S_OpenForSave(aFileName, &theFD)) {
    return 0;
  }
  int theResult = qvINIFile_S_WriteText(theFD, aDictionary) && qvFile_Flush(theFD) == 0;
  // Some file systems report a failed write only now.
  return qvFile_Close(theFD) == 0 && theResult;
}
