#include "qvraTools/qvDictionary.h"

#include <stdint.h>
#include <string.h>

#include <algorithm>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvDictionary_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvDictionary_MinCapacity ((size_t)32) /* slots; most settings files need no second array */

namespace {

// What qvDictionary_New makes: behind the fields that callers see lie those that make the work quick.
struct IndexedDictionary : qvDictionary {
  size_t mCapacity;  // slots that the array has room for; a copy of it for every few slots would be quadratic
  size_t mMadeCount;  // slots that hold texts; all of them, except amid a row of puts
  size_t mFirstFree;  // no slot below it is free
  qvDictionaryIndex mIndex;
};

}  // namespace

static IndexedDictionary* qvDictionary_S_Whole(qvDictionary* aDictionary) {
  return static_cast<IndexedDictionary*>(aDictionary);
}

// One-at-a-time hash over the bytes as unsigned values; the empty key gives 0.
uint32 qvDictionary_S_HashOn(uint32 aHash, const char* aText, size_t aLength) {
  for (size_t i = 0; i < aLength; ++i) {
    aHash += static_cast<unsigned char>(aText[i]);
    aHash += aHash << 10;
    aHash ^= aHash >> 6;
  }
  return aHash;
}

uint32 qvDictionary_S_FinishHash(uint32 aHash) {
  aHash += aHash << 3;
  aHash ^= aHash >> 11;
  aHash += aHash << 15;
  return aHash;
}

static uint32 qvDictionary_S_ComputeHashValueForKey(const char* aKey, size_t aLength) {
  return qvDictionary_S_FinishHash(qvDictionary_S_HashOn(0, aKey, aLength));
}

// Key and value lie in one block, until another value gets a block of its own. There is always a byte behind
// the key that belongs to its block, so no other block begins there.
static bool qvDictionary_S_HasValueOfItsOwn(const qvDictionaryEntry* anEntry) {
  return anEntry->mValue != anEntry->mKey + strlen(anEntry->mKey) + 1;
}

static void qvDictionary_S_Copy(char* aDest, const char* aText, size_t aLength) {
  memcpy(aDest, aText, aLength);
  aDest[aLength] = '\0';
}

static void qvDictionary_S_MakeTexts(qvDictionaryEntry* anEntry, const char* aKey, size_t aKeyLength,
                                     const char* aValue, size_t aValueLength) {
  anEntry->mKey = static_cast<char*>(qvMalloc(aKeyLength + aValueLength + 2));
  anEntry->mValue = anEntry->mKey + aKeyLength + 1;
  qvDictionary_S_Copy(anEntry->mKey, aKey, aKeyLength);
  qvDictionary_S_Copy(anEntry->mValue, aValue, aValueLength);
}

static void qvDictionary_S_FreeTexts(qvDictionaryEntry* anEntry) {
  if (qvDictionary_S_HasValueOfItsOwn(anEntry)) {
    qvFree(anEntry->mValue);
  }
  qvFree(anEntry->mKey);
}

static void qvDictionary_S_MakeFree(qvDictionaryEntry* anEntry) {
  qvDictionary_S_MakeTexts(anEntry, "", 0, "", 0);
  anEntry->mHash = 0;
}

// Room for aCount slots at least, and for many more when there was some: a copy of the array for every few
// slots would make a quadratic load.
static void qvDictionary_S_MakeRoom(IndexedDictionary* aDictionary, size_t aCount) {
  if (aCount <= aDictionary->mCapacity) {
    return;
  }
  const size_t theCapacity = std::max({aCount, aDictionary->mCapacity * 2, kqvDictionary_MinCapacity});
  // A product that wraps round would be a small block; the largest size of all is refused instead.
  const size_t theBytes = theCapacity <= SIZE_MAX / sizeof(qvDictionaryEntry)
                              ? theCapacity * sizeof(qvDictionaryEntry)
                              : SIZE_MAX;
  aDictionary->mEntries = static_cast<qvDictionaryEntry*>(qvRealloc(aDictionary->mEntries, theBytes));
  aDictionary->mCapacity = theCapacity;
}

// The new slots have no texts yet.
static void qvDictionary_S_AddSlots(IndexedDictionary* aDictionary, size_t aCount) {
  qvDictionary_S_MakeRoom(aDictionary, aDictionary->mSize + aCount);
  aDictionary->mSize += aCount;
}

// The walk that the index saves; a few entries are found by it as quickly.
static size_t qvDictionary_S_Walk(const IndexedDictionary* aDictionary, const char* aKey, size_t aLength,
                                  uint32 aHash) {
  for (size_t i = 0; i < aDictionary->mMadeCount; ++i) {
    const qvDictionaryEntry* theEntry = &aDictionary->mEntries[i];
    if (theEntry->mHash == aHash && theEntry->mKey[0] != '\0' &&
        qvDictionaryIndex_S_IsKeyOf(theEntry, aKey, aLength)) {
      return i;
    }
  }
  return kqvDictionary_NoSlot;
}

size_t qvDictionary_S_FindSlot(const qvDictionary* aDictionary, const char* aKey, size_t aLength) {
  const IndexedDictionary* theDictionary = static_cast<const IndexedDictionary*>(aDictionary);
  if (theDictionary->mIndex.mPlaces == NULL) {
    return qvDictionary_S_Walk(theDictionary, aKey, aLength,
                               qvDictionary_S_ComputeHashValueForKey(aKey, aLength));
  }
  return qvDictionaryIndex_S_Find(&theDictionary->mIndex, theDictionary->mEntries, aKey, aLength,
                                  qvDictionaryIndex_S_Hash(aKey, aLength));
}

// An equal value is left where it is, so that pointers to it stay good: settings are read by writing their
// section's entry anew. aValue may lie in the old one: a caller may hand back a text that it has read from
// the dictionary.
static void qvDictionary_S_StoreValue(qvDictionaryEntry* anEntry, const char* aValue, size_t aLength) {
  const size_t theOldLength = strlen(anEntry->mValue);
  if (theOldLength == aLength && memcmp(anEntry->mValue, aValue, aLength) == 0) {
    return;
  }
  const uintptr_t theOffset =
      reinterpret_cast<uintptr_t>(aValue) - reinterpret_cast<uintptr_t>(anEntry->mValue);
  if (theOffset <= theOldLength) {
    memmove(anEntry->mValue, aValue, aLength);
    anEntry->mValue[aLength] = '\0';
    return;
  }
  char* theOldValue = qvDictionary_S_HasValueOfItsOwn(anEntry) ? anEntry->mValue : NULL;
  anEntry->mValue = static_cast<char*>(qvMalloc(aLength + 1));
  qvDictionary_S_Copy(anEntry->mValue, aValue, aLength);
  qvFree(theOldValue);
}

// The slot of an empty key reads as free, so the first free one need not be the one behind all that are
// used.
static size_t qvDictionary_S_FirstFreeSlot(IndexedDictionary* aDictionary) {
  if (aDictionary->mEntryCount == aDictionary->mSize) {
    qvDictionary_S_AddSlots(aDictionary, kqvDictionary_DefaultHashSize);
  }
  size_t theSlot = aDictionary->mFirstFree;
  while (theSlot < aDictionary->mMadeCount && aDictionary->mEntries[theSlot].mKey[0] != '\0') {
    ++theSlot;
  }
  return theSlot;
}

static void qvDictionary_S_FillSlot(IndexedDictionary* aDictionary, size_t aSlot, const qvDictionaryKey* aKey,
                                    const char* aValue, size_t aValueLength) {
  qvDictionaryEntry theNew;
  qvDictionary_S_MakeTexts(&theNew, aKey->mText, aKey->mLength, aValue, aValueLength);
  theNew.mHash = aKey->mHash;
  qvDictionaryEntry* theEntry = &aDictionary->mEntries[aSlot];
  if (aSlot < aDictionary->mMadeCount) {
    // Only now: aValue may lie in the slot, if that is one of the empty key.
    qvDictionary_S_FreeTexts(theEntry);
  } else {
    aDictionary->mMadeCount++;
  }
  *theEntry = theNew;
}

// Finds a slot for a key that is in none, and counts it in.
static void qvDictionary_S_Insert(IndexedDictionary* aDictionary, const qvDictionaryKey* aKey,
                                  uint32 anIndexHash, const char* aValue, size_t aValueLength) {
  const size_t theSlot = qvDictionary_S_FirstFreeSlot(aDictionary);
  qvDictionary_S_FillSlot(aDictionary, theSlot, aKey, aValue, aValueLength);
  // KEEP qvDictionaryKept.TheEmptyKeyRaisesTheCountButIsNeverFound
  // The count rises for the empty key too, although its slot still reads as free. Callers never write it.
  aDictionary->mEntryCount++;
  if (aKey->mLength == 0) {
    aDictionary->mFirstFree = theSlot;
    return;
  }
  aDictionary->mFirstFree = theSlot + 1;
  if (aDictionary->mIndex.mPlaces != NULL) {
    qvDictionaryIndex_S_Add(&aDictionary->mIndex, anIndexHash, theSlot);
  } else if (aDictionary->mEntryCount > kqvDictionary_DefaultHashSize) {
    qvDictionaryIndex_S_Build(&aDictionary->mIndex, aDictionary->mEntries, aDictionary->mMadeCount);
  }
}

void qvDictionary_S_Put(qvDictionary* aDictionary, const qvDictionaryKey* aKey, const char* aValue,
                        size_t aValueLength) {
  IndexedDictionary* theDictionary = qvDictionary_S_Whole(aDictionary);
  const qvDictionaryIndex* theIndex = &theDictionary->mIndex;
  uint32 theIndexHash = 0;
  size_t theSlot;
  if (theIndex->mPlaces == NULL) {
    theSlot = qvDictionary_S_Walk(theDictionary, aKey->mText, aKey->mLength, aKey->mHash);
  } else {
    theIndexHash = qvDictionaryIndex_S_Hash(aKey->mText, aKey->mLength);
    theSlot =
        qvDictionaryIndex_S_Find(theIndex, theDictionary->mEntries, aKey->mText, aKey->mLength, theIndexHash);
  }
  if (theSlot != kqvDictionary_NoSlot) {
    qvDictionary_S_StoreValue(&theDictionary->mEntries[theSlot], aValue, aValueLength);
  } else {
    qvDictionary_S_Insert(theDictionary, aKey, theIndexHash, aValue, aValueLength);
  }
}

void qvDictionary_S_FinishPuts(qvDictionary* aDictionary) {
  IndexedDictionary* theDictionary = qvDictionary_S_Whole(aDictionary);
  for (; theDictionary->mMadeCount < theDictionary->mSize; theDictionary->mMadeCount++) {
    qvDictionary_S_MakeFree(&theDictionary->mEntries[theDictionary->mMadeCount]);
  }
}

qvDictionary* qvDictionary_New(size_t aHashTableSize) {
  IndexedDictionary* theDictionary =
      static_cast<IndexedDictionary*>(qvMallocZeroed(sizeof(IndexedDictionary)));
  qvDictionary_S_AddSlots(theDictionary, aHashTableSize > kqvDictionary_DefaultHashSize
                                             ? aHashTableSize
                                             : static_cast<size_t>(kqvDictionary_DefaultHashSize));
  qvDictionary_S_FinishPuts(theDictionary);
  return theDictionary;
}

void qvDictionary_Delete(qvDictionary* aDictionary) {
  if (aDictionary == NULL) {
    return;
  }
  for (size_t i = 0; i < aDictionary->mSize; ++i) {
    qvDictionary_S_FreeTexts(&aDictionary->mEntries[i]);
  }
  qvFree(aDictionary->mEntries);
  qvFree(qvDictionary_S_Whole(aDictionary)->mIndex.mPlaces);
  qvFree(aDictionary);
}

const char* qvDictionary_ReadKey(const qvDictionary* aDictionary, const char* aKey,
                                 const char* aDefaultValue) {
  const size_t theSlot = qvDictionary_S_FindSlot(aDictionary, aKey, strlen(aKey));
  return theSlot != kqvDictionary_NoSlot ? aDictionary->mEntries[theSlot].mValue : aDefaultValue;
}

void qvDictionary_WriteKey(qvDictionary* aDictionary, const char* aKey, const char* aValue) {
  qvAssert((aDictionary != NULL) && (aKey != NULL));
  const char* theValue = aValue != NULL ? aValue : "";
  const size_t theLength = strlen(aKey);
  const qvDictionaryKey theKey = {aKey, theLength, qvDictionary_S_ComputeHashValueForKey(aKey, theLength)};
  qvDictionary_S_Put(aDictionary, &theKey, theValue, strlen(theValue));
  qvDictionary_S_FinishPuts(aDictionary);
}

void qvDictionary_DeleteKey(qvDictionary* aDictionary, const char* aKey) {
  const size_t theLength = strlen(aKey);
  const size_t theSlot = qvDictionary_S_FindSlot(aDictionary, aKey, theLength);
  if (theSlot == kqvDictionary_NoSlot) {
    return;
  }
  IndexedDictionary* theDictionary = qvDictionary_S_Whole(aDictionary);
  if (theDictionary->mIndex.mPlaces != NULL) {
    qvDictionaryIndex_S_Remove(&theDictionary->mIndex, qvDictionaryIndex_S_Hash(aKey, theLength), theSlot);
  }
  qvDictionaryEntry* theEntry = &theDictionary->mEntries[theSlot];
  qvDictionary_S_FreeTexts(theEntry);
  theDictionary->mEntryCount--;
  theDictionary->mFirstFree -= theSlot < theDictionary->mFirstFree;
  qvDictionaryEntry* theLast = &theDictionary->mEntries[theDictionary->mEntryCount];
  memmove(theEntry, theEntry + 1, static_cast<size_t>(theLast - theEntry) * sizeof(qvDictionaryEntry));
  qvDictionary_S_MakeFree(theLast);
}

void qvDictionary_S_DeleteKeysWith(qvDictionary* aDictionary, const char* aPrefix, size_t aLength) {
  IndexedDictionary* theDictionary = qvDictionary_S_Whole(aDictionary);
  const size_t theOldCount = theDictionary->mEntryCount;
  size_t theKept = 0;
  for (size_t i = 0; i < theOldCount; ++i) {
    qvDictionaryEntry* theEntry = &theDictionary->mEntries[i];
    if (strncmp(theEntry->mKey, aPrefix, aLength) == 0) {
      qvDictionary_S_FreeTexts(theEntry);
    } else {
      theDictionary->mEntries[theKept++] = *theEntry;
    }
  }
  for (size_t i = theKept; i < theOldCount; ++i) {
    qvDictionary_S_MakeFree(&theDictionary->mEntries[i]);
  }
  theDictionary->mEntryCount = theKept;
  theDictionary->mFirstFree = 0;
  if (theDictionary->mIndex.mPlaces != NULL && theKept < theOldCount) {
    qvDictionaryIndex_S_Build(&theDictionary->mIndex, theDictionary->mEntries, theKept);
  }
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
