/* qvConfigFile.h - a settings file in two layers: shipped defaults below, changes of this device above.
 *
 * Reads look in the read-write layer first and then in the read-only one. Writes, deletions and saves touch
 * the read-write layer only. How a layer is stored is up to a back-end, a table of functions; the one
 * back-end keeps INI text (qvConfigFileINIBackend.h), whose rules for sections, keys and values (qvINIFile.h)
 * hold here.
 *
 * Reading a key also adds its section, empty, to the read-write layer, so the next save writes its header.
 *
 * Texts that are returned as const char* point into the configuration file and live until their key is
 * written or deleted, or the layer is reset, or the file is deleted. A null configuration file makes reads
 * return their default, counts 0, names the empty text, and writes, deletions and saves 0.
 *
 * A configuration file has no lock: one object belongs to one thread at a time. Different objects may be used
 * in parallel, also on the same file. */
#ifndef QVRATOOLS_QVCONFIGFILE_H
#define QVRATOOLS_QVCONFIGFILE_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvStringSubstitution.h"

QV_BEGIN_DECLS

/* The table of functions of a kind of settings files. */
typedef struct qvConfigFileBackend_t qvConfigFileBackend;

/* The start of every back-end's own object. */
typedef struct qvConfigFile_t {
  qvConfigFileBackend* mBackend; /* what made it, and what it is handed to */
} qvConfigFile;

/* The types of the functions in the table; each does what the function of its name below says. */
typedef qvConfigFile* (*qvConfigFile_NewFunc)(qvConfigFileBackend* aBackend, const char* aReadOnlyFileName,
                                              const char* aReadWriteFileName, const char* aFileName);
typedef void (*qvConfigFile_DeleteFunc)(qvConfigFile* aConfigFile);
typedef void (*qvConfigFile_ResetFunc)(qvConfigFile* aConfigFile);
typedef int (*qvConfigFile_SaveFunc)(qvConfigFile* aConfigFile);
typedef int (*qvConfigFile_CreatePathFunc)(qvConfigFile* aConfigFile, const char* aPath);
typedef int (*qvConfigFile_WriteKeyAsStringFunc)(qvConfigFile* aConfigFile, const char* aSection,
                                                 const char* aKey, const char* aValue);
typedef int (*qvConfigFile_WriteKeyAsUInt32Func)(qvConfigFile* aConfigFile, const char* aSection,
                                                 const char* aKey, uint32 aValue);
typedef int (*qvConfigFile_WriteKeyAsInt32Func)(qvConfigFile* aConfigFile, const char* aSection,
                                                const char* aKey, int32 aValue);
typedef const char* (*qvConfigFile_ReadKeyAsStringFunc)(qvConfigFile* aConfigFile, const char* aSection,
                                                        const char* aKey, const char* aDefaultValue);
typedef uint32 (*qvConfigFile_ReadKeyAsUInt32Func)(qvConfigFile* aConfigFile, const char* aSection,
                                                   const char* aKey, uint32 aDefaultValue);
typedef int32 (*qvConfigFile_ReadKeyAsInt32Func)(qvConfigFile* aConfigFile, const char* aSection,
                                                 const char* aKey, int32 aDefaultValue);
typedef int (*qvConfigFile_ReadKeyAsBoolFunc)(qvConfigFile* aConfigFile, const char* aSection,
                                              const char* aKey, int aDefaultValue);
typedef size_t (*qvConfigFile_GetSectionCountFunc)(qvConfigFile* aConfigFile, int afForReadOnlyFile);
typedef const char* (*qvConfigFile_GetSectionNameFunc)(qvConfigFile* aConfigFile, size_t aSectionIndex,
                                                       int afForReadOnlyFile);
typedef size_t (*qvConfigFile_GetKeyCountFunc)(qvConfigFile* aConfigFile, const char* aSection,
                                               int afForReadOnlyFile);
typedef const char* (*qvConfigFile_GetKeyNameFunc)(qvConfigFile* aConfigFile, const char* aSection,
                                                   size_t aKeyIndex, int afForReadOnlyFile);
typedef int (*qvConfigFile_DeleteSectionFunc)(qvConfigFile* aConfigFile, const char* aSection);
typedef int (*qvConfigFile_DeleteKeyFunc)(qvConfigFile* aConfigFile, const char* aSection, const char* aKey);
typedef void (*qvConfigFile_ReleaseBackend)(qvConfigFileBackend* aBackend);

/* What a back-end does for each operation below. mReset, mSave and the writers touch the read-write layer;
 * mCreatePath makes one directory with its parents. */
struct qvConfigFileBackend_t {
  qvConfigFile_NewFunc mNew; /* null when the object cannot be made */
  /* Each for the function of its name below; the last releases the table. */
  qvConfigFile_DeleteFunc mDelete;
  qvConfigFile_ResetFunc mReset;
  qvConfigFile_SaveFunc mSave;
  qvConfigFile_CreatePathFunc mCreatePath;
  qvConfigFile_WriteKeyAsStringFunc mWriteKeyAsString;
  qvConfigFile_WriteKeyAsUInt32Func mWriteKeyAsUInt32;
  qvConfigFile_WriteKeyAsInt32Func mWriteKeyAsInt32;
  qvConfigFile_ReadKeyAsStringFunc mReadKeyAsString;
  qvConfigFile_ReadKeyAsUInt32Func mReadKeyAsUInt32;
  qvConfigFile_ReadKeyAsInt32Func mReadKeyAsInt32;
  qvConfigFile_ReadKeyAsBoolFunc mReadKeyAsBool;
  qvConfigFile_GetSectionCountFunc mGetSectionCount;
  qvConfigFile_GetSectionNameFunc mGetSectionName;
  qvConfigFile_GetKeyCountFunc mGetKeyCount;
  qvConfigFile_GetKeyNameFunc mGetKeyName;
  qvConfigFile_DeleteSectionFunc mDeleteSection;
  qvConfigFile_DeleteKeyFunc mDeleteKey;
  qvConfigFile_ReleaseBackend mReleaseBackend;
};

/* Opens the two layers. Either name may be null: that layer is empty then, and without a read-write name it
 * takes no writes. An empty name is that of a layer without a file, which cannot be saved. A file that is
 * missing or unreadable is an empty layer, not an error. Relative names are taken relative to the directory
 * of the running executable. A read-write file whose last save was interrupted is repaired first. aFileName
 * is not used by the INI back-end. Null when there is no back-end or it fails. */
QVLOG_API qvConfigFile* qvConfigFile_New(const char* aReadOnlyFileName, const char* aReadWriteFileName,
                                         const char* aFileName);

/* Releases the object without saving; null is ignored. */
QVLOG_API void qvConfigFile_Delete(qvConfigFile* aConfigFile);

/* Empties the read-write layer in memory. A save after it is allowed to replace settings that could not be
 * read. */
QVLOG_API void qvConfigFile_Reset(qvConfigFile* aConfigFile);

/* Writes the read-write layer to its file: the old content or the new one is there whole at every instant,
 * whatever interrupts the save. Returns 1, or 0 when there is no read-write file or it could not be saved;
 * the old content stands then, or the next open completes the save. Saves of several processes and threads
 * exclude each other; a save fails when it has waited five seconds for the others, and when the file was
 * there at the open but could not be read. */
QVLOG_API int qvConfigFile_Save(qvConfigFile* aConfigFile);

/* Makes the first directory with its parents, then the second. Returns 1, or 0 at the first failure.
 * aConfigFile must not be null here. */
QVLOG_API int qvConfigFile_CreatePaths(qvConfigFile* aConfigFile, const char* aReadOnlyPath,
                                       const char* aReadWritePath);

/* The key as yes (1) or no (0), as qvINIFile_ReadKeyAsBool reads it; the default only when neither layer has
 * the key. A value that says neither yes nor no is 0. */
QVLOG_API int qvConfigFile_OptionIsSet(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                       int aDefaultValue);

/* A value that is no number of the range gives the default, even when the layer below has a better one. */
QVLOG_API int32 qvConfigFile_GetInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                      int32 aDefaultValue);
QVLOG_API uint32 qvConfigFile_GetUInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                        uint32 aDefaultValue);
/* Decimal text only. */
QVLOG_API uint16 qvConfigFile_GetUInt16(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                        uint16 aDefaultValue);
QVLOG_API uint8 qvConfigFile_GetUInt8(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                      uint8 aDefaultValue);

/* The value, or aDefaultValue itself (null allowed). */
QVLOG_API const char* qvConfigFile_GetString(qvConfigFile* aConfigFile, const char* aSection,
                                             const char* aKey, const char* aDefaultValue);

/* The same with each %name% in it replaced (qvStringSubstitution.h), in a new text that the caller releases
 * with qvFree; null when the key is missing and the default is null. */
QVLOG_API char* qvConfigFile_GetStringWithSubstitution(qvConfigFile* aConfigFile, const char* aSection,
                                                       const char* aKey, const char* aDefaultValue,
                                                       qvGetReplacementStrFunc aReplacementStrFunc);

/* Return 1, or 0 when there is no read-write layer. Nothing is on disk before qvConfigFile_Save. */
QVLOG_API int qvConfigFile_SetInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                    int32 aValue);
QVLOG_API int qvConfigFile_SetUInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                     uint32 aValue);
QVLOG_API int qvConfigFile_SetString(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                     const char* aValue);

/* These four look at one layer: the read-only one when afForReadOnlyFile is not 0, else the read-write one.
 */
QVLOG_API size_t qvConfigFile_GetSectionCount(qvConfigFile* aConfigFile, int afForReadOnlyFile);
QVLOG_API const char* qvConfigFile_GetSectionName(qvConfigFile* aConfigFile, size_t aSectionIndex,
                                                  int afForReadOnlyFile);
QVLOG_API size_t qvConfigFile_GetKeyCount(qvConfigFile* aConfigFile, const char* aSection,
                                          int afForReadOnlyFile);
QVLOG_API const char* qvConfigFile_GetKeyName(qvConfigFile* aConfigFile, const char* aSection,
                                              size_t aKeyIndex, int afForReadOnlyFile);

/* Delete from the read-write layer, so a read sees the read-only value again. Return 1, or 0 without a
 * read-write layer. The section itself goes only when its name is given in lower case. */
QVLOG_API int qvConfigFile_DeleteSection(qvConfigFile* aConfigFile, const char* aSection);
QVLOG_API int qvConfigFile_DeleteKey(qvConfigFile* aConfigFile, const char* aSection, const char* aKey);

QV_END_DECLS

#endif
