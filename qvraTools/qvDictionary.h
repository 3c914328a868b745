/* qvDictionary.h - a small map from text to text that keeps its entries in the order of their first writing.
 *
 * The entries lie in one array, for callers to read but not to change. A few are searched from the start of
 * the array, each with a stored hash that rejects most mismatches; with the ninth comes an index behind the
 * dictionary's fields, so that a key is found as quickly among thousands. Deleting is linear in the number of
 * entries. A dictionary has no lock: it belongs to one thread at a time.
 *
 * Texts that these functions return point into the dictionary: they live until their entry is changed or
 * deleted, or until the dictionary is deleted. Dictionaries and keys that are handed over must not be null;
 * where nothing else is said, that is not checked. */
#ifndef QVRATOOLS_QVDICTIONARY_H
#define QVRATOOLS_QVDICTIONARY_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The smallest number of slots, and how many are added when all are in use. */
#define kqvDictionary_DefaultHashSize 8

/* A slot; callers may read the fields. */
typedef struct qvDictionaryEntry_t {
  char* mKey;   /* never null; the empty text marks a free slot */
  uint32 mHash; /* of the key; 0 in a free slot */
  char* mValue; /* never null */
} qvDictionaryEntry;

/* Slots 0 to mEntryCount - 1 are in use, in order; the others are free and hold empty texts of their own. */
typedef struct qvDictionary_t {
  size_t mSize;                /* slots allocated */
  qvDictionaryEntry* mEntries; /* the slots       */
  size_t mEntryCount;          /* slots in use    */
} qvDictionary;

/* A new dictionary with aHashTableSize free slots, at least kqvDictionary_DefaultHashSize. */
QVLOG_API qvDictionary* qvDictionary_New(size_t aHashTableSize);

/* Releases the dictionary with everything in it; null is ignored. */
QVLOG_API void qvDictionary_Delete(qvDictionary* aDictionary);

/* The value of aKey. An absent key gives aDefaultValue itself, the same pointer (null allowed), which no
 * stored value ever is; so a caller can tell absence from an equal text. */
QVLOG_API const char* qvDictionary_ReadKey(const qvDictionary* aDictionary, const char* aKey,
                                           const char* aDefaultValue);

/* Replaces the value of aKey, which keeps its place, or adds the key at the end. A null aValue is stored as
 * the empty text. A null dictionary or key fails an assertion. The empty key must not be written: it fills a
 * slot and raises the count, but no search finds it. */
QVLOG_API void qvDictionary_WriteKey(qvDictionary* aDictionary, const char* aKey, const char* aValue);

/* Removes aKey; the entries behind it move one place down. An absent key is ignored. */
QVLOG_API void qvDictionary_DeleteKey(qvDictionary* aDictionary, const char* aKey);

/* How many keys there are. */
QVLOG_API size_t qvDictionary_GetEntryCount(const qvDictionary* aDictionary);

/* The key and the value of the entry at anIndex; an index outside 0 to count - 1 fails an assertion. */
QVLOG_API const char* qvDictionary_GetKeyAtIndex(const qvDictionary* aDictionary, size_t anIndex);
QVLOG_API const char* qvDictionary_GetValueAtIndex(const qvDictionary* aDictionary, size_t anIndex);

QV_END_DECLS

#endif
