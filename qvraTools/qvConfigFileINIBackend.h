/* qvConfigFileINIBackend.h - the back-end of qvConfigFile that keeps each layer as INI text.
 *
 * The table of its functions is one for the process and counts its users; any thread may get and release it.
 *
 * A save writes FILE.tmp, makes it durable, renames it to FILE.ok and then to FILE. Whatever is left of an
 * interrupted save is settled at the next open: FILE.tmp is dropped, FILE.ok becomes FILE. */
#ifndef QVRATOOLS_QVCONFIGFILEINIBACKEND_H
#define QVRATOOLS_QVCONFIGFILEINIBACKEND_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvDictionary.h"

QV_BEGIN_DECLS

/* What a qvConfigFile made by this back-end is. */
typedef struct qvConfigFile_INI_t {
  qvConfigFileBackend* mBackend; /* the table of this back-end */
  char* mROFileName;             /* full name, or null */
  char* mRWFileName;             /* full name, or null */
  qvDictionary* mRODictionary;   /* never null */
  qvDictionary* mRWDictionary;   /* null when no read-write name was given */
} qvConfigFile_INI;

/* The table, with one more reference, which the caller gives back through qvConfigFile_INI_ReleaseBackend. */
QVLOG_API qvConfigFileBackend* qvConfigFile_INI_GetBackend(void);

/* Gives one reference back; the last one releases the table. Anything but the table fails an assertion then.
 */
QVLOG_API void qvConfigFile_INI_ReleaseBackend(qvConfigFileBackend* aConfigFilebackend);

QV_END_DECLS

#endif
