// Floating-point classification.
#include <cmath>
#include <limits>

#include "qvraTools/format/qvFormat.h"

int qv_isnan(double aNumber) { return std::isnan(aNumber); }

int qv_isinf(double aNumber) {
  if (!std::isinf(aNumber)) {
    return 0;
  }
  return std::signbit(aNumber) ? -1 : 1;
}

int qv_isfinite(double aNumber) { return std::isfinite(aNumber); }

int qv_signbit(double aNumber) { return std::signbit(aNumber); }

int qv_fpclassify(double aNumber) {
  switch (std::fpclassify(aNumber)) {
    case FP_INFINITE:
      return VEXA_FP_INFINITE;
    case FP_NAN:
      return VEXA_FP_NAN;
    case FP_SUBNORMAL:
      return VEXA_FP_SUBNORMAL;
    case FP_ZERO:
      return VEXA_FP_ZERO;
    default:
      return VEXA_FP_NORMAL;
  }
}

double qv_nzero(void) { return -0.0; }

double qv_pinf(void) { return std::numeric_limits<double>::infinity(); }

double qv_ninf(void) { return -std::numeric_limits<double>::infinity(); }

double qv_nan(void) { return std::numeric_limits<double>::quiet_NaN(); }
