// Dates as RFC 1123 has them: "Sun, 06 Nov 1994 08:49:37 GMT".

#include <stdlib.h>
#include <string.h>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime_p.h"

#define kqvTime_Separators     " ,:"
#define kqvTime_MaxTokenLength 8    /* characters; a longer word fails the whole date */
#define kqvTime_FirstYear      1901 /* smaller numbers are no years */
#define kqvTime_YearBase       1900
#define kqvTime_WeekDays       7
#define kqvTime_Months         12
#define kqvTime_ZoneNames      10
#define kqvTime_NameLength     3 /* characters of a day or a month */
#define kqvTime_ZoneLength     5 /* characters of "+0130" */

#define kqvTimeError_NullText (-1)
#define kqvTimeError_LongWord (-2)
#define kqvTimeError_NoDate   (-3)

static const char* const kqvTime_WeekDayNames[kqvTime_WeekDays] = {"Sun", "Mon", "Tue", "Wed",
                                                                   "Thu", "Fri", "Sat"};

static const char* const kqvTime_MonthNames[kqvTime_Months] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

static const char* const kqvTime_ZoneNameTable[kqvTime_ZoneNames] = {"UT",  "GMT", "EST", "EDT", "CST",
                                                                     "CDT", "MST", "MDT", "PST", "PDT"};
static const int kqvTime_ZoneHours[kqvTime_ZoneNames] = {0, 0, -5, -4, -6, -5, -7, -6, -8, -7};

struct qvTime_Token {
  const char* mText;
  uint32 mLength;
  int mfDigits;   // all of them
  int mfLetters;  // all of them
  int mNumber;    // 0 unless mfDigits
  char mSeparator;
};

struct qvTime_Date {
  qvtm* mFields;
  int* mZoneMinutes;  // east of UTC
};

// Each reader below stores its field and returns 1 when the token is one, or returns 0.

static int qvTime_S_EqualsName(const qvTime_Token& aToken, const char* aName) {
  if (aToken.mLength != strlen(aName)) {
    return 0;
  }
  for (uint32 theIndex = 0; theIndex < aToken.mLength; ++theIndex) {
    if ((aToken.mText[theIndex] | 0x20) != (aName[theIndex] | 0x20)) {  // all are letters
      return 0;
    }
  }
  return 1;
}

// The token's index in a table of names, or -1.
static int qvTime_S_FindName(const qvTime_Token& aToken, const char* const* aNames, int aCount) {
  for (int theIndex = 0; aToken.mfLetters && theIndex < aCount; ++theIndex) {
    if (qvTime_S_EqualsName(aToken, aNames[theIndex])) {
      return theIndex;
    }
  }
  return -1;
}

static int qvTime_S_ReadName(const qvTime_Token& aToken, const char* const* aNames, int aCount,
                             int32* aField) {
  const int theIndex = qvTime_S_FindName(aToken, aNames, aCount);
  if (theIndex < 0) {
    return 0;
  }
  *aField = theIndex;
  return 1;
}

static int qvTime_S_ReadWeekDay(const qvTime_Token& aToken, qvTime_Date* aDate) {
  return qvTime_S_ReadName(aToken, kqvTime_WeekDayNames, kqvTime_WeekDays, &aDate->mFields->tm_wday);
}

static int qvTime_S_ReadDay(const qvTime_Token& aToken, qvTime_Date* aDate) {
  if (!aToken.mfDigits || aToken.mSeparator == ':' || aToken.mNumber < 1 || aToken.mNumber > 31) {
    return 0;
  }
  aDate->mFields->tm_mday = aToken.mNumber;
  return 1;
}

static int qvTime_S_ReadMonth(const qvTime_Token& aToken, qvTime_Date* aDate) {
  return qvTime_S_ReadName(aToken, kqvTime_MonthNames, kqvTime_Months, &aDate->mFields->tm_mon);
}

static int qvTime_S_ReadYear(const qvTime_Token& aToken, qvTime_Date* aDate) {
  if (!aToken.mfDigits || aToken.mSeparator == ':' || aToken.mNumber < kqvTime_FirstYear) {
    return 0;
  }
  aDate->mFields->tm_year = aToken.mNumber - kqvTime_YearBase;
  return 1;
}

static int qvTime_S_ReadHour(const qvTime_Token& aToken, qvTime_Date* aDate) {
  if (!aToken.mfDigits || aToken.mSeparator != ':' || aToken.mNumber > 23) {
    return 0;
  }
  aDate->mFields->tm_hour = aToken.mNumber;
  return 1;
}

// A number that is no minute is no second and no zone either: it is ignored.
static int qvTime_S_ReadSixtieth(const qvTime_Token& aToken, int32* aField) {
  if (!aToken.mfDigits || aToken.mNumber > 59) {
    return 0;
  }
  *aField = aToken.mNumber;
  return 1;
}

static int qvTime_S_ReadMinute(const qvTime_Token& aToken, qvTime_Date* aDate) {
  return qvTime_S_ReadSixtieth(aToken, &aDate->mFields->tm_min);
}

static int qvTime_S_ReadSecond(const qvTime_Token& aToken, qvTime_Date* aDate) {
  return qvTime_S_ReadSixtieth(aToken, &aDate->mFields->tm_sec);
}

// KEEP qvTimeKept.TheMinutesOfANumericZoneAreDropped
// "+0130" is one hour.
static int qvTime_S_ReadZone(const qvTime_Token& aToken, qvTime_Date* aDate) {
  const int theIndex = qvTime_S_FindName(aToken, kqvTime_ZoneNameTable, kqvTime_ZoneNames);
  if (theIndex >= 0) {
    *aDate->mZoneMinutes = kqvTime_ZoneHours[theIndex] * 60;
    return 1;
  }
  const char* theText = aToken.mText;
  if (aToken.mLength != kqvTime_ZoneLength || (theText[0] != '+' && theText[0] != '-') ||
      !qvConvert_isnumstr(theText + 1, kqvTime_ZoneLength - 1)) {
    return 0;
  }
  const int theHours = (theText[1] - '0') * 10 + (theText[2] - '0');
  *aDate->mZoneMinutes = (theText[0] == '-' ? -theHours : theHours) * 60;
  return 1;
}

// The fields in the order in which a date has them. A date moves through them and never back.
typedef int (*qvTime_FieldReader)(const qvTime_Token& aToken, qvTime_Date* aDate);
static const qvTime_FieldReader kqvTime_FieldReaders[] = {
    qvTime_S_ReadWeekDay, qvTime_S_ReadDay,    qvTime_S_ReadMonth,  qvTime_S_ReadYear,
    qvTime_S_ReadHour,    qvTime_S_ReadMinute, qvTime_S_ReadSecond, qvTime_S_ReadZone,
};
#define kqvTime_Stages (sizeof(kqvTime_FieldReaders) / sizeof(kqvTime_FieldReaders[0]))

// Offers a token to the fields from aStage on. Returns the stage for the next token.
static size_t qvTime_S_ReadToken(const qvTime_Token& aToken, size_t aStage, qvTime_Date* aDate) {
  for (size_t theStage = aStage; theStage < kqvTime_Stages; ++theStage) {
    if (kqvTime_FieldReaders[theStage](aToken, aDate)) {
      return theStage + 1;
    }
  }
  return aStage;
}

static qvTime_Token qvTime_S_MakeToken(const char* aText, uint32 aLength) {
  qvTime_Token theToken;
  theToken.mText = aText;
  theToken.mLength = aLength;
  theToken.mfDigits = qvConvert_isnumstr(aText, aLength);
  theToken.mfLetters = qvConvert_isalphastr(aText, aLength);
  theToken.mNumber = theToken.mfDigits ? atoi(aText) : 0;
  theToken.mSeparator = aText[aLength];
  return theToken;
}

int qvTime_S_ParseRFC1123Date(const char* aStr, qvtm* aResult, int* aZoneMinutes) {
  *aZoneMinutes = 0;
  if (aStr == nullptr) {
    return kqvTimeError_NullText;
  }
  *aResult = qvtm();
  qvTime_Date theDate = {aResult, aZoneMinutes};
  size_t theStage = 0;
  const char* theStr = aStr + strspn(aStr, kqvTime_Separators);
  while (*theStr != '\0') {
    const size_t theLength = strcspn(theStr, kqvTime_Separators);
    if (theLength > kqvTime_MaxTokenLength) {
      return kqvTimeError_LongWord;
    }
    theStage = qvTime_S_ReadToken(qvTime_S_MakeToken(theStr, (uint32)theLength), theStage, &theDate);
    theStr += theLength;
    theStr += strspn(theStr, kqvTime_Separators);
  }
  return theStage == 0 ? kqvTimeError_NoDate : 0;
}

// KEEP qvTimeKept.TheZoneOfADateIsReadButNotApplied
// The offset goes nowhere: callers get the fields as written.
int qvTime_ParseRFC1123Date(const char* aStr, qvtm* aResult) {
  int theZoneMinutes = 0;
  return qvTime_S_ParseRFC1123Date(aStr, aResult, &theZoneMinutes);
}

static void qvTime_S_PutTwoDigits(char* aPlace, int aNumber) {
  aPlace[0] = static_cast<char>('0' + aNumber / 10);
  aPlace[1] = static_cast<char>('0' + aNumber % 10);
}

// "Sun, 06 Nov 1994 08:49:37 GMT": each field has its place, so no format is read. That holds for the years
// in reach of 32 bits of seconds, which are 1901 to 2038.
char* qvTime_S_NewRFC1123Date(const qvtm* aTime) {
  char* theText = qvStrdup("www, dd mmm yyyy hh:mm:ss GMT");
  const int theYear = aTime->tm_year + kqvTime_YearBase;
  memcpy(theText, kqvTime_WeekDayNames[aTime->tm_wday], kqvTime_NameLength);
  qvTime_S_PutTwoDigits(theText + 5, aTime->tm_mday);
  memcpy(theText + 8, kqvTime_MonthNames[aTime->tm_mon], kqvTime_NameLength);
  qvTime_S_PutTwoDigits(theText + 12, theYear / 100);
  qvTime_S_PutTwoDigits(theText + 14, theYear % 100);
  qvTime_S_PutTwoDigits(theText + 17, aTime->tm_hour);
  qvTime_S_PutTwoDigits(theText + 20, aTime->tm_min);
  qvTime_S_PutTwoDigits(theText + 23, aTime->tm_sec);
  return theText;
}

char* qvTime_GetRFC1123Date(void) {
  int theTime = 0;
  qvTime_time(&theTime);
  qvtm theNow;
  qvTime_gmtime(&theTime, &theNow);
  return qvTime_S_NewRFC1123Date(&theNow);
}
