/* qvDir.h - directories: create, remove, ask, and walk through the entries of one.
 *
 * Paths go through qvPath_Normalize first: a relative name is anchored at the directory of the executable,
 * and a backslash is a '/'. A null path is a failure. Any thread may call these functions; one traverser
 * belongs to one thread at a time. */
#ifndef QVOS_QVDIR_H
#define QVOS_QVDIR_H

#include <dirent.h>

#include "qvOS/qvTime.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/qvPtrList.h"

QV_BEGIN_DECLS

/* What a traverser gives. The flags are bits. */
#define qvDIR_FILES   0x0001 /* regular files                    */
#define qvDIR_DIRS    0x0002 /* directories                      */
#define qvDIR_HIDDEN  0x0004 /* entries that are hidden, as well */
#define qvDIR_DOTDOT  0x0008 /* "." and "..", as well            */
#define qvDIR_DEFAULT (qvDIR_FILES | qvDIR_DIRS | qvDIR_HIDDEN)

/* Results of a traverser. */
#define kqvDirTraverserStatus_NoError 0
#define kqvDirTraverserStatus_Error   1

/* One entry of a directory. */
typedef struct qvDirEntry_t {
  char* mName;  /* without the directory; owned by the traverser */
  int mfDir;    /* 1 for a directory, 0 for a regular file       */
  int mfHidden; /* 1 when the name begins with '.' and goes on with something else than '.' */
} qvDirEntry;

/* Callers may read the fields; only the functions below write them. */
typedef struct qvDirTraverser_t {
  qvDirEntry mEntry;        /* the current entry                                        */
  DIR* mDir;                /* the open directory, or null                              */
  char* mDirPath;           /* normalised, without '/' at the end except for "/" itself */
  char* mEntrySpec;         /* the pattern of names                                     */
  uint32 mFlags;            /* qvDIR_ bits                                              */
  struct dirent64* mDirEnt; /* what was read last, or null                             */
} qvDirTraverser;

/* 1 for an existing directory or a link to one, 0 otherwise. A link whose own absolute path begins, as plain
 * text, with the path that it resolves to counts as absent, because a walk along it need not end: a
 * link to a directory above it, but also "/a/bc" that points to "/a/b". */
QVLOG_API int qvDir_Exists(const char* aDirPath);

/* Makes one directory for the owner alone (mode 0700). 0, or -1 also when it exists. */
QVLOG_API int qvDir_Create(const char* aDirPath);

/* Makes every directory of the path that is missing, each with qvDir_Create. The first component is taken to
 * exist unless it is the only one. 1 when the whole path exists afterwards, 0 otherwise; directories made
 * before a failure stay. */
QVLOG_API int qvDir_CreatePath(const char* aDirPath);

/* Removes an empty directory. 0 also when there is none, else -1. */
QVLOG_API int qvDir_Remove(const char* aDirPath);

/* qvFile_GetTimes of qvFile.h, with its results. */
QVLOG_API int qvDir_GetTimes(const char* aDirPath, qvtimeval* aLastAccessTime, qvtimeval* aModificationTime,
                             qvtimeval* aCreationTime);

/* A new list with the text "/". qvPtrList_Delete releases the list and the text. */
QVLOG_API qvPtrList* qvDir_GetRootDirList(void);

/* A new traverser, to be released with qvDirTraverser_Delete. The directory is not touched yet. */
QVLOG_API qvDirTraverser* qvDirTraverser_New(const char* aDirPath);

/* Opens the directory and gives the first entry that the flags let pass and whose name matches aPattern
 * (qvCStringParser_Match), or null when there is none. *aStatus is kqvDirTraverserStatus_Error when the
 * traverser has no path, aPattern is null or the directory cannot be read; a directory that does not exist
 * is no error, it has no entries. The entry is valid until the next call for this traverser. Fails an
 * assertion when the directory is open: call qvDirTraverser_Rewind before a second walk. */
QVLOG_API qvDirEntry* qvDirTraverser_GetFirst(qvDirTraverser* aDirTraverser, const char* aPattern,
                                              uint32 aFlags, int* aStatus);

/* The next such entry, or null at the end, and when reading fails: *aStatus is kqvDirTraverserStatus_Error
 * then. Fails an assertion when the directory is not open. */
QVLOG_API qvDirEntry* qvDirTraverser_GetNext(qvDirTraverser* aDirTraverser, int* aStatus);

/* Closes the directory if it is open. */
QVLOG_API void qvDirTraverser_Rewind(qvDirTraverser* aDirTraverser);

/* The normalised directory, or null; valid until the traverser is deleted. */
QVLOG_API const char* qvDirTraverser_GetDirPath(qvDirTraverser* aDirTraverser);

/* Closes the directory and releases the traverser; null is ignored. */
QVLOG_API void qvDirTraverser_Delete(qvDirTraverser* aDirTraverser);

QV_END_DECLS

#endif
