#include "qvraTools/qvConvert.h"

#define kqvConvert_CaseBit 0x20 /* the difference between an upper-case and a lower-case letter */
#define kqvConvert_Delete  127  /* the one control character above 31 */

int qvConvert_isalpha(int aChar) {
  int theLowerCase = aChar | kqvConvert_CaseBit;
  return theLowerCase >= 'a' && theLowerCase <= 'z';
}

int qvConvert_isalnum(int aChar) { return qvConvert_isalpha(aChar) || qvConvert_isnum(aChar); }

int qvConvert_isnum(int aChar) { return aChar >= '0' && aChar <= '9'; }

int qvConvert_isxdigit(int aChar) {
  int theLowerCase = aChar | kqvConvert_CaseBit;
  return qvConvert_isnum(aChar) || (theLowerCase >= 'a' && theLowerCase <= 'f');
}

int qvConvert_isspace(int aChar) { return (aChar >= '\t' && aChar <= '\r') || aChar == ' '; }

// Negative codes are what bytes above 0x7F are where char is signed; they are printable as they are where it
// is unsigned.
int qvConvert_isprintable(int aChar) { return aChar < 0 || (aChar >= ' ' && aChar != kqvConvert_Delete); }

int qvConvert_isalphastr(const char* aStr, uint32 aLength) {
  for (uint32 theIndex = 0; theIndex < aLength; ++theIndex) {
    if (!qvConvert_isalpha(aStr[theIndex])) {
      return 0;
    }
  }
  return 1;
}

int qvConvert_isnumstr(const char* aStr, uint32 aLength) {
  for (uint32 theIndex = 0; theIndex < aLength; ++theIndex) {
    if (!qvConvert_isnum(aStr[theIndex])) {
      return 0;
    }
  }
  return 1;
}

// strchr would find the list's terminator for a zero in the text.
static int qvConvert_S_IsInList(char aChar, const char* aCharList) {
  for (; *aCharList != '\0'; ++aCharList) {
    if (*aCharList == aChar) {
      return 1;
    }
  }
  return 0;
}

int qvConvert_containsonly(const char* aStr, uint32 aLength, const char* aCharList) {
  for (uint32 theIndex = 0; theIndex < aLength; ++theIndex) {
    if (!qvConvert_S_IsInList(aStr[theIndex], aCharList)) {
      return 0;
    }
  }
  return 1;
}
