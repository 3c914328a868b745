/* qvPlatform.h - environment variables, and starting a program.
 *
 * The environment belongs to the whole process: while one thread sets a variable, no other may read or set
 * one. */
#ifndef QVOS_QVPLATFORM_H
#define QVOS_QVPLATFORM_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A new copy of the variable's value, which the caller releases with qvFree; null when it is unset and for a
 * null name. */
QVLOG_API char* qvPlatform_getenv(const char* aName);

/* Sets the variable, replacing a value that it has. 0 when set; -1 when a text is null or the name is empty
 * or holds a '='. */
QVLOG_API int qvPlatform_setenv(const char* aName, const char* aValue);

/* Starts a program in the background: runs the shell command "\"%s\" %s &" of the path and the parameter (""
 * for null) and returns what the system's "system" call returns, which says nothing about the program. The
 * shell reads both texts with all its rules (quotes, '$', ';'), so neither may come from a stranger. -1 for
 * a null path. */
QVLOG_API int qvPlatform_Launch(const char* anApplicationFullPath, const char* aParameter);

QV_END_DECLS

#endif
