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

static bool qvCStringParser_S_MatchesClass(const char** aPattern, unsigned char aByte) {
  bool thefNegated = **aPattern == kqvCStringParser_Negate;
  if (thefNegated) {
    ++*aPattern;
  }
  return qvCStringParser_S_ReadMembers(aPattern, aByte) != thefNegated;
}

// Whether aByte matches the element at *aPattern, which is not '*' and not the end; leaves *aPattern behind
// the element if so.
static bool qvCStringParser_S_MatchesElement(const char** aPattern, char aByte) {
  char theElement = *(*aPattern)++;
  switch (theElement) {
    case kqvCStringParser_AnyByte:
      return true;
    case kqvCStringParser_ClassOpen:
      return qvCStringParser_S_MatchesClass(aPattern, static_cast<unsigned char>(aByte));
    case kqvCStringParser_Literal:
      if (**aPattern == '\0') {
        return false;  // nothing to take literally; the text's byte is not its terminator
      }
      return aByte == *(*aPattern)++;
    default:
      // KEEP qvCStringParserKept.LettersCompareWithTheirCaseEvenWhenItIsNotRelevant
      // The bytes have to be equal as they stand. Case relevance asks for equal lower-case forms on top of
      // that, which equal bytes always have, so it changes nothing.
      return aByte == theElement;
  }
}

// Goes back to the last '*' only: a part of the pattern between two '*' matches best where it matches first,
// and once the text has run out behind a '*', giving an earlier one more text cannot help. So the work is
// bounded by length of text times length of pattern, and the stack does not grow.
static bool qvCStringParser_S_Matches(const char* aPattern, const char* aText, char anEOLChar) {
  const char* theStarPattern = NULL;  // what follows the last '*', or null before there was one
  const char* theStarText = NULL;     // where that was last tried
  for (;;) {
    bool thefTextEnd = qvCStringParser_S_IsTextEnd(*aText, anEOLChar);
    if (*aPattern == kqvCStringParser_AnyBytes) {
      while (*aPattern == kqvCStringParser_AnyBytes) {
        ++aPattern;
      }
      if (*aPattern == '\0') {
        return true;
      }
      theStarPattern = aPattern;
      theStarText = aText;
      continue;
    }
    if (thefTextEnd) {
      return *aPattern == '\0';
    }
    if (*aPattern != '\0' && qvCStringParser_S_MatchesElement(&aPattern, *aText)) {
      ++aText;
      continue;
    }
    if (theStarPattern == NULL) {
      return false;
    }
    aPattern = theStarPattern;
    aText = ++theStarText;
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
