/* qvDictionary_p.h - what the INI store does with a dictionary beside the public calls: many changes at once,
 * with texts that have a length and need no terminator. */
#ifndef QVRATOOLS_QVDICTIONARY_P_H
#define QVRATOOLS_QVDICTIONARY_P_H

#include "qvraTools/qvDictionaryIndex_p.h"

QV_BEGIN_DECLS

/* A key with what is known of it. */
typedef struct qvDictionaryKey_t {
  const char* mText;
  size_t mLength;
  uint32 mHash; /* that of the entries */
} qvDictionaryKey;

/* The entries' hash of a text that continues the one whose unfinished hash is aHash, at first 0; of a
 * finished one qvDictionary_S_FinishHash makes the hash. */
uint32 qvDictionary_S_HashOn(uint32 aHash, const char* aText, size_t aLength);
uint32 qvDictionary_S_FinishHash(uint32 aHash);

/* The slot of aKey, or kqvDictionary_NoSlot. */
size_t qvDictionary_S_FindSlot(const qvDictionary* aDictionary, const char* aKey, size_t aLength);

/* qvDictionary_WriteKey, but free slots may be without their empty texts afterwards: those that follow may
 * fill them. Before anybody else sees the dictionary, qvDictionary_S_FinishPuts makes up for it. */
void qvDictionary_S_Put(qvDictionary* aDictionary, const qvDictionaryKey* aKey, const char* aValue,
                        size_t aValueLength);
void qvDictionary_S_FinishPuts(qvDictionary* aDictionary);

/* Deletes all entries whose keys begin with aPrefix. */
void qvDictionary_S_DeleteKeysWith(qvDictionary* aDictionary, const char* aPrefix, size_t aLength);

QV_END_DECLS

#endif
