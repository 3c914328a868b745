/* qvFormatNumber_p.h - numbers as text: everything but the digits that a huge width or precision asks for.
 *
 *   blanks | prefix | zeros | digits | more zeros | suffix | blanks
 *
 * The parts are ASCII and the same for both character widths; runs of blanks and zeros are only counted, so
 * that "%.2147483647d" costs what is stored of it and no more. */
#ifndef QVRATOOLS_FORMAT_QVFORMATNUMBER_P_H
#define QVRATOOLS_FORMAT_QVFORMATNUMBER_P_H

#include <float.h>

#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatDirective_p.h"

struct qvFormatNumber {
  const char* mDigits;
  const char* mSuffix;  // an exponent
  uint32 mDigitCount;
  uint32 mSuffixLength;
  uint32 mBlanksBefore;
  uint32 mZerosBefore;
  uint32 mZerosAfter;
  uint32 mBlanksAfter;
  uint32 mPrefixLength;
  char mPrefix[4];  // sign and "0x"
};

// The digits of every base up to 36.
extern const char kqvFormat_LowerDigits[];
extern const char kqvFormat_UpperDigits[];

// 00 to 99: two digits a division.
extern const char kqvFormat_Pairs[];

// Characters that the digits of a number need at most; the caller provides them.
#define kqvFormatInteger_BufferSize 24 /* 22 octal digits */
// "%f": 309 digits, point, 1074 digits; spare for moving the point.
#define kqvFormatDouble_BufferSize 1536
#if LDBL_MANT_DIG == 64
#define kqvFormatLongDouble_BufferSize 16640 /* "%f": "0.", 4931 zeros and 11514 digits of the smallest */
#elif LDBL_MANT_DIG == DBL_MANT_DIG
#define kqvFormatLongDouble_BufferSize kqvFormatDouble_BufferSize
#else
#error "long double is neither a double nor of 80 bits: its digits have to be made in another way"
#endif

// "%g" moves the digits of a small number to the left, over the room of its "0.000": this much is left free.
#define kqvFormatReal_FrontRoom 8

// Pads the number to the directive's width: with zeros behind the prefix if afZeros, else with blanks.
void qvFormatNumber_Pad(const qvFormatDirective& aDirective, bool afZeros, qvFormatNumber* aNumber);

// d i u o x X. aBuffer has kqvFormatInteger_BufferSize characters.
void qvFormatNumber_SetInteger(const qvFormatDirective& aDirective, uint64 aValue, char* aBuffer,
                               qvFormatNumber* aNumber);
// p, not null.
void qvFormatNumber_SetPointer(const qvFormatDirective& aDirective, const void* aValue, char* aBuffer,
                               qvFormatNumber* aNumber);
// The two widths of e E f F g G a A; aBuffer has the size above.
void qvFormatNumber_SetDouble(const qvFormatDirective& aDirective, double aValue, char* aBuffer,
                              qvFormatNumber* aNumber);
void qvFormatNumber_SetLongDouble(const qvFormatDirective& aDirective, long double aValue, char* aBuffer,
                                  qvFormatNumber* aNumber);

// Decimal text of a finite long double that is not negative, as "%.{n}f" or "%.{n}e" would have it, but with
// no more digits behind the point than the value itself has; returns the end. *aPrecision is the number of
// digits behind the point, wanted and then given.
char* qvFormatLongDouble_ToChars(char* aBuffer, long double aValue, bool afScientific, int* aPrecision);

#endif
