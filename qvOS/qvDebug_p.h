/* qvDebug_p.h - the pieces of a back-trace that a whole stack never shows. aFile is an open file, or -1 for
 * none. */
#ifndef QVOS_QVDEBUG_P_H
#define QVOS_QVDEBUG_P_H

#include "qvOS/qvDebug.h"

/* One line of a trace, to the file, the log and standard output. */
void qvDebug_S_PutSymbol(int aFile, int anIndex, const char* aSymbol);

/* One line for a frame that could not be resolved, to the log and standard output. */
void qvDebug_S_PutAddress(int anIndex, const void* anAddress);

/* 256 words from aFrame on, read as addresses. */
void qvDebug_S_PutStackDump(int aFile, const void* aFrame);

/* Copies aSize bytes from a place of which the end may not be readable; zeros from there on. */
void qvDebug_S_CopyStack(const void* aFrom, void* aTo, size_t aSize);

#endif
