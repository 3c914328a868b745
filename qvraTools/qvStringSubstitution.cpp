#include "qvraTools/qvStringSubstitution.h"

#include <string.h>
#include <unistd.h>

#include <algorithm>

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

// The text while it is worked on, in one block: what is finished, a gap, and what is still to be scanned with
// its terminator.
//
//   | finished |      gap      | rest \0 |
//   0          mDone           mRest      mSize
//
// Nothing but the bytes that are finished is ever moved, so that a text full of variables takes no longer
// than its length.
struct GapText {
  char* mBlock;
  size_t mDone;
  size_t mRest;
  size_t mSize;
};

}  // namespace

static GapText qvStringSubstitution_S_NewText(const char* aStr) {
  size_t theSize = strlen(aStr) + 1;
  return GapText{qvStrndup(aStr, theSize - 1), 0, 0, theSize};
}

// Moves the first aLength bytes of the rest to what is finished.
static void qvStringSubstitution_S_Finish(GapText* aText, size_t aLength) {
  memmove(aText->mBlock + aText->mDone, aText->mBlock + aText->mRest, aLength);
  aText->mDone += aLength;
  aText->mRest += aLength;
}

// Makes the gap at least aLength bytes wide. The block at least doubles, so that this is seldom needed; twice
// what a machine can address is not to be had, which ends the process.
static void qvStringSubstitution_S_Widen(GapText* aText, size_t aLength) {
  if (aText->mRest - aText->mDone >= aLength) {
    return;
  }
  size_t theRestLength = aText->mSize - aText->mRest;
  size_t theNewSize = aText->mSize + aLength;
  theNewSize += std::min(theNewSize, static_cast<size_t>(-1) - theNewSize);
  aText->mBlock = static_cast<char*>(qvRealloc(aText->mBlock, theNewSize));
  memmove(aText->mBlock + theNewSize - theRestLength, aText->mBlock + aText->mRest, theRestLength);
  aText->mRest = theNewSize - theRestLength;
  aText->mSize = theNewSize;
}

// Puts a replacement in front of the rest.
static void qvStringSubstitution_S_Insert(GapText* aText, const char* aReplacement, size_t aLength) {
  qvStringSubstitution_S_Widen(aText, aLength);
  aText->mRest -= aLength;
  memcpy(aText->mBlock + aText->mRest, aReplacement, aLength);
}

// The text with the rest as it stands, in a block of its own size.
static char* qvStringSubstitution_S_TakeText(GapText* aText) {
  qvStringSubstitution_S_Finish(aText, aText->mSize - aText->mRest);
  return static_cast<char*>(qvRealloc(aText->mBlock, aText->mDone));
}

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

// Replaces the first variable of the rest; false when there is none.
static bool qvStringSubstitution_S_ReplaceNext(GapText* aText, const Rules& aRules) {
  const char* theRest = aText->mBlock + aText->mRest;
  const char* theStart = strstr(theRest, aRules.mStartMarker);
  const char* theEnd = theStart != NULL ? strstr(theStart + aRules.mStartLength, aRules.mEndMarker) : NULL;
  // Where both marks are empty, there is nothing to find.
  if (theEnd == NULL || theEnd + aRules.mEndLength == theStart) {
    return false;
  }
  const char* theName = theStart + aRules.mStartLength;
  size_t theSpanLength = static_cast<size_t>(theEnd - theStart) + aRules.mEndLength;
  char* theReplacement =
      qvStringSubstitution_S_Resolve(aRules, theName, static_cast<size_t>(theEnd - theName));
  qvStringSubstitution_S_Finish(aText, static_cast<size_t>(theStart - theRest));
  aText->mRest += theSpanLength;
  if (theReplacement != NULL) {
    size_t theLength = strlen(theReplacement);
    qvStringSubstitution_S_Insert(aText, theReplacement, theLength);
    qvStringSubstitution_S_Finish(aText, aRules.mfRecursive ? 0 : theLength);
  }
  qvFree(theReplacement);
  return true;
}

static char* qvStringSubstitution_S_Run(const char* aStr, const Rules& aRules) {
  if (aStr == NULL) {
    return NULL;
  }
  GapText theText = qvStringSubstitution_S_NewText(aStr);
  while (qvStringSubstitution_S_ReplaceNext(&theText, aRules)) {
  }
  return qvStringSubstitution_S_TakeText(&theText);
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
