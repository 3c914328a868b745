#include "qvraTools/qvDictionary.h"

#include <stdint.h>
#include <string.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"

// One-at-a-time hash over the bytes as unsigned values; the empty key gives 0.
static uint32 qvDictionary_S_ComputeHashValueForKey(const char* aKey) {
  uint32 theHash = 0;
  for (const char* thePtr = aKey; *thePtr != '\0'; ++thePtr) {
    theHash += static_cast<unsigned char>(*thePtr);
    theHash += theHash << 10;
    theHash ^= theHash >> 6;
  }
  theHash += theHash << 3;
  theHash ^= theHash >> 11;
  theHash += theHash << 15;
  return theHash;
}

static void qvDictionary_S_MakeFree(qvDictionaryEntry* anEntry) {
  anEntry->mKey = qvStrdup("");
  anEntry->mHash = 0;
  anEntry->mValue = qvStrdup("");
}

static void qvDictionary_S_AddFreeSlots(qvDictionary* aDictionary, size_t aCount) {
  size_t theNewSize = aDictionary->mSize + aCount;
  // A product that wraps round would be a small block; the largest size of all is refused instead.
  size_t theBytes =
      theNewSize <= SIZE_MAX / sizeof(qvDictionaryEntry) ? theNewSize * sizeof(qvDictionaryEntry) : SIZE_MAX;
  aDictionary->mEntries = static_cast<qvDictionaryEntry*>(qvRealloc(aDictionary->mEntries, theBytes));
  for (size_t i = aDictionary->mSize; i < theNewSize; ++i) {
    qvDictionary_S_MakeFree(&aDictionary->mEntries[i]);
  }
  aDictionary->mSize = theNewSize;
}

static qvDictionaryEntry* qvDictionary_S_Find(const qvDictionary* aDictionary, const char* aKey,
                                              uint32 aHash) {
  for (size_t i = 0; i < aDictionary->mSize; ++i) {
    qvDictionaryEntry* theEntry = &aDictionary->mEntries[i];
    if (theEntry->mHash == aHash && theEntry->mKey[0] != '\0' && strcmp(theEntry->mKey, aKey) == 0) {
      return theEntry;
    }
  }
  return NULL;
}

// The hash is looked at first, since it lies in the array and the key does not.
static qvDictionaryEntry* qvDictionary_S_FindFree(qvDictionary* aDictionary) {
  for (size_t i = 0; i < aDictionary->mSize; ++i) {
    if (aDictionary->mEntries[i].mHash == 0 && aDictionary->mEntries[i].mKey[0] == '\0') {
      return &aDictionary->mEntries[i];
    }
  }
  return NULL;
}

// Puts a copy of aNewText into the block *aText, resized. An equal text is left where it is, so that pointers
// to it stay good: settings are read by writing their section's entry anew. aNewText may lie in that block: a
// caller may hand back a text that it has read from the dictionary.
static void qvDictionary_S_StoreText(char** aText, const char* aNewText) {
  if (strcmp(*aText, aNewText) == 0) {
    return;
  }
  size_t theSize = strlen(aNewText) + 1;
  uintptr_t theOffset = reinterpret_cast<uintptr_t>(aNewText) - reinterpret_cast<uintptr_t>(*aText);
  if (theOffset <= strlen(*aText)) {
    memmove(*aText, aNewText, theSize);
    return;
  }
  *aText = static_cast<char*>(qvRealloc(*aText, theSize));
  memcpy(*aText, aNewText, theSize);
}

qvDictionary* qvDictionary_New(size_t aHashTableSize) {
  qvDictionary* theDictionary = static_cast<qvDictionary*>(qvMallocZeroed(sizeof(qvDictionary)));
  qvDictionary_S_AddFreeSlots(theDictionary, aHashTableSize > kqvDictionary_DefaultHashSize
                                                 ? aHashTableSize
                                                 : static_cast<size_t>(kqvDictionary_DefaultHashSize));
  return theDictionary;
}

void qvDictionary_Delete(qvDictionary* aDictionary) {
  if (aDictionary == NULL) {
    return;
  }
  for (size_t i = 0; i < aDictionary->mSize; ++i) {
    qvFree(aDictionary->mEntries[i].mKey);
    qvFree(aDictionary->mEntries[i].mValue);
  }
  qvFree(aDictionary->mEntries);
  qvFree(aDictionary);
}

const char* qvDictionary_ReadKey(const qvDictionary* aDictionary, const char* aKey,
                                 const char* aDefaultValue) {
  const qvDictionaryEntry* theEntry =
      qvDictionary_S_Find(aDictionary, aKey, qvDictionary_S_ComputeHashValueForKey(aKey));
  return theEntry != NULL ? theEntry->mValue : aDefaultValue;
}

void qvDictionary_WriteKey(qvDictionary* aDictionary, const char* aKey, const char* aValue) {
  qvAssert((aDictionary != NULL) && (aKey != NULL));
  const char* theValue = aValue != NULL ? aValue : "";
  uint32 theHash = qvDictionary_S_ComputeHashValueForKey(aKey);
  qvDictionaryEntry* theEntry = NULL;
  if (aDictionary->mEntryCount > 0) {
    theEntry = qvDictionary_S_Find(aDictionary, aKey, theHash);
  }
  if (theEntry != NULL) {
    qvDictionary_S_StoreText(&theEntry->mValue, theValue);
    return;
  }
  if (aDictionary->mEntryCount == aDictionary->mSize) {
    qvDictionary_S_AddFreeSlots(aDictionary, kqvDictionary_DefaultHashSize);
  }
  theEntry = qvDictionary_S_FindFree(aDictionary);
  qvDictionary_S_StoreText(&theEntry->mKey, aKey);
  theEntry->mHash = theHash;
  qvDictionary_S_StoreText(&theEntry->mValue, theValue);
  // KEEP qvDictionaryKept.TheEmptyKeyRaisesTheCountButIsNeverFound
  // The count rises for the empty key too, although its slot still reads as free. Callers never write it.
  aDictionary->mEntryCount++;
}

void qvDictionary_DeleteKey(qvDictionary* aDictionary, const char* aKey) {
  qvDictionaryEntry* theEntry =
      qvDictionary_S_Find(aDictionary, aKey, qvDictionary_S_ComputeHashValueForKey(aKey));
  if (theEntry == NULL) {
    return;
  }
  qvFree(theEntry->mKey);
  qvFree(theEntry->mValue);
  aDictionary->mEntryCount--;
  qvDictionaryEntry* theLast = &aDictionary->mEntries[aDictionary->mEntryCount];
  memmove(theEntry, theEntry + 1, static_cast<size_t>(theLast - theEntry) * sizeof(qvDictionaryEntry));
  qvDictionary_S_MakeFree(theLast);
}

size_t qvDictionary_GetEntryCount(const qvDictionary* aDictionary) { return aDictionary->mEntryCount; }

const char* qvDictionary_GetKeyAtIndex(const qvDictionary* aDictionary, size_t anIndex) {
  qvAssert(anIndex < aDictionary->mEntryCount);
  return aDictionary->mEntries[anIndex].mKey;
}

const char* qvDictionary_GetValueAtIndex(const qvDictionary* aDictionary, size_t anIndex) {
  qvAssert(anIndex < aDictionary->mEntryCount);
  return aDictionary->mEntries[anIndex].mValue;
}
