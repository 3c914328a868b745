// The wildcard match of qvCStringParser.h.

#include <stddef.h>

#include "qvraTools/qvCStringParser.h"

#define kqvCStringParser_AnyByte   '?'
#define kqvCStringParser_AnyBytes  '*'
#define kqvCStringParser_ClassOpen '['
#define kqvCStringParser_ClassEnd  ']'
#define kqvCStringParser_Negate    '^'
#define kqvCStringParser_Range     '-'
#define kqvCStringParser_Literal   '\\'

static bool qvCStringParser_S_IsTextEnd(char aChar, char anEOLChar) {
  return aChar == '\0' || aChar == anEOLChar;
}

static bool qvCStringParser_S_IsClassEnd(char aChar) {
  return aChar == '\0' || aChar == kqvCStringParser_ClassEnd;
}

// Whether aByte is in the class whose first member *aPattern points to. Leaves *aPattern behind the closing
// ']', or at the end of the pattern when there is none.
static bool qvCStringParser_S_ReadMembers(const char** aPattern, unsigned char aByte) {
  const char* thePattern = *aPattern;
  bool thefMember = false;
  bool thefFirst = true;  // in first place ']' is a member
  while (*thePattern != '\0' && (thefFirst || *thePattern != kqvCStringParser_ClassEnd)) {
    thefFirst = false;
    unsigned char theLow = static_cast<unsigned char>(*thePattern++);
    bool thefRange = false;
    // The end of one range may be the start of the next: "a-c-e".
    while (thePattern[0] == kqvCStringParser_Range && !qvCStringParser_S_IsClassEnd(thePattern[1])) {
      unsigned char theHigh = static_cast<unsigned char>(thePattern[1]);
      thefMember = thefMember || (theLow <= aByte && aByte <= theHigh);
      theLow = theHigh;
      thePattern += 2;
      thefRange = true;
    }
    thefMember = thefMember || (!thefRange && aByte == theLow);
  }
  if (*thePattern == kqvCStringParser_ClassEnd) {
    ++thePattern;
  }
  *aPattern = thePattern;
  return thefMember;
}

// What follows the class behind a '[', or null when aByte is not in the class.
static const char* qvCStringParser_S_MatchClass(const char* aPattern, unsigned char aByte) {
  const bool thefNegated = *aPattern == kqvCStringParser_Negate;
  if (thefNegated) {
    ++aPattern;
  }
  return qvCStringParser_S_ReadMembers(&aPattern, aByte) != thefNegated ? aPattern : NULL;
}

// What follows the element at aPattern, which is not '*' and not the end, or null when aByte does not match
// the element.
static const char* qvCStringParser_S_MatchElement(const char* aPattern, char aByte) {
  switch (*aPattern) {
    case kqvCStringParser_AnyByte:
      return aPattern + 1;
    case kqvCStringParser_ClassOpen:
      return qvCStringParser_S_MatchClass(aPattern + 1, static_cast<unsigned char>(aByte));
    case kqvCStringParser_Literal:
      // At the end of the pattern there is nothing to take literally; aByte is not the terminator.
      return aByte == aPattern[1] ? aPattern + 2 : NULL;
    default:
      // KEEP qvCStringParserKept.LettersCompareWithTheirCaseEvenWhenItIsNotRelevant
      // The bytes have to be equal as they stand. Case relevance asks for equal lower-case forms on top of
      // that, which equal bytes always have, so it changes nothing.
      return aByte == *aPattern ? aPattern + 1 : NULL;
  }
}

// Whether an element stands for itself and nothing else.
static bool qvCStringParser_S_IsPlain(char anElement) {
  return anElement != kqvCStringParser_AnyByte && anElement != kqvCStringParser_ClassOpen &&
         anElement != kqvCStringParser_Literal;
}

// Where what follows a '*' can match at the earliest: at its first byte, when that stands for itself.
static const char* qvCStringParser_S_NextStart(const char* aPattern, const char* aText, char anEOLChar) {
  if (qvCStringParser_S_IsPlain(*aPattern)) {
    while (*aText != *aPattern && !qvCStringParser_S_IsTextEnd(*aText, anEOLChar)) {
      ++aText;
    }
  }
  return aText;
}

// Goes back to the last '*' only: a part of the pattern between two '*' matches best where it matches first,
// and once the text has run out behind a '*', giving an earlier one more text cannot help. So the work is
// bounded by length of text times length of pattern, and the stack does not grow.
static bool qvCStringParser_S_Matches(const char* aPattern, const char* aText, char anEOLChar) {
  const char* theStarPattern = NULL;  // what follows the last '*', or null before there was one
  const char* theStarText = NULL;     // where that was last tried
  for (;;) {
    if (*aPattern == kqvCStringParser_AnyBytes) {
      while (*aPattern == kqvCStringParser_AnyBytes) {
        ++aPattern;
      }
      if (*aPattern == '\0') {
        return true;
      }
      theStarPattern = aPattern;
      aText = theStarText = qvCStringParser_S_NextStart(aPattern, aText, anEOLChar);
    }
    if (qvCStringParser_S_IsTextEnd(*aText, anEOLChar)) {
      return *aPattern == '\0';
    }
    const char* theBehind = *aPattern != '\0' ? qvCStringParser_S_MatchElement(aPattern, *aText) : NULL;
    if (theBehind != NULL) {
      aPattern = theBehind;
      ++aText;
      continue;
    }
    if (theStarPattern == NULL) {
      return false;
    }
    aPattern = theStarPattern;
    aText = theStarText = qvCStringParser_S_NextStart(aPattern, theStarText + 1, anEOLChar);
  }
}

int qvCStringParser_Match(const char* aPattern, const char* aText) {
  return qvCStringParser_MatchEx(aPattern, aText, 1, '\0');
}

int qvCStringParser_MatchEx(const char* aPattern, const char* aText, int /* afCaseRelevant */,
                            char anEOLChar) {
  if (aPattern[0] == kqvCStringParser_AnyBytes && aPattern[1] == '\0') {
    return 1;
  }
  // KEEP qvCStringParserKept.FirstPatternByteMustBeTheFirstTextByte
  // Unless the pattern begins with '*' or '?', its first byte must be the text's first byte, whatever it
  // means as a pattern: "[ab]c" matches no text that begins with 'a' or 'b'.
  if (aPattern[0] != kqvCStringParser_AnyBytes && aPattern[0] != kqvCStringParser_AnyByte &&
      aPattern[0] != aText[0]) {
    return 0;
  }
  return qvCStringParser_S_Matches(aPattern, aText, anEOLChar);
}
