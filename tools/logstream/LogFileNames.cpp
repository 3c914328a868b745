#include "tools/logstream/LogFileNames.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>

#define kLogFileNames_MaxNumberDigits 9

// What a sign of the pattern stands for: a number with so many digits, 0 digits for any other sign.
static int LogFileNames_S_Digits(char aSign) {
  switch (aSign) {
    case 'y':
      return 4;
    case 'm':
    case 'd':
    case 'H':
    case 'M':
    case 'S':
      return 2;
    default:
      return 0;
  }
}

static int LogFileNames_S_Value(char aSign, const struct tm& aTime) {
  switch (aSign) {
    case 'y':
      return aTime.tm_year + 1900;
    case 'm':
      return aTime.tm_mon + 1;
    case 'd':
      return aTime.tm_mday;
    case 'H':
      return aTime.tm_hour;
    case 'M':
      return aTime.tm_min;
    default:
      return aTime.tm_sec;
  }
}

std::string LogFileNames_Expand(const std::string& aPattern, const struct tm& aTime, const char* aProcess) {
  std::string theName;
  for (size_t i = 0; i < aPattern.size(); ++i) {
    char theSign = aPattern[i] == '%' && i + 1 < aPattern.size() ? aPattern[i + 1] : '\0';
    int theDigits = LogFileNames_S_Digits(theSign);
    if (theDigits != 0) {
      char theNumber[16];
      snprintf(theNumber, sizeof(theNumber), "%0*d", theDigits, LogFileNames_S_Value(theSign, aTime));
      theName += theNumber;
      ++i;
    } else if (theSign == 'n') {
      theName += aProcess;
      ++i;
    } else {
      theName += aPattern[i];
    }
  }
  return theName;
}

static bool LogFileNames_S_IsDigit(char aChar) { return aChar >= '0' && aChar <= '9'; }

// Skips in aText what the sign stands for; null when something else is there.
static const char* LogFileNames_S_SkipSign(const char* aText, char aSign, const char* aProcess) {
  if (aSign == 'n') {
    size_t theLength = strlen(aProcess);
    return strncmp(aText, aProcess, theLength) == 0 ? aText + theLength : NULL;
  }
  for (int i = LogFileNames_S_Digits(aSign); i > 0; --i) {
    if (!LogFileNames_S_IsDigit(*aText++)) {
      return NULL;
    }
  }
  return aText;
}

// What is left of aName behind the part that the pattern has made; null when the pattern cannot have made it.
static const char* LogFileNames_S_Rest(const char* aName, const std::string& aPattern, const char* aProcess) {
  for (size_t i = 0; i < aPattern.size() && aName != NULL; ++i) {
    char theSign = aPattern[i] == '%' && i + 1 < aPattern.size() ? aPattern[i + 1] : '\0';
    if (theSign == 'n' || LogFileNames_S_Digits(theSign) != 0) {
      aName = LogFileNames_S_SkipSign(aName, theSign, aProcess);
      ++i;
    } else {
      aName = *aName == aPattern[i] ? aName + 1 : NULL;
    }
  }
  return aName;
}

// Reads ".17" or nothing.
static bool LogFileNames_S_ReadNumber(const char* aRest, unsigned int* aNumber) {
  *aNumber = 0;
  if (*aRest == '\0') {
    return true;
  }
  size_t theLength = strlen(aRest);
  if (aRest[0] != '.' || theLength > 1 + kLogFileNames_MaxNumberDigits || aRest[1] < '1' || aRest[1] > '9' ||
      !std::all_of(aRest + 1, aRest + theLength, LogFileNames_S_IsDigit)) {
    return false;
  }
  *aNumber = static_cast<unsigned int>(strtoul(aRest + 1, NULL, 10));
  return true;
}

static void LogFileNames_S_SortOldestFirst(std::vector<LogFileName>& aFiles) {
  // Within one name the numbers decide; only names of different times are compared by their last change.
  auto theBase = [](const LogFileName& aFile) {
    return aFile.mNumber == 0 ? aFile.mPath : aFile.mPath.substr(0, aFile.mPath.rfind('.'));
  };
  std::map<std::string, int64> theLastChanges;
  for (const LogFileName& theFile : aFiles) {
    int64& theLast = theLastChanges.emplace(theBase(theFile), theFile.mModified).first->second;
    theLast = std::max(theLast, theFile.mModified);
  }
  std::sort(aFiles.begin(), aFiles.end(), [&](const LogFileName& aLeft, const LogFileName& aRight) {
    std::string theLeft = theBase(aLeft);
    std::string theRight = theBase(aRight);
    if (theLeft == theRight) {
      return aLeft.mNumber > aRight.mNumber;
    }
    int64 theDistance = theLastChanges[theLeft] - theLastChanges[theRight];
    return theDistance != 0 ? theDistance < 0 : theLeft < theRight;
  });
}

std::vector<LogFileName> LogFileNames_List(const std::string& aFolder, const std::string& aName,
                                           const char* aProcess) {
  std::vector<LogFileName> theFiles;
  DIR* theFolder = opendir(aFolder.c_str());
  if (theFolder == NULL) {
    return theFiles;
  }
  while (struct dirent* theEntry = readdir(theFolder)) {
    LogFileName theFile;
    struct stat theStat;
    const char* theRest = LogFileNames_S_Rest(theEntry->d_name, aName, aProcess);
    if (theRest == NULL || !LogFileNames_S_ReadNumber(theRest, &theFile.mNumber) ||
        fstatat(dirfd(theFolder), theEntry->d_name, &theStat, AT_SYMLINK_NOFOLLOW) != 0 ||
        !S_ISREG(theStat.st_mode)) {
      continue;
    }
    theFile.mPath = aFolder + (aFolder == "/" ? "" : "/") + theEntry->d_name;
    theFile.mSize = static_cast<uint64>(theStat.st_size);
    theFile.mModified = static_cast<int64>(theStat.st_mtim.tv_sec) * 1000000000 + theStat.st_mtim.tv_nsec;
    theFiles.push_back(theFile);
  }
  closedir(theFolder);
  LogFileNames_S_SortOldestFirst(theFiles);
  return theFiles;
}
