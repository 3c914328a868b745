/* qvDictionaryIndex_p.h - tells in which slot of a dictionary a key is, without a walk through all of them.
 *
 * A hash table lies beside the array of entries, which stays what callers see: its order and its slots do not
 * know of the table. What is found is compared with the entry itself. Keys need no terminator here. */
#ifndef QVRATOOLS_QVDICTIONARYINDEX_P_H
#define QVRATOOLS_QVDICTIONARYINDEX_P_H

#include <string.h>

#include "qvraTools/qvDictionary.h"

QV_BEGIN_DECLS

#define kqvDictionary_NoSlot ((size_t)-1)

typedef struct qvDictionaryPlace_t {
  uint32 mHash;    /* of the key, by the index's own function */
  uint32 mSlotEnd; /* the slot plus 1; 0 in a free place. More slots than that fit no machine */
} qvDictionaryPlace;

/* All zero: there is no index. */
typedef struct qvDictionaryIndex_t {
  qvDictionaryPlace* mPlaces;
  size_t mPlaceCount; /* a power of two */
  size_t mUsedCount;
} qvDictionaryIndex;

uint32 qvDictionaryIndex_S_Hash(const char* aKey, size_t aLength);

/* Makes the index of all entries in the slots 0 to aSlotCount - 1, instead of what it was. */
void qvDictionaryIndex_S_Build(qvDictionaryIndex* anIndex, const qvDictionaryEntry* anEntries,
                               size_t aSlotCount);

/* The slot of aKey, or kqvDictionary_NoSlot. */
size_t qvDictionaryIndex_S_Find(const qvDictionaryIndex* anIndex, const qvDictionaryEntry* anEntries,
                                const char* aKey, size_t aLength, uint32 aHash);

/* 1 when the entry's key, which is not empty, is aKey. */
static inline int qvDictionaryIndex_S_IsKeyOf(const qvDictionaryEntry* anEntry, const char* aKey,
                                              size_t aLength) {
  return strncmp(anEntry->mKey, aKey, aLength) == 0 && anEntry->mKey[aLength] == '\0';
}

/* Adds a key that is not in the index. */
void qvDictionaryIndex_S_Add(qvDictionaryIndex* anIndex, uint32 aHash, size_t aSlot);

/* Takes the key in aSlot out; those in the slots behind it are one slot lower from now on. */
void qvDictionaryIndex_S_Remove(qvDictionaryIndex* anIndex, uint32 aHash, size_t aSlot);

QV_END_DECLS

#endif
