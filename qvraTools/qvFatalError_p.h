/* qvFatalError_p.h - the message of a fatal error without its end. */
#ifndef QVRATOOLS_QVFATALERROR_P_H
#define QVRATOOLS_QVFATALERROR_P_H

#include "qvraTools/qvFatalError.h"

/* Writes what qvFatalError writes first for the same arguments, and returns. */
void qvFatalError_S_WriteMessage(const char* aReason, ...);

#endif
