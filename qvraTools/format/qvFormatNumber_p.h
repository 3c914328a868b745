/* qvFormatNumber_p.h - numbers as text: everything but the digits that a huge width or precision asks for.
 *
 *   blanks | prefix | zeros | digits | point | zeros | fraction | zeros | suffix | blanks
 *
 * The parts are ASCII and the same for both character widths; runs of blanks and zeros are only counted, so
 * that "%.2147483647d" costs what is stored of it and no more. */
#ifndef QVRATOOLS_FORMAT_QVFORMATNUMBER_P_H
#define QVRATOOLS_FORMAT_QVFORMATNUMBER_P_H

#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatDigits_p.h"
#include "qvraTools/format/qvFormatDirective_p.h"

struct qvFormatNumber {
  const char* mDigits;
  const char* mFraction;
  uint32 mDigitCount;
  uint32 mFractionCount;
  uint32 mBlanksBefore;
  uint32 mZerosBefore;
  uint32 mZerosBehindPoint;
  uint32 mZerosAfter;
  uint32 mBlanksAfter;
  uint32 mPrefixLength;
  uint32 mSuffixLength;
  bool mfPoint;
  char mPrefix[4];  // sign and "0x"
  char mSuffix[8];  // an exponent, at the end of the field: up to "p-16445"
};

// The digits of every base up to 36.
extern const char kqvFormat_LowerDigits[];
extern const char kqvFormat_UpperDigits[];

// Characters that the digits of an integer need at most; the caller provides them.
#define kqvFormatInteger_BufferSize 24 /* 22 octal digits */

// Pads the number to the directive's width: with zeros behind the prefix if afZeros, else with blanks.
void qvFormatNumber_Pad(const qvFormatDirective& aDirective, bool afZeros, qvFormatNumber* aNumber);

// d i u o x X. aBuffer has kqvFormatInteger_BufferSize characters.
void qvFormatNumber_SetInteger(const qvFormatDirective& aDirective, uint64 aValue, char* aBuffer,
                               qvFormatNumber* aNumber);
// p, not null.
void qvFormatNumber_SetPointer(const qvFormatDirective& aDirective, const void* aValue, char* aBuffer,
                               qvFormatNumber* aNumber);
// The two widths of e E f F g G a A.
void qvFormatNumber_SetDouble(const qvFormatDirective& aDirective, double aValue,
                              const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber);
void qvFormatNumber_SetLongDouble(const qvFormatDirective& aDirective, long double aValue,
                                  const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber);

// Writes the decimal digits of a value so that they end at anEnd, none for 0; returns the first.
char* qvFormatNumber_WriteDecimal(char* anEnd, uint64 aValue);

#endif
