#include "qvraTools/qvDictionaryIndex_p.h"

#include <string.h>

#include "qvraTools/qvMalloc.h"

#define kqvDictionaryIndex_MinPlaces 64 /* a power of two */

// A product with many bits set, of a word of either width; its upper half is folded onto the lower one.
static size_t qvDictionaryIndex_S_Mix(size_t aHash, size_t aWord) {
  aHash = (aHash ^ aWord) * static_cast<size_t>(0x9E3779B97F4A7C15ull);
  return aHash ^ (aHash >> (sizeof(size_t) * 4));
}

// All of a text that is shorter than a word, in one.
static size_t qvDictionaryIndex_S_ShortWord(const char* aText, size_t aLength) {
  constexpr size_t kHalf = sizeof(size_t) / 2;
  if (aLength >= kHalf) {
    size_t theFirst = 0;
    size_t theLast = 0;
    memcpy(&theFirst, aText, kHalf);
    memcpy(&theLast, aText + aLength - kHalf, kHalf);
    return theFirst ^ (theLast << (kHalf * 8)) ^ (theLast >> (kHalf * 8));
  }
  size_t theWord = 0;
  for (size_t i = 0; i < aLength; ++i) {
    theWord = (theWord << 8) | static_cast<unsigned char>(aText[i]);
  }
  return theWord;
}

// A word at a time, since settings are looked up far more often than they are stored; the last word overlaps
// the one before it. The hash that callers see in the entries is not this one.
uint32 qvDictionaryIndex_S_Hash(const char* aKey, size_t aLength) {
  size_t theHash = aLength;
  size_t theWord = 0;
  if (aLength < sizeof(theWord)) {
    return static_cast<uint32>(
        qvDictionaryIndex_S_Mix(theHash, qvDictionaryIndex_S_ShortWord(aKey, aLength)));
  }
  const char* theLast = aKey + aLength - sizeof(theWord);
  for (; aKey < theLast; aKey += sizeof(theWord)) {
    memcpy(&theWord, aKey, sizeof(theWord));
    theHash = qvDictionaryIndex_S_Mix(theHash, theWord);
  }
  memcpy(&theWord, theLast, sizeof(theWord));
  return static_cast<uint32>(qvDictionaryIndex_S_Mix(theHash, theWord));
}

// The first free place for a hash: its own, or the next one that is free.
static qvDictionaryPlace* qvDictionaryIndex_S_FreePlace(const qvDictionaryIndex* anIndex, uint32 aHash) {
  const size_t theMask = anIndex->mPlaceCount - 1;
  size_t thePlace = aHash & theMask;
  while (anIndex->mPlaces[thePlace].mSlotEnd != 0) {
    thePlace = (thePlace + 1) & theMask;
  }
  return &anIndex->mPlaces[thePlace];
}

static void qvDictionaryIndex_S_Double(qvDictionaryIndex* anIndex) {
  const qvDictionaryIndex theOld = *anIndex;
  anIndex->mPlaceCount *= 2;
  anIndex->mPlaces =
      static_cast<qvDictionaryPlace*>(qvMallocZeroed(anIndex->mPlaceCount * sizeof(qvDictionaryPlace)));
  for (size_t i = 0; i < theOld.mPlaceCount; ++i) {
    if (theOld.mPlaces[i].mSlotEnd != 0) {
      *qvDictionaryIndex_S_FreePlace(anIndex, theOld.mPlaces[i].mHash) = theOld.mPlaces[i];
    }
  }
  qvFree(theOld.mPlaces);
}

void qvDictionaryIndex_S_Build(qvDictionaryIndex* anIndex, const qvDictionaryEntry* anEntries,
                               size_t aSlotCount) {
  if (anIndex->mPlaces == NULL) {
    anIndex->mPlaceCount = kqvDictionaryIndex_MinPlaces;
    anIndex->mPlaces = static_cast<qvDictionaryPlace*>(
        qvMallocZeroed(kqvDictionaryIndex_MinPlaces * sizeof(qvDictionaryPlace)));
  }
  memset(anIndex->mPlaces, 0, anIndex->mPlaceCount * sizeof(qvDictionaryPlace));
  anIndex->mUsedCount = 0;
  for (size_t i = 0; i < aSlotCount; ++i) {
    if (anEntries[i].mKey[0] != '\0') {
      qvDictionaryIndex_S_Add(anIndex, qvDictionaryIndex_S_Hash(anEntries[i].mKey, strlen(anEntries[i].mKey)),
                              i);
    }
  }
}

size_t qvDictionaryIndex_S_Find(const qvDictionaryIndex* anIndex, const qvDictionaryEntry* anEntries,
                                const char* aKey, size_t aLength, uint32 aHash) {
  const qvDictionaryPlace* thePlaces = anIndex->mPlaces;
  const size_t theMask = anIndex->mPlaceCount - 1;
  for (size_t i = aHash & theMask; thePlaces[i].mSlotEnd != 0; i = (i + 1) & theMask) {
    const size_t theSlot = thePlaces[i].mSlotEnd - 1;
    if (thePlaces[i].mHash == aHash && qvDictionaryIndex_S_IsKeyOf(&anEntries[theSlot], aKey, aLength)) {
      return theSlot;
    }
  }
  return kqvDictionary_NoSlot;
}

void qvDictionaryIndex_S_Add(qvDictionaryIndex* anIndex, uint32 aHash, size_t aSlot) {
  // Half of the places stay free, so that runs of used ones are short.
  if (anIndex->mUsedCount >= anIndex->mPlaceCount / 2) {
    qvDictionaryIndex_S_Double(anIndex);
  }
  qvDictionaryPlace* thePlace = qvDictionaryIndex_S_FreePlace(anIndex, aHash);
  thePlace->mHash = aHash;
  thePlace->mSlotEnd = static_cast<uint32>(aSlot + 1);
  anIndex->mUsedCount++;
}

// A run of used places has no gap, so those behind the one that becomes free move up where their own place
// allows it.
static void qvDictionaryIndex_S_FreeUp(qvDictionaryIndex* anIndex, size_t aPlace) {
  const size_t theMask = anIndex->mPlaceCount - 1;
  size_t theGap = aPlace;
  for (size_t i = (aPlace + 1) & theMask; anIndex->mPlaces[i].mSlotEnd != 0; i = (i + 1) & theMask) {
    const size_t theOwnPlace = anIndex->mPlaces[i].mHash & theMask;
    if (((i - theOwnPlace) & theMask) >= ((i - theGap) & theMask)) {
      anIndex->mPlaces[theGap] = anIndex->mPlaces[i];
      theGap = i;
    }
  }
  anIndex->mPlaces[theGap].mSlotEnd = 0;
  anIndex->mUsedCount--;
}

void qvDictionaryIndex_S_Remove(qvDictionaryIndex* anIndex, uint32 aHash, size_t aSlot) {
  const size_t theMask = anIndex->mPlaceCount - 1;
  size_t thePlace = aHash & theMask;
  while (anIndex->mPlaces[thePlace].mSlotEnd != aSlot + 1) {
    thePlace = (thePlace + 1) & theMask;
  }
  qvDictionaryIndex_S_FreeUp(anIndex, thePlace);
  for (size_t i = 0; i < anIndex->mPlaceCount; ++i) {
    anIndex->mPlaces[i].mSlotEnd -= anIndex->mPlaces[i].mSlotEnd > aSlot;
  }
}
