/* qvFormatSimple_p.h - the short way for most other directives.
 *
 * %d %u %x %X %ld %lu %lld %llu %f %e %g, with at most a "0", a width and a precision of one or two
 * digits, and %c alone: they are recognised and written at once, integers straight into the output.
 * Everything else goes the general way, and so do integers when the room is small; it gives the same for
 * them. */
#ifndef QVRATOOLS_FORMAT_QVFORMATSIMPLE_P_H
#define QVRATOOLS_FORMAT_QVFORMATSIMPLE_P_H

#include <string.h>

#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatDecimal_p.h"
#include "qvraTools/format/qvFormatNumberOutput_p.h"
#include "qvraTools/format/qvFormatNumber_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"
#include "qvraTools/format/qvFormatWord_p.h"

#define kqvFormatSimple_IntLength  11 /* a sign and the ten digits of 32 bits */
#define kqvFormatSimple_LongLength 20 /* a sign and the digits of 63 bits, or the digits of 64 */

inline uint32 qvFormatSimple_HexLength(uint32 aValue) {
  return aValue == 0 ? 1 : static_cast<uint32>(35 - __builtin_clz(aValue)) / 4;
}

// Writes all digits of a value so that they end at anEnd.
template <typename Char>
inline void qvFormatSimple_WriteHex(Char* anEnd, uint32 aValue, bool afUpper) {
  const char* theDigits = afUpper ? kqvFormat_UpperDigits : kqvFormat_LowerDigits;
  do {
    *--anEnd = static_cast<Char>(theDigits[aValue & 15]);
    aValue >>= 4;
  } while (aValue != 0);
}

// Writes what stands in front of aDigits digits, and gives the end of the whole number. There is room.
template <typename Char>
inline Char* qvFormatSimple_WriteFront(bool afNegative, uint32 aDigits, char aPadding, uint32 aWidth,
                                       qvFormatOutput<Char>* anOutput) {
  uint32 theLength = aDigits + afNegative;
  uint32 theTotal = theLength < aWidth ? aWidth : theLength;
  Char* theNext = anOutput->Reserve(theTotal);
  if (afNegative && aPadding == '0') {
    *theNext++ = '-';
  }
  for (uint32 thePadding = theTotal - theLength; thePadding > 0; --thePadding) {
    *theNext++ = static_cast<Char>(aPadding);
  }
  if (afNegative && aPadding != '0') {
    *theNext++ = '-';
  }
  anOutput->Wrote(theTotal);
  return theNext + aDigits;
}

template <typename Char>
inline void qvFormatSimple_WriteInt(char aConversion, uint32 aValue, char aPadding, uint32 aWidth,
                                    qvFormatOutput<Char>* anOutput) {
  bool theNegative = aConversion == 'd' && static_cast<int32>(aValue) < 0;
  uint32 theMagnitude = theNegative ? 0 - aValue : aValue;
  if (aConversion == 'd' || aConversion == 'u') {
    uint32 theDigits = qvFormatDecimal_Length(theMagnitude);
    qvFormatDecimal_Write(qvFormatSimple_WriteFront(theNegative, theDigits, aPadding, aWidth, anOutput),
                          theMagnitude);
  } else {
    uint32 theDigits = qvFormatSimple_HexLength(theMagnitude);
    qvFormatSimple_WriteHex(qvFormatSimple_WriteFront(false, theDigits, aPadding, aWidth, anOutput),
                            theMagnitude, aConversion == 'X');
  }
}

// The same for 64 bits, of decimal numbers.
template <typename Char>
inline void qvFormatSimple_WriteLong(bool afNegative, uint64 aMagnitude, char aPadding, uint32 aWidth,
                                     qvFormatOutput<Char>* anOutput) {
  uint32 theNines[2];
  uint32 theCount = 0;
  while (aMagnitude > UINT32_MAX) {
    aMagnitude = qvFormat_DivideByBillion(aMagnitude, &theNines[theCount++]);
  }
  uint32 theFirst = static_cast<uint32>(aMagnitude);
  uint32 theDigits = qvFormatDecimal_Length(theFirst) + 9 * theCount;
  Char* theEnd = qvFormatSimple_WriteFront(afNegative, theDigits, aPadding, aWidth, anOutput);
  for (uint32 theIndex = 0; theIndex < theCount; ++theIndex) {
    theEnd = qvFormatDecimal_WriteNine(theEnd, theNines[theIndex]);
  }
  qvFormatDecimal_Write(theEnd, theFirst);
}

// What stands between "%" and the letters.
template <typename Char>
struct qvFormatSimpleStart {
  explicit qvFormatSimpleStart(const Char* aNext) : mNext(aNext), mPadding(*aNext == '0' ? '0' : ' ') {
    mNext += mPadding == '0';
    mWidth = ReadNumber();
  }

  // Of at most two digits, none of them needed.
  uint32 ReadNumber() {
    uint32 theNumber = 0;
    for (int theDigits = 0; theDigits < 2 && *mNext >= '0' && *mNext <= '9'; ++theDigits) {
      theNumber = theNumber * 10 + static_cast<uint32>(*mNext++ - '0');
    }
    return theNumber;
  }

  bool Fits(uint32 aLength, qvFormatOutput<Char>* anOutput) const {
    return anOutput->Reserve(mWidth > aLength ? mWidth : aLength) != nullptr;
  }

  const Char* mNext;
  char mPadding;
  uint32 mWidth;
};

// %ld %lu %lld %llu, mNext at the first "l".
template <typename Char>
inline bool qvFormatSimple_WriteLong(qvFormatSimpleStart<Char>* aStart, qvFormatArguments* anArguments,
                                     qvFormatOutput<Char>* anOutput) {
  bool theLonger = *++aStart->mNext == 'l';
  aStart->mNext += theLonger;
  bool theSigned = *aStart->mNext == 'd';
  if ((!theSigned && *aStart->mNext != 'u') || !aStart->Fits(kqvFormatSimple_LongLength, anOutput)) {
    return false;
  }
  uint64 theValue = theLonger ? anArguments->TakeNextLongLong() : anArguments->TakeNextLong(theSigned);
  bool theNegative = theSigned && static_cast<int64>(theValue) < 0;
  qvFormatSimple_WriteLong(theNegative, theNegative ? 0 - theValue : theValue, aStart->mPadding,
                           aStart->mWidth, anOutput);
  return true;
}

// %f %e %g, mNext at the point of the precision or at the letter.
template <typename Char>
inline bool qvFormatSimple_WriteReal(qvFormatSimpleStart<Char>* aStart, qvFormatArguments* anArguments,
                                     qvFormatOutput<Char>* anOutput) {
  int thePrecision = kqvFormat_NoPrecision;
  if (*aStart->mNext == '.') {
    ++aStart->mNext;
    thePrecision = static_cast<int>(aStart->ReadNumber());
  }
  Char theConversion = *aStart->mNext;
  if (theConversion != 'f' && theConversion != 'e' && theConversion != 'g') {
    return false;
  }
  qvFormatDirective theDirective = qvFormatDirective();
  theDirective.mFlags = aStart->mPadding == '0' ? kqvFormatFlag_Zero : 0;
  theDirective.mConversion = static_cast<char>(theConversion);
  theDirective.mWidth = static_cast<int>(aStart->mWidth);
  theDirective.mPrecision = thePrecision;
  qvFormatNumber_WriteDouble(theDirective, anArguments->TakeNextDouble(), anOutput);
  return true;
}

// Writes one of the simple directives and moves aNext behind it; false, with nothing done, when it is
// another.
template <typename Char>
inline bool qvFormatSimple_Write(const Char*& aNext, qvFormatArguments* anArguments,
                                 qvFormatOutput<Char>* anOutput) {
  if (!anArguments->IsInOrder()) {
    return false;
  }
  if (*aNext == 'c') {
    anOutput->Put(static_cast<Char>(static_cast<unsigned char>(anArguments->TakeNextInt())));
    ++aNext;
    return true;
  }
  qvFormatSimpleStart<Char> theStart(aNext);
  bool theWritten = false;
  switch (*theStart.mNext) {
    case 'd':
    case 'u':
    case 'x':
    case 'X':
      theWritten = theStart.Fits(kqvFormatSimple_IntLength, anOutput);
      if (theWritten) {
        qvFormatSimple_WriteInt(static_cast<char>(*theStart.mNext),
                                static_cast<uint32>(anArguments->TakeNextInt()), theStart.mPadding,
                                theStart.mWidth, anOutput);
      }
      break;
    case 'l':
      theWritten = qvFormatSimple_WriteLong(&theStart, anArguments, anOutput);
      break;
    case '.':
    case 'e':
    case 'f':
    case 'g':
      theWritten = qvFormatSimple_WriteReal(&theStart, anArguments, anOutput);
      break;
    default:
      break;
  }
  if (theWritten) {
    aNext = theStart.mNext + 1;
  }
  return theWritten;
}

#endif
