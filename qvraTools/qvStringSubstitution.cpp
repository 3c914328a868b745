#include "qvraTools/qvStringSubstitution.h"

#include <string.h>
#include <unistd.h>

#include "qvOS/qvPlatform.h"
#include "qvraTools/qvMalloc.h"

#define kqvStringSubstitution_EnvironmentPrefix "env."
#define kqvStringSubstitution_HostNameMaxLength 63 /* bytes, terminator not counted */
#define kqvStringSubstitution_IPDotCount        3

namespace {

// What one run of a substitution needs to know.
struct Rules {
  const char* mStartMarker;
  size_t mStartLength;
  const char* mEndMarker;
  size_t mEndLength;
  const char* mEmptyNameReplacement;  // null: an empty name is resolved like any other
  int mfRecursive;
  qvGetReplacementStrFunc mReplacementStrFunc;
  void* mUserData;
};

}  // namespace

// Takes the name as the bytes between the marks; gives a new text, or null.
static char* qvStringSubstitution_S_Resolve(const Rules& aRules, const char* aName, size_t aNameLength) {
  if (aNameLength == 0 && aRules.mEmptyNameReplacement != NULL) {
    return qvStrdup(aRules.mEmptyNameReplacement);
  }
  char* theName = qvStrndup(aName, aNameLength);
  char* theReplacement =
      qvStringSubstitution_GetSubstitution(theName, aRules.mReplacementStrFunc, aRules.mUserData);
  qvFree(theName);
  return theReplacement;
}

// Replaces aSpanLength bytes at aPos of *aText, a block that holds *aLength bytes and a terminator.
static void qvStringSubstitution_S_ReplaceSpan(char** aText, size_t* aLength, size_t aPos, size_t aSpanLength,
                                               const char* aReplacement, size_t aReplacementLength) {
  size_t theNewLength = *aLength - aSpanLength + aReplacementLength;
  if (aReplacementLength > aSpanLength) {
    *aText = static_cast<char*>(qvRealloc(*aText, theNewLength + 1));
  }
  size_t theTail = aPos + aSpanLength;
  memmove(*aText + aPos + aReplacementLength, *aText + theTail, *aLength - theTail + 1);
  if (aReplacementLength > 0) {
    memcpy(*aText + aPos, aReplacement, aReplacementLength);
  }
  *aLength = theNewLength;
}

static char* qvStringSubstitution_S_Run(const char* aStr, const Rules& aRules) {
  char* theText = qvStrdup(aStr);
  if (theText == NULL) {
    return NULL;
  }
  size_t theLength = strlen(theText);
  size_t theScanPos = 0;
  for (;;) {
    const char* theStart = strstr(theText + theScanPos, aRules.mStartMarker);
    if (theStart == NULL) {
      return theText;
    }
    const char* theName = theStart + aRules.mStartLength;
    const char* theEnd = strstr(theName, aRules.mEndMarker);
    if (theEnd == NULL) {
      return theText;
    }
    size_t theStartPos = static_cast<size_t>(theStart - theText);
    size_t theSpanLength = static_cast<size_t>(theEnd - theStart) + aRules.mEndLength;
    if (theSpanLength == 0) {
      return theText;  // both marks are empty, so there is nothing to find
    }
    char* theReplacement =
        qvStringSubstitution_S_Resolve(aRules, theName, static_cast<size_t>(theEnd - theName));
    size_t theReplacementLength = theReplacement != NULL ? strlen(theReplacement) : 0;
    qvStringSubstitution_S_ReplaceSpan(&theText, &theLength, theStartPos, theSpanLength, theReplacement,
                                       theReplacementLength);
    qvFree(theReplacement);
    theScanPos = aRules.mfRecursive ? theStartPos : theStartPos + theReplacementLength;
  }
}

char* qvStringSubstitution_Substitute(const char* aStr, char anEscapeChar, int afRecursive,
                                      qvGetReplacementStrFunc aReplacementStrFunc, void* aUserData) {
  const char theMarker[2] = {anEscapeChar, '\0'};
  return qvStringSubstitution_S_Run(aStr, Rules{theMarker, strlen(theMarker), theMarker, strlen(theMarker),
                                                theMarker, afRecursive, aReplacementStrFunc, aUserData});
}

char* qvStringSubstitution_SubstituteEx(const char* aStr, const char* aStartMarker, const char* aEndMarker,
                                        int afRecursive, qvGetReplacementStrFunc aReplacementStrFunc,
                                        void* aUserData) {
  return qvStringSubstitution_S_Run(
      aStr, Rules{aStartMarker, strlen(aStartMarker), aEndMarker, strlen(aEndMarker), NULL, afRecursive,
                  aReplacementStrFunc, aUserData});
}

char* qvStringSubstitution_GetSubstitution(char* aStr, qvGetReplacementStrFunc aReplacementStrFunc,
                                           void* aUserData) {
  // The function comes first, so that it can override environment variables too.
  char* theReplacement = aReplacementStrFunc != NULL ? aReplacementStrFunc(aStr, aUserData) : NULL;
  if (theReplacement != NULL) {
    return theReplacement;
  }
  size_t thePrefixLength = strlen(kqvStringSubstitution_EnvironmentPrefix);
  if (strncmp(aStr, kqvStringSubstitution_EnvironmentPrefix, thePrefixLength) == 0) {
    return qvPlatform_getenv(aStr + thePrefixLength);
  }
  return NULL;
}

char* qvStringSubstitution_Replace_HostName(char* aStr, void* /*aUserData*/) {
  if (strcmp(aStr, "hostname") != 0) {
    return NULL;
  }
  char theHostName[kqvStringSubstitution_HostNameMaxLength + 1];
  // A name of more bytes may come without terminator, or with an error and no name at all.
  theHostName[0] = '\0';
  (void)!gethostname(theHostName, sizeof(theHostName) - 1);
  theHostName[kqvStringSubstitution_HostNameMaxLength] = '\0';
  char* theDot = strchr(theHostName, '.');
  if (theDot != NULL && !qvStringSubstitution_IsHostNameInIPDotForm(theHostName)) {
    *theDot = '\0';
  }
  return qvStrdup(theHostName);
}

int qvStringSubstitution_IsHostNameInIPDotForm(char* aStr) {
  int theDotCount = 0;
  for (const char* thePtr = aStr; *thePtr != '\0'; ++thePtr) {
    if (*thePtr == '.') {
      ++theDotCount;
    } else if (*thePtr < '0' || *thePtr > '9') {
      return 0;
    }
  }
  return theDotCount == kqvStringSubstitution_IPDotCount;
}
