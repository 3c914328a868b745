/* qvGlobal.h - a registry of named pointers in the environment of the process, meant for several copies of
 * the library in one process.
 *
 * Changing the environment is not safe while other threads read it: set pointers at start-up. Pointers are
 * read back in a range of 32 bits. Names must not be null. */
#ifndef QVOS_QVGLOBAL_H
#define QVOS_QVGLOBAL_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A function of any type; convert it back before calling it. */
typedef void (*qvGlobalFunctionPtr)(void);

/* The environment variable in which SetPtr stores a pointer: aName, ".", the process id in decimal and a
 * fixed suffix. The caller frees it with qvFree. */
QVLOG_API char* qvGlobal_GetVariableName(const char* aName);

/* Stores a pointer under aName, for this process. */
QVLOG_API void qvGlobal_SetPtr(const char* aName, void* aValue);

/* The pointer that the environment variable aName itself holds as a number ("0x" and hexadecimal digits, or
 * decimal digits), or null. What SetPtr stored is not found, since that is in another variable: see
 * qvGlobal_GetVariableName. */
QVLOG_API void* qvGlobal_GetPtr(const char* aName);

/* SetPtr and GetPtr for the address of a function. */
QVLOG_API void qvGlobal_SetFunctionPtr(const char* aName, qvGlobalFunctionPtr aValue);
QVLOG_API qvGlobalFunctionPtr qvGlobal_GetFunctionPtr(const char* aName);

QV_END_DECLS

#endif
