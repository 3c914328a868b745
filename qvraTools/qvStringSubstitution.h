/* qvStringSubstitution.h - replaces variables in a text, such as "%env.HOME%/cache", by their values.
 *
 * A variable is a name between two marks. The caller's function says what a name stands for; names that
 * begin with "env." are environment variables whenever that function does not know them. Every text that
 * these functions return is new: the caller releases it with qvFree. Only the text to substitute in, the
 * function and its user data may be null. They keep no state of their own and may run on any thread. */
#ifndef QVRATOOLS_QVSTRINGSUBSTITUTION_H
#define QVRATOOLS_QVSTRINGSUBSTITUTION_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Gives a new text (made with qvMalloc or qvStrdup) for the variable aStr, which is its name without the
 * marks, or null when it does not know the name. The substitution releases the text. */
typedef char* (*qvGetReplacementStrFunc)(char* aStr, void* aUserData);

/* A copy of aStr with each variable replaced; null for null. A variable lies between two anEscapeChar; two of
 * them side by side stand for one; a single one is left as it is; a name that nobody knows vanishes with its
 * marks. With afRecursive not 0, variables in a replacement are replaced in turn: a variable that leads back
 * to itself never ends then. aReplacementStrFunc may be null. */
QVLOG_API char* qvStringSubstitution_Substitute(const char* aStr, char anEscapeChar, int afRecursive,
                                                qvGetReplacementStrFunc aReplacementStrFunc, void* aUserData);

/* The same with marks of any length (not empty), one before and one behind the name. An empty name is
 * resolved like any other. */
QVLOG_API char* qvStringSubstitution_SubstituteEx(const char* aStr, const char* aStartMarker,
                                                  const char* aEndMarker, int afRecursive,
                                                  qvGetReplacementStrFunc aReplacementStrFunc,
                                                  void* aUserData);

/* What the variable aStr stands for: the function's answer when there is one, else the value of the
 * environment variable behind "env.", else null. */
QVLOG_API char* qvStringSubstitution_GetSubstitution(char* aStr, qvGetReplacementStrFunc aReplacementStrFunc,
                                                     void* aUserData);

/* A qvGetReplacementStrFunc that knows the name "hostname": the host's name up to its first dot, or the whole
 * of a name that is an IPv4 address. aUserData is not used. */
QVLOG_API char* qvStringSubstitution_Replace_HostName(char* aStr, void* aUserData);

/* 1 when aStr holds only decimal digits and exactly three dots, else 0. */
QVLOG_API int qvStringSubstitution_IsHostNameInIPDotForm(char* aStr);

QV_END_DECLS

#endif
