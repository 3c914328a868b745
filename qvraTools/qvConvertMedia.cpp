// qvConvertMedia.cpp - the date, time and duration notations of DLNA media metadata and of NPT positions.
#include <math.h>
#include <string.h>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

// ---------------------------------------------------------------------------------------------- dates

namespace {

constexpr char kSeparatorFree = '*';  // which separator follows is decided in qvConvert_S_NextDateField
constexpr int kDateFieldCount = 9;    // as a field index: the date is complete

enum DateField { kDateMillisecond = 6, kDateZoneHour = 7 };

struct DateFieldRule {
  int32 mMin;
  int32 mMax;
  char mSeparator;  // that must follow the field
};

// In the order of the result array.
const DateFieldRule kDateFields[kDateFieldCount] = {
    /* min  max   separator            */
    {0, 9999, '-'},            // year
    {1, 12, '-'},              // month
    {1, 31, 'T'},              // day
    {0, 23, ':'},              // hour
    {0, 59, ':'},              // minute
    {0, 59, kSeparatorFree},   // second
    {0, 999, kSeparatorFree},  // millisecond
    {0, 23, ':'},              // zone hour, before the sign is applied
    {0, 59, '\0'},             // zone minute
};

}  // namespace

// The index of the field that follows field aField and aSeparator; kDateFieldCount when the date is complete,
// -1 when the separator may not stand there.
static int qvConvert_S_NextDateField(int aField, char aSeparator) {
  if (aSeparator == '\0') {
    return kDateFieldCount;
  }
  if (kDateFields[aField].mSeparator != kSeparatorFree) {
    return kDateFields[aField].mSeparator == aSeparator ? aField + 1 : -1;
  }
  if (aSeparator == 'Z') {
    return kDateFieldCount;
  }
  bool theZoneFollows = aField == kDateMillisecond || aSeparator == '+' || aSeparator == '-';
  return theZoneFollows ? kDateZoneHour : kDateMillisecond;
}

// Reads one number of the date; false when it is none or out of the field's range.
static bool qvConvert_S_ReadDateField(const char* aToken, size_t aLength, int aField, int32* aValue) {
  char* theToken = qvStrndup(aToken, aLength);
  int theResult = qvConvert_strtoint32(theToken, aValue);
  qvFree(theToken);
  return theResult == kqvConvertError_None && *aValue >= kDateFields[aField].mMin &&
         *aValue <= kDateFields[aField].mMax;
}

// The number of tokens between separators, counted up to one more than a date can have.
static int qvConvert_S_CountDateTokens(const char* aStr, const char* aSeparators) {
  int theCount = 1;
  for (const char* thePtr = strpbrk(aStr, aSeparators); thePtr != NULL && theCount <= kDateFieldCount;
       thePtr = strpbrk(thePtr + 1, aSeparators)) {
    ++theCount;
  }
  return theCount;
}

int qvConvert_dlnadatestrtodate(const char* aStr, int32* aDate) {
  static const char kSeparators[] = "-:.TZ+";
  memset(aDate, 0, kDateFieldCount * sizeof(*aDate));
  if (aStr == NULL) {
    return kqvConvertError_Invalid;
  }
  int theTokenCount = qvConvert_S_CountDateTokens(aStr, kSeparators);
  if (theTokenCount < 2 || theTokenCount > kDateFieldCount) {
    return kqvConvertError_Invalid;
  }
  int theField = 0;
  char theSeparatorBefore = '\0';
  for (;;) {
    size_t theLength = strcspn(aStr, kSeparators);
    char theSeparator = aStr[theLength];
    if (theLength == 0 || theField == kDateFieldCount) {
      return theLength == 0 && theField == kDateFieldCount ? kqvConvertError_None : kqvConvertError_Invalid;
    }
    int32 theValue = 0;
    if (!qvConvert_S_ReadDateField(aStr, theLength, theField, &theValue)) {
      return kqvConvertError_Invalid;
    }
    aDate[theField] = theField == kDateZoneHour && theSeparatorBefore == '-' ? -theValue : theValue;
    theField = qvConvert_S_NextDateField(theField, theSeparator);
    if (theField < 0) {
      return kqvConvertError_Invalid;
    }
    if (theSeparator == '\0') {
      return kqvConvertError_None;
    }
    theSeparatorBefore = theSeparator;
    aStr += theLength + 1;
  }
}

// ------------------------------------------------------------------------------- [[H:]M:]S[.milliseconds]

int qvConvert_dlnatimestrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond) {
  static const uint32 kLimits[3] = {99999, 59, 59};
  static const uint32 kMultipliers[3] = {3600, 60, 1};
  enum { kMaxDigits = 5, kMaxFields = 4, kMaxMilliSecond = 999 };
  *aSecond = 0;
  *aMilliSecond = 0;
  if (aStr == NULL) {
    return kqvConvertError_Invalid;
  }
  uint32 theFields[kMaxFields] = {0, 0, 0, 0};
  int theCount = 0;
  bool theDotSeen = false;
  for (;;) {
    size_t theLength = 0;
    while (qvConvert_isnum(static_cast<unsigned char>(aStr[theLength])) && theLength <= kMaxDigits) {
      ++theLength;
    }
    if (theLength == 0 || theLength > kMaxDigits || theCount == kMaxFields) {
      return kqvConvertError_Invalid;
    }
    qvConvert_strntouint32(aStr, theLength, &theFields[theCount++]);
    char theSeparator = aStr[theLength];
    if (theSeparator == '\0') {
      break;
    }
    if (theDotSeen || (theSeparator != ':' && theSeparator != '.')) {
      return kqvConvertError_Invalid;
    }
    theDotSeen = theSeparator == '.';
    aStr += theLength + 1;
  }
  // KEEP qvConvertKept.MillisecondsOfATimeAreTheIntegerWritten
  // The field after the dot counts milliseconds as it is written: ".5" is 5 ms, not half a second.
  uint32 theMilliSecond = theDotSeen ? theFields[--theCount] : 0;
  if (theCount > 3 || theMilliSecond > kMaxMilliSecond) {
    return kqvConvertError_Invalid;
  }
  uint32 theSecond = 0;
  for (int i = 0; i < theCount; ++i) {
    int theUnit = 3 - theCount + i;  // the last field is always the seconds
    if (theFields[i] > kLimits[theUnit]) {
      return kqvConvertError_Invalid;
    }
    theSecond += theFields[i] * kMultipliers[theUnit];
  }
  *aSecond = theSecond;
  *aMilliSecond = theMilliSecond;
  return kqvConvertError_None;
}

// --------------------------------------------------------------------------------------- H:MM:SS[.fraction]

// Reads the digits of one field of a duration and moves *aStr behind them; false when their number is not
// between aMinDigits and aMaxDigits.
static bool qvConvert_S_ReadDurationField(const char** aStr, size_t aMinDigits, size_t aMaxDigits,
                                          uint32* aValue) {
  size_t theLength = 0;
  while (qvConvert_isnum(static_cast<unsigned char>((*aStr)[theLength])) && theLength <= aMaxDigits) {
    ++theLength;
  }
  if (theLength < aMinDigits || theLength > aMaxDigits) {
    return false;
  }
  *aValue = 0;
  if (theLength > 0) {
    qvConvert_strntouint32(*aStr, theLength, aValue);
  }
  *aStr += theLength;
  return true;
}

// The whole part of a number, divided by 10 until it is at most 1000.
static uint32 qvConvert_S_CutToMilliSeconds(double aValue) {
  while (aValue >= 4294967296.0) {
    aValue /= 10.0;
  }
  // KEEP qvConvertKept.FractionOfADurationIsAnIntegerCutToFourDigits
  // A plain fraction is an integer of milliseconds, so ".5" is 5 ms and ".2500" comes down to 250 ms; what
  // comes down to 1000 on the way, as ".10009" does, is a whole second.
  uint32 theMilliSecond = static_cast<uint32>(aValue);
  while (theMilliSecond > 1000) {
    theMilliSecond /= 10;
  }
  return theMilliSecond;
}

// The text behind the dot, in milliseconds; 1000 for a whole second.
static bool qvConvert_S_ReadDurationFraction(const char* aStr, int afAcceptFraction, uint32* aMilliSecond) {
  bool theSlashFlag = strchr(aStr, '/') != NULL;
  double theValue = 0.0;
  if ((theSlashFlag && !afAcceptFraction) || qvConvert_strfractiontodouble(aStr, &theValue) != 0 ||
      !isfinite(theValue) || theValue < 0.0) {
    return false;
  }
  if (!theSlashFlag) {
    *aMilliSecond = qvConvert_S_CutToMilliSeconds(theValue);
    return true;
  }
  theValue *= 1000.0;
  if (theValue > 1000.0) {
    return false;
  }
  *aMilliSecond = static_cast<uint32>(theValue);
  return true;
}

int qvConvert_dlnadurationstrtouint32_ex(const char* aStr, uint32* aSecond, uint32* aMilliSecond,
                                         int afRequireHourDigit, int afRequire2DigitMinSec,
                                         int afAcceptFractionForMilliseconds) {
  enum { kMaxHourDigits = 6, kMaxMinSec = 59 };
  *aSecond = 0;
  *aMilliSecond = 0;
  if (aStr == NULL) {
    return kqvConvertError_Invalid;
  }
  size_t theMinSecDigits = afRequire2DigitMinSec ? 2 : 1;
  uint32 theHour = 0;
  uint32 theMinute = 0;
  uint32 theSecond = 0;
  uint32 theMilliSecond = 0;
  if (!qvConvert_S_ReadDurationField(&aStr, afRequireHourDigit ? 1 : 0, kMaxHourDigits, &theHour) ||
      *aStr++ != ':' || !qvConvert_S_ReadDurationField(&aStr, theMinSecDigits, 2, &theMinute) ||
      *aStr++ != ':' || !qvConvert_S_ReadDurationField(&aStr, theMinSecDigits, 2, &theSecond) ||
      theMinute > kMaxMinSec || theSecond > kMaxMinSec) {
    return kqvConvertError_Invalid;
  }
  if (*aStr == '.') {
    if (!qvConvert_S_ReadDurationFraction(aStr + 1, afAcceptFractionForMilliseconds, &theMilliSecond)) {
      return kqvConvertError_Invalid;
    }
  } else if (*aStr != '\0') {
    return kqvConvertError_Invalid;
  }
  *aSecond = theHour * 3600 + theMinute * 60 + theSecond + theMilliSecond / 1000;
  *aMilliSecond = theMilliSecond % 1000;
  return kqvConvertError_None;
}

int qvConvert_dlnadurationstrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond) {
  return qvConvert_dlnadurationstrtouint32_ex(aStr, aSecond, aMilliSecond, 0, 1, 1);
}

int qvConvert_dlnanptstrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond) {
  if (aStr != NULL && strchr(aStr, ':') != NULL) {
    return qvConvert_dlnadurationstrtouint32_ex(aStr, aSecond, aMilliSecond, 1, 0, 0);
  }
  return qvConvert_dlnaseconddurationstrtouint32(aStr, aSecond, aMilliSecond);
}

// ------------------------------------------------------------------------------------------------ S[.fff]

// The text behind the dot, in milliseconds; a result code.
static int qvConvert_S_ReadSecondFraction(const char* aStr, uint32* aMilliSecond) {
  size_t theLength = strlen(aStr);
  char theDigits[4] = "000";
  if (theLength <= 3) {
    memcpy(theDigits, aStr, theLength);
    return qvConvert_strtouint32(theDigits, aMilliSecond);
  }
  // KEEP qvConvertKept.LongFractionOfSecondsIsReadAsWritten
  // A fraction of more than three characters loses its trailing zeros and what remains is read without
  // padding: "5000" is 5 ms, where "5" is 500 ms.
  while (theLength > 0 && aStr[theLength - 1] == '0') {
    --theLength;
  }
  *aMilliSecond = 0;
  if (theLength == 0) {
    return kqvConvertError_None;
  }
  return theLength <= 3 ? qvConvert_strntouint32(aStr, theLength, aMilliSecond) : kqvConvertError_Invalid;
}

int qvConvert_dlnaseconddurationstrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond) {
  enum { kMaxMilliSecond = 999 };
  if (aStr == NULL) {
    return kqvConvertError_Invalid;
  }
  const char* theDot = strchr(aStr, '.');
  size_t theLength = theDot != NULL ? static_cast<size_t>(theDot - aStr) : strlen(aStr);
  uint32 theSecond = 0;
  uint32 theMilliSecond = 0;
  int theResult = qvConvert_strntouint32(aStr, theLength, &theSecond);
  if (theResult == kqvConvertError_None && theDot != NULL) {
    theResult = qvConvert_S_ReadSecondFraction(theDot + 1, &theMilliSecond);
  }
  if (theResult != kqvConvertError_None) {
    return theResult;
  }
  if (theMilliSecond > kMaxMilliSecond) {
    return kqvConvertError_Invalid;
  }
  *aSecond = theSecond;
  *aMilliSecond = theMilliSecond;
  return kqvConvertError_None;
}
