/* qvMACAddress.h - the hardware address of the device. */
#ifndef QVOS_QVMACADDRESS_H
#define QVOS_QVMACADDRESS_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Stores the six bytes of the first network interface whose hardware address is not all zeros in
 * aMACAddress, in the order in which the address is written. Interfaces without an IPv4 address are not
 * looked at. Returns 1 when there is one, otherwise -1, and aMACAddress holds zeros then. aStartingIndex has
 * no effect. Any thread may call it. */
QVLOG_API int qvMACAddress_Get(size_t aStartingIndex, uint8* aMACAddress);

QV_END_DECLS

#endif
