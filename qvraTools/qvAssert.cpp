#include "qvraTools/qvAssert.h"

#include "qvraTools/qvFatalError.h"

void _qvAssert(const char* aText, const char* aFile, int aLine) {
  qvFatalError("assertat", aText, aFile, aLine);
}
