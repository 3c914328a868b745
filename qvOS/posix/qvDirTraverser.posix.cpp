// The part of qvDir that walks through the entries of a directory.
#include "qvOS/qvDir.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "qvOS/qvFile.h"
#include "qvOS/qvFile_p.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvCStringParser.h"
#include "qvraTools/qvMalloc.h"

#define kqvDirTraverser_MaxPathLength 8191 /* bytes; of directory, '/' and name */

qvDirTraverser* qvDirTraverser_New(const char* aDirPath) {
  qvDirTraverser* theTraverser = static_cast<qvDirTraverser*>(qvMallocZeroed(sizeof(qvDirTraverser)));
  theTraverser->mDirPath = qvPath_Normalize(aDirPath, 1, kqvPathNormalizeMode_Native, NULL);
  theTraverser->mFlags = qvDIR_DEFAULT;
  if (theTraverser->mDirPath != NULL) {
    // The root directory keeps its '/': without it there would be no path left.
    size_t theLength = strlen(theTraverser->mDirPath);
    while (theLength > 1 && theTraverser->mDirPath[theLength - 1] == '/') {
      theTraverser->mDirPath[--theLength] = '\0';
    }
  }
  return theTraverser;
}

// Tells a directory (1) from a regular file (0); false for what is neither. Only where the entry itself does
// not tell, as for a link, the file system is asked.
static bool qvDirTraverser_S_GetKind(const qvDirTraverser* aDirTraverser, int* afDir) {
  const struct dirent64* theDirEnt = aDirTraverser->mDirEnt;
  if (theDirEnt->d_type == DT_REG || theDirEnt->d_type == DT_DIR) {
    *afDir = theDirEnt->d_type == DT_DIR;
    return true;
  }
  char thePath[kqvDirTraverser_MaxPathLength + 1];
  int theLength = snprintf(thePath, sizeof(thePath), "%s/%s", aDirTraverser->mDirPath, theDirEnt->d_name);
  if (theLength < 0 || theLength > kqvDirTraverser_MaxPathLength) {
    return false;
  }
  *afDir = !qvFile_Exists(thePath);
  return !*afDir || qvDir_Exists(thePath);
}

// Makes the entry that was read last the current one. False when it is not to be given to the caller.
static bool qvDirTraverser_S_TakeEntry(qvDirTraverser* aDirTraverser) {
  qvDirEntry* theEntry = &aDirTraverser->mEntry;
  qvStrReplace(&theEntry->mName, aDirTraverser->mDirEnt->d_name);
  const char* theName = theEntry->mName;
  const bool theIsDots = strcmp(theName, ".") == 0 || strcmp(theName, "..") == 0;
  // KEEP qvDirTraverserKept.ANameThatBeginsWithTwoDotsIsNotHidden
  // A second dot ends the question, so "..file" counts as visible, as "." and ".." do. It looks like a short
  // cut that goes too far; it is the required result.
  theEntry->mfHidden = theName[0] == '.' && theName[1] != '\0' && theName[1] != '.';
  if (!qvDirTraverser_S_GetKind(aDirTraverser, &theEntry->mfDir)) {
    return false;
  }
  const uint32 theNeededFlags = (theEntry->mfDir ? qvDIR_DIRS : qvDIR_FILES) |
                                (theEntry->mfHidden ? qvDIR_HIDDEN : 0) | (theIsDots ? qvDIR_DOTDOT : 0);
  return (aDirTraverser->mFlags & theNeededFlags) == theNeededFlags &&
         qvCStringParser_Match(aDirTraverser->mEntrySpec, theName);
}

qvDirEntry* qvDirTraverser_GetFirst(qvDirTraverser* aDirTraverser, const char* aPattern, uint32 aFlags,
                                    int* aStatus) {
  *aStatus = kqvDirTraverserStatus_NoError;
  qvAssert(aDirTraverser->mDir == NULL);
  if (aDirTraverser->mDirPath == NULL || aPattern == NULL) {
    *aStatus = kqvDirTraverserStatus_Error;
    return NULL;
  }
  qvStrReplace(&aDirTraverser->mEntrySpec, aPattern);
  aDirTraverser->mFlags = aFlags;
  aDirTraverser->mDir = opendir(aDirTraverser->mDirPath);
  if (aDirTraverser->mDir == NULL) {
    if (errno != ENOENT) {
      *aStatus = kqvDirTraverserStatus_Error;
    }
    return NULL;
  }
  return qvDirTraverser_GetNext(aDirTraverser, aStatus);
}

qvDirEntry* qvDirTraverser_GetNext(qvDirTraverser* aDirTraverser, int* aStatus) {
  *aStatus = kqvDirTraverserStatus_NoError;
  qvAssert(aDirTraverser->mDir != NULL);
  for (;;) {
    errno = 0;
    aDirTraverser->mDirEnt = readdir64(aDirTraverser->mDir);
    if (aDirTraverser->mDirEnt == NULL) {
      if (errno != 0 && errno != ENOENT && errno != EINVAL) {
        *aStatus = kqvDirTraverserStatus_Error;
      }
      return NULL;
    }
    if (qvDirTraverser_S_TakeEntry(aDirTraverser)) {
      return &aDirTraverser->mEntry;
    }
  }
}

void qvDirTraverser_Rewind(qvDirTraverser* aDirTraverser) {
  if (aDirTraverser->mDir != NULL) {
    closedir(aDirTraverser->mDir);
    aDirTraverser->mDir = NULL;
    aDirTraverser->mDirEnt = NULL;
  }
}

const char* qvDirTraverser_GetDirPath(qvDirTraverser* aDirTraverser) { return aDirTraverser->mDirPath; }

void qvDirTraverser_Delete(qvDirTraverser* aDirTraverser) {
  if (aDirTraverser == NULL) {
    return;
  }
  qvDirTraverser_Rewind(aDirTraverser);
  qvFree(aDirTraverser->mEntry.mName);
  qvFree(aDirTraverser->mDirPath);
  qvFree(aDirTraverser->mEntrySpec);
  qvFree(aDirTraverser);
}
