/* qvUUID.h - time-based UUIDs (version 1 of RFC 4122) and their text. Not for cryptographic use. */
#ifndef QVRATOOLS_QVUUID_H
#define QVRATOOLS_QVUUID_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Fills aLength bytes with random values (qvRand.h: seed first). */
QVLOG_API void qvUUID_GetRandomBytes(uint8* aBuffer, uint32 aLength);

/* Writes a new UUID of 16 bytes in the layout of RFC 4122: time_low, time_mid, time_hi_and_version and
 * clock_seq, each big-endian, then the 6 bytes of the node, which is the device's MAC address or, where there
 * is none, random (seed first). When the clock stands still it can wait up to a microsecond. Callers on
 * several threads serialise their calls: the state of the clock has no lock. */
QVLOG_API void qvUUID_Generate(uint8* anUUID);

/* Writes the 36 characters of the text form, lower-case, and a terminator: 37 bytes. */
QVLOG_API void qvUUID_Print(const uint8* anUUID, char* aBuffer);

QV_END_DECLS

#endif
