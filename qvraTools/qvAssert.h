/* qvAssert.h - assertions: a broken promise of the caller is logged and ends the process. */
#ifndef QVRATOOLS_QVASSERT_H
#define QVRATOOLS_QVASSERT_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Never returns: logs the failed condition as an error, then ends the process through qvFatalError with the
 * condition's text, the source file and the line. Any thread may call it. */
QVLOG_API void _qvAssert(const char* aText, const char* aFile, int aLine) QV_NORETURN;

QV_END_DECLS

/* Ends the process with the text of TEST unless TEST holds. Active in every build. */
#define qvAssert(TEST)                      \
  do {                                      \
    if (!(TEST)) {                          \
      _qvAssert(#TEST, __FILE__, __LINE__); \
    }                                       \
  } while (0)

/* Ends the process with the text STR. */
#define qvAssertFail(STR) _qvAssert(STR, __FILE__, __LINE__)

/* For objects whose first field is a magic number: fails when X is null or does not carry V. */
#define QVMAGICNUMBER_CHECK(X, V) qvAssert(((X) != NULL) && ((X)->_mMagicNumber == (V)))

#endif
