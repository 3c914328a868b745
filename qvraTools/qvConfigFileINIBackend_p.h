/* qvConfigFileINIBackend_p.h - the lock of the back-end's table and forks. */
#ifndef QVRATOOLS_QVCONFIGFILEINIBACKEND_P_H
#define QVRATOOLS_QVCONFIGFILEINIBACKEND_P_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* From now on a fork waits for the lock of the table. Happens by itself with the first use of the table.
 * Whoever watches forks for a lock that is held while settings are read calls this first: the system runs
 * what was installed last before what was installed first, and so takes the locks in their order. */
void qvConfigFile_INI_S_WatchForks(void);

QV_END_DECLS

#endif
