/* qvRand.h - 32-bit random numbers and numbers in ranges. Not for cryptographic use.
 *
 * Seed once with qvRand_Init before drawing; the functions that draw do not. Without it the sequence is the
 * same in every process. */
#ifndef QVRATOOLS_QVRAND_H
#define QVRATOOLS_QVRAND_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Seeds the system's generator from the wall clock and the device's MAC address, once per process; later
 * calls do nothing. Any thread may call it. */
QVLOG_API void qvRand_Init(void);

/* 32 random bits. */
QVLOG_API uint32 qvRand_UInt32(void);
QVLOG_API int32 qvRand_Int32(void);

/* A number from aMin to aMax, both included. aMin above aMax is not checked: the range then wraps around. */
QVLOG_API uint32 qvRand_MinMaxUInt32(uint32 aMin, uint32 aMax);
QVLOG_API int32 qvRand_MinMaxInt32(int32 aMin, int32 aMax);
QVLOG_API uint16 qvRand_MinMaxUInt16(uint16 aMin, uint16 aMax);
QVLOG_API int16 qvRand_MinMax(int16 aMin, int16 aMax);

QV_END_DECLS

#endif
