/* qvRandStd.h - the system's pseudo-random numbers (rand and srand). Not for cryptographic use. One sequence
 * for the process; any thread may draw from it. */
#ifndef QVOS_QVRANDSTD_H
#define QVOS_QVRANDSTD_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The next number, 0 to RAND_MAX. */
QVLOG_API int qvOSRand_Rand(void);

/* The sequence that starts at this seed. */
QVLOG_API void qvOSRand_SetSeed(uint32 aSeed);

QV_END_DECLS

#endif
