/* qvConfigFileINISave_p.h - the crash-safe save of the INI back-end and its counterpart at open.
 *
 * A save goes through two siblings of the file:
 *
 *     write FILE.tmp, flush it      a crash leaves FILE.tmp: incomplete, dropped at the next open
 *     rename FILE.tmp to FILE.ok    a crash leaves FILE.ok: complete, becomes FILE at the next open
 *     rename FILE.ok to FILE
 *
 * Each rename replaces what has the new name in one step, so at every instant there is a complete file. Both
 * functions work under the lock of the file's directory (qvOS/qvDirLock_p.h), and leave everything as it is
 * when they cannot have it. */
#ifndef QVRATOOLS_QVCONFIGFILEINISAVE_P_H
#define QVRATOOLS_QVCONFIGFILEINISAVE_P_H

#include "qvraTools/qvDictionary.h"

QV_BEGIN_DECLS

/* How long a process waits for others that work in the directory, in milliseconds. A save takes a fraction of
 * a second; who holds the lock longer has been stopped. */
#define kqvConfigFile_INI_LockLimit 5000

/* The name of FILE.ok, for the caller to release. */
char* qvConfigFile_INI_S_NewCompletedName(const char* aFileName);

/* Settles what an interrupted save has left beside the file. Returns 1 when no complete FILE.ok is there any
 * more; 0 when there is one, or may be: then the file may not hold the latest settings. */
int qvConfigFile_INI_S_CheckAndRepairFile(const char* aFileName);

/* Returns 1 when the file holds the dictionary and a power failure cannot take that back. After 0 it is as it
 * was, and nothing is left beside it but a complete FILE.ok when only the last rename failed. */
int qvConfigFile_INI_S_SaveFile(const char* aFileName, qvDictionary* aDictionary);

QV_END_DECLS

#endif
