/* qvFormatSimple_p.h - the short way for what most formats are made of.
 *
 * %d %u %x %X, with at most a "0" and a width of one or two digits, and %s and %c alone: they are recognised
 * and written at once, straight into the output. Everything else goes the general way, and so do these when
 * the room is small; it gives the same for them. */
#ifndef QVRATOOLS_FORMAT_QVFORMATSIMPLE_P_H
#define QVRATOOLS_FORMAT_QVFORMATSIMPLE_P_H

#include <string.h>

#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatNumber_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"

#define kqvFormatSimple_MaxLength 11 /* a sign and the ten digits of 32 bits */

inline uint32 qvFormatSimple_DecimalLength(uint32 aValue) {
  static const uint32 kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
  // 1233 / 4096 is a little more than the decimal logarithm of 2.
  uint32 theGuess = static_cast<uint32>(32 - __builtin_clz(aValue | 1)) * 1233 >> 12;
  return theGuess + (aValue >= kPowers[theGuess] || theGuess == 0);
}

inline uint32 qvFormatSimple_HexLength(uint32 aValue) {
  return aValue == 0 ? 1 : static_cast<uint32>(35 - __builtin_clz(aValue)) / 4;
}

// Write all digits of a value so that they end at anEnd.

template <typename Char>
inline void qvFormatSimple_WriteDecimal(Char* anEnd, uint32 aValue) {
  for (; aValue >= 100; aValue /= 100) {
    anEnd -= 2;
    anEnd[0] = static_cast<Char>(kqvFormat_Pairs[aValue % 100 * 2]);
    anEnd[1] = static_cast<Char>(kqvFormat_Pairs[aValue % 100 * 2 + 1]);
  }
  anEnd[-1] = static_cast<Char>('0' + aValue % 10);
  if (aValue >= 10) {
    anEnd[-2] = static_cast<Char>('0' + aValue / 10);
  }
}

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
inline void qvFormatSimple_WriteInteger(char aConversion, uint32 aValue, char aPadding, uint32 aWidth,
                                        qvFormatOutput<Char>* anOutput) {
  bool theNegative = aConversion == 'd' && static_cast<int32>(aValue) < 0;
  uint32 theMagnitude = theNegative ? 0 - aValue : aValue;
  if (aConversion == 'd' || aConversion == 'u') {
    uint32 theDigits = qvFormatSimple_DecimalLength(theMagnitude);
    qvFormatSimple_WriteDecimal(qvFormatSimple_WriteFront(theNegative, theDigits, aPadding, aWidth, anOutput),
                                theMagnitude);
  } else {
    uint32 theDigits = qvFormatSimple_HexLength(theMagnitude);
    qvFormatSimple_WriteHex(qvFormatSimple_WriteFront(false, theDigits, aPadding, aWidth, anOutput),
                            theMagnitude, aConversion == 'X');
  }
}

// %s without anything, in the narrow family. Wide output converts its texts and goes the general way.
inline bool qvFormatSimple_WriteText(qvFormatArguments* anArguments, qvFormatOutput<char>* anOutput) {
  const void* theText = anArguments->TakeNextPointer();
  const char* thePrinted = theText != nullptr ? static_cast<const char*>(theText) : "(nil)";
  anOutput->Append(thePrinted, strlen(thePrinted));
  return true;
}

inline bool qvFormatSimple_WriteText(qvFormatArguments*, qvFormatOutput<wchar_t>*) { return false; }

// Writes one of the simple directives and moves aNext behind it; false, with nothing done, when it is
// another.
template <typename Char>
inline bool qvFormatSimple_Write(const Char*& aNext, qvFormatArguments* anArguments,
                                 qvFormatOutput<Char>* anOutput) {
  if (!anArguments->IsInOrder()) {
    return false;
  }
  if (*aNext == 's' && qvFormatSimple_WriteText(anArguments, anOutput)) {
    ++aNext;
    return true;
  }
  if (*aNext == 'c') {
    anOutput->Put(static_cast<Char>(static_cast<unsigned char>(anArguments->TakeNextInt())));
    ++aNext;
    return true;
  }
  const Char* theNext = aNext;
  char thePadding = *theNext == '0' ? '0' : ' ';
  theNext += thePadding == '0';
  uint32 theWidth = 0;
  for (int theDigits = 0; theDigits < 2 && *theNext >= '0' && *theNext <= '9'; ++theDigits) {
    theWidth = theWidth * 10 + static_cast<uint32>(*theNext++ - '0');
  }
  bool theKnown = *theNext == 'd' || *theNext == 'u' || *theNext == 'x' || *theNext == 'X';
  uint32 theMost = theWidth > kqvFormatSimple_MaxLength ? theWidth : kqvFormatSimple_MaxLength;
  if (!theKnown || anOutput->Reserve(theMost) == nullptr) {
    return false;
  }
  qvFormatSimple_WriteInteger(static_cast<char>(*theNext), static_cast<uint32>(anArguments->TakeNextInt()),
                              thePadding, theWidth, anOutput);
  aNext = theNext + 1;
  return true;
}

#endif
