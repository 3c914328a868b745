/* qvFormatPlain_p.h - the shortest way, for what log lines are made of: text, and %d %u %s %% alone.
 *
 * It gives what the general way gives, and leaves everything else to it, as it does numbers when the room is
 * small. */
#ifndef QVRATOOLS_FORMAT_QVFORMATPLAIN_P_H
#define QVRATOOLS_FORMAT_QVFORMATPLAIN_P_H

#include <limits.h>
#include <string.h>
#include <wchar.h>

#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"
#include "qvraTools/format/qvFormatSimple_p.h"

// %s, null or not.
inline void qvFormatPlain_WriteText(const void* aText, qvFormatOutput<char>* anOutput) {
  const char* theText = aText != nullptr ? static_cast<const char*>(aText) : "(nil)";
  anOutput->Append(theText, strlen(theText));
}

// %d and %u. There is room for any number.
inline void qvFormatPlain_WriteInt(bool afNegative, uint32 aMagnitude, qvFormatOutput<char>* anOutput) {
  char* thePlace = anOutput->Reserve(0);
  *thePlace = '-';  // written over without
  uint32 theLength = qvFormatDecimal_Length(aMagnitude) + afNegative;
  qvFormatDecimal_Write(thePlace + theLength, aMagnitude);
  anOutput->Wrote(theLength);
}

// Writes the directive of one letter, if it is one of these and there is room for any number; or "%%".
inline bool qvFormatPlain_WriteDirective(char aConversion, qvFormatArguments* anArguments,
                                         qvFormatOutput<char>* anOutput) {
  if (aConversion == 's') {
    qvFormatPlain_WriteText(anArguments->TakeNextPointer(), anOutput);
    return true;
  }
  if (aConversion == '%') {
    anOutput->Put('%');
    return true;
  }
  if ((aConversion != 'd' && aConversion != 'u') || anOutput->Reserve(kqvFormatSimple_IntLength) == nullptr) {
    return false;
  }
  uint32 theValue = static_cast<uint32>(anArguments->TakeNextInt());
  bool theNegative = aConversion == 'd' && static_cast<int32>(theValue) < 0;
  qvFormatPlain_WriteInt(theNegative, theNegative ? 0 - theValue : theValue, anOutput);
  return true;
}

// Behind a directive there is often another one, or the end: no call for these.
inline const char* qvFormatPlain_FindPercent(const char* aText) {
  return *aText == '%' || *aText == '\0' ? aText : strchrnul(aText, '%');
}

// Writes from aNext on, and moves it to where something else follows: the end of the format, another
// directive, or anything where the output is already longer than it may be.
static inline void qvFormatPlain_Write(const char*& aNext, qvFormatArguments* anArguments,
                                       qvFormatOutput<char>* anOutput) {
  // Copies, since the characters that are stored might change the originals, as far as the compiler knows.
  qvFormatOutput<char> theOutput = *anOutput;
  const char* theNext = aNext;
  const bool theIsInOrder = anArguments->IsInOrder();
  for (;;) {
    const char* thePercent = qvFormatPlain_FindPercent(theNext);
    theOutput.Append(theNext, static_cast<size_t>(thePercent - theNext));
    theNext = thePercent;
    if (*theNext == '\0' || !theIsInOrder || theOutput.Count() > INT_MAX ||
        !qvFormatPlain_WriteDirective(theNext[1], anArguments, &theOutput)) {
      break;
    }
    theNext += 2;
  }
  aNext = theNext;
  *anOutput = theOutput;
}

// In wide formats, text alone.
inline void qvFormatPlain_Write(const wchar_t*& aNext, qvFormatArguments*,
                                qvFormatOutput<wchar_t>* anOutput) {
  const wchar_t* theStart = aNext;
  while (*aNext != 0 && *aNext != L'%') {
    ++aNext;
  }
  anOutput->Append(theStart, static_cast<size_t>(aNext - theStart));
}

#endif
