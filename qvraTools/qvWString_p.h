// qvWString_p.h - the check that ends the second pass of every conversion.
#ifndef QVRATOOLS_QVWSTRING_P_H
#define QVRATOOLS_QVWSTRING_P_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

// Fails an assertion when the second pass found invalid what the first pass had found valid: somebody has
// changed the text in between.
void qvWString_S_CheckConverted(size_t theConvertedLength);

QV_END_DECLS

#endif
