#include "Workload.h"

#include <qvraTools/qvConvert.h>

namespace {

struct Int32 {
  bool operator()(const char* aText, size_t, int32_t* aValue) const {
    return qvConvert_strtoint32(aText, aValue) == kqvConvertError_None;
  }
};

struct UInt64 {
  bool operator()(const char* aText, size_t, uint64_t* aValue) const {
    qvuint64_t theValue = 0;
    const bool thefWhole = qvConvert_strtouint64(aText, &theValue) == kqvConvertError_None;
    *aValue = theValue;
    return thefWhole;
  }
};

struct Hex {
  bool operator()(const char* aText, size_t, uint32_t* aValue) const {
    return qvConvert_hexstrtouint32(aText, aValue) == kqvConvertError_None;
  }
};

struct Double {
  bool operator()(const char* aText, size_t, double* aValue) const {
    return qvConvert_strtod(aText, aValue) == kqvConvertError_None;
  }
};

const Contender sRows[] = {NUMBERS_INT32_ROWS("qvLog", Int32), NUMBERS_UINT64_ROWS("qvLog", UInt64),
                           NUMBERS_HEX_ROWS("qvLog", Hex), NUMBERS_DOUBLE_ROWS("qvLog", Double)};

}  // namespace
