#include "qvOS/qvDir.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qvOS/qvDir_p.h"
#include "qvOS/qvFile.h"
#include "qvOS/qvFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvDir_Permissions 0700

char* qvDir_MakeAbsoluteName(const char* aPath) {
  if (aPath[0] == '/') {
    return qvStrdup(aPath);
  }
  char* theName = getcwd(NULL, 0);
  if (theName == NULL) {
    return NULL;
  }
  if (strcmp(theName, "/") == 0) {
    theName[0] = '\0';
  }
  for (;;) {
    if (strncmp(aPath, "./", 2) == 0) {
      aPath += 2;
    } else if (strncmp(aPath, "../", 3) == 0) {
      aPath += 3;
      if (char* theSlash = strrchr(theName, '/')) {
        *theSlash = '\0';
      }
    } else {
      break;
    }
  }
  qvStrcatReplace(&theName, "/");
  qvStrcatReplace(&theName, aPath);
  return theName;
}

// A link to one of the directories above it is a loop: who walks into it comes by it again and again.
static bool qvDir_S_IsLoop(const char* aLinkPath) {
  // KEEP qvDirKept.ALinkBesideItsTargetWhoseNameItContinuesCountsAsAbsent
  // The two names are compared as plain text, so the link "/a/bc" to the directory "/a/b" beside it is taken
  // for a loop as well. It looks like a missing check of the '/'; it is the required result.
  char* theRealPath = realpath(aLinkPath, NULL);
  char* theLinkName = qvDir_MakeAbsoluteName(aLinkPath);
  bool theIsLoop = theRealPath == NULL || theLinkName == NULL ||
                   strncmp(theLinkName, theRealPath, strlen(theRealPath)) == 0;
  qvFree(theLinkName);
  free(theRealPath);
  return theIsLoop;
}

int qvDir_Exists(const char* aDirPath) {
  qvNativePath thePath(aDirPath, 1);
  struct stat theStat;
  if (thePath.Get() == NULL || stat(thePath.Get(), &theStat) != 0 || !S_ISDIR(theStat.st_mode)) {
    return 0;
  }
  if (lstat(thePath.Get(), &theStat) != 0) {
    return 0;
  }
  return !S_ISLNK(theStat.st_mode) || !qvDir_S_IsLoop(thePath.Get());
}

int qvDir_Create(const char* aDirPath) {
  qvNativePath thePath(aDirPath, 1);
  return thePath.Get() != NULL ? mkdir(thePath.Get(), kqvDir_Permissions) : -1;
}

static bool qvDir_S_EnsureExists(const char* aDirPath) {
  // The last question is for the case that another process was quicker to create it.
  return qvDir_Exists(aDirPath) || qvDir_Create(aDirPath) == 0 || qvDir_Exists(aDirPath);
}

int qvDir_CreatePath(const char* aDirPath) {
  qvNativePath thePath(aDirPath, 1);
  char* theText = thePath.Get();
  if (theText == NULL || theText[0] == '\0') {
    return 0;
  }
  // KEEP qvDirKept.CreatePathTakesTheFirstComponentToExist
  // The first component, up to theSlash, is never made when others follow, so a path below a directory of the
  // root that is missing fails. A path that has no other component is made at the end.
  char* theSlash = strchr(theText + 1, '/');
  while (theSlash != NULL) {
    theSlash = strchr(theSlash + 1, '/');
    if (theSlash != NULL) {
      *theSlash = '\0';
      bool theExists = qvDir_S_EnsureExists(theText);
      *theSlash = '/';
      if (!theExists) {
        return 0;
      }
    }
  }
  return qvDir_S_EnsureExists(theText);
}

int qvDir_Remove(const char* aDirPath) {
  qvNativePath thePath(aDirPath, 1);
  if (thePath.Get() == NULL) {
    return -1;
  }
  return rmdir(thePath.Get()) == 0 || errno == ENOENT ? 0 : -1;
}

int qvDir_GetTimes(const char* aDirPath, qvtimeval* aLastAccessTime, qvtimeval* aModificationTime,
                   qvtimeval* aCreationTime) {
  return qvFile_GetTimes(aDirPath, aLastAccessTime, aModificationTime, aCreationTime);
}

qvPtrList* qvDir_GetRootDirList(void) {
  qvPtrList* theList = qvPtrList_New();
  qvPtrList_SetFreeFunc(theList, qvPtrList_DefaultFreeFunc);
  qvPtrList_Append(theList, qvStrdup("/"));
  return theList;
}
