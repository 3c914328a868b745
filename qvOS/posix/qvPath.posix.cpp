#include "qvOS/qvPath.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "qvOS/qvPlatform.h"
#include "qvraTools/qvMalloc.h"

#define kqvPath_MaxLength      8192 /* bytes of the executable's path, without the terminator */
#define kqvPath_ProcNameLength 32   /* bytes; holds "/proc/4294967295/exe"                    */

// The path of the executable, filled once. sApplicationProcessId, 0 until then, is claimed by the one thread
// that fills it; sfApplicationPathIsReady says that the text is whole.
static char sApplicationPath[kqvPath_MaxLength + 1];
static uint32 sApplicationProcessId = 0;
static int sfApplicationPathIsReady = 0;

static bool qvPath_S_IsSeparator(char aChar) { return aChar == '/' || aChar == '\\'; }

static void qvPath_S_TurnBackslashes(char* aPath) {
  for (char* theChar = strchr(aPath, '\\'); theChar != NULL; theChar = strchr(theChar, '\\')) {
    *theChar = '/';
  }
}

// Two texts, one behind the other, as a new text.
static char* qvPath_S_Join(const char* aFirst, const char* aSecond) {
  size_t theFirstLength = strlen(aFirst);
  size_t theSecondSize = strlen(aSecond) + 1;
  char* theJoined = static_cast<char*>(qvMalloc(theFirstLength + theSecondSize));
  memcpy(theJoined, aFirst, theFirstLength);
  memcpy(theJoined + theFirstLength, aSecond, theSecondSize);
  return theJoined;
}

// The part of a relative path that goes behind the anchor. Only a leading dot means the anchor itself; ".."
// and ".hidden" are kept whole.
static const char* qvPath_S_WithoutDot(const char* aPath) {
  if (aPath[0] != '.') {
    return aPath;
  }
  if (aPath[1] == '\0') {
    return aPath + 1;
  }
  return qvPath_S_IsSeparator(aPath[1]) ? aPath + 2 : aPath;
}

char* qvPath_Normalize(const char* aPath, int afDir, int aNormalizeMode, const char* anAnchorPath) {
  (void)afDir;
  if (aPath == NULL) {
    return NULL;
  }
  char* theResult = NULL;
  if (qvPath_IsAbsolute(aPath)) {
    theResult = qvStrdup(aPath);
  } else if (anAnchorPath != NULL) {
    theResult = qvPath_S_Join(anAnchorPath, qvPath_S_WithoutDot(aPath));
  } else if (char* theAnchor = qvPath_GetApplicationPath(0)) {
    theResult = qvPath_S_Join(theAnchor, qvPath_S_WithoutDot(aPath));
    qvFree(theAnchor);
  }
  if (theResult != NULL && (aNormalizeMode & kqvPathNormalizeMode_NativeSlash) != 0) {
    qvPath_S_TurnBackslashes(theResult);
  }
  return theResult;
}

int qvPath_IsAbsolute(const char* aPath) {
  return aPath != NULL && (aPath[0] == '\0' || qvPath_S_IsSeparator(aPath[0]));
}

char* qvPath_GetTempDirPath(void) {
  char* thePath = qvPlatform_getenv("TMPDIR");
  return thePath != NULL ? thePath : qvStrdup("/tmp");
}

char* qvPath_GetCacheDirPath(void) { return qvPath_GetTempDirPath(); }

// Reads where a link in the process's folder of "/proc" points to. On failure aText is "".
static bool qvPath_S_ReadProcLink(uint32 aProcessId, const char* aLink, char* aText) {
  char theName[kqvPath_ProcNameLength];
  snprintf(theName, sizeof(theName), "/proc/%u/%s", static_cast<unsigned int>(aProcessId), aLink);
  ssize_t theLength = readlink(theName, aText, kqvPath_MaxLength);
  aText[theLength > 0 ? theLength : 0] = '\0';
  return theLength > 0;
}

// Finds the executable's path out. aText has room for kqvPath_MaxLength bytes and the terminator.
static void qvPath_S_FindApplicationPath(uint32 aProcessId, char* aText) {
  qvPath_S_ReadProcLink(aProcessId, "exe", aText);
  qvPath_S_TurnBackslashes(aText);
  // The executable of a Java program is the virtual machine, and no program keeps its files beside that.
  // KEEP qvPathKept.JavaAnywhereInThePathMakesAJavaProgram
  // Any "java" in the path counts, so a program in "/opt/myjavabox" is taken for one, too.
  char theDir[kqvPath_MaxLength + 1];
  if (strstr(aText, "java") != NULL && qvPath_S_ReadProcLink(aProcessId, "cwd", theDir)) {
    theDir[kqvPath_MaxLength - strlen("/java")] = '\0';
    strcpy(stpcpy(aText, theDir), "/java");
  }
}

// Several threads may come here at once with the same text: the first fills the cache, and none of the others
// waits for it.
static void qvPath_S_FillCache(uint32 aProcessId, const char* aText) {
  uint32 theNobody = 0;
  if (__atomic_compare_exchange_n(&sApplicationProcessId, &theNobody, aProcessId, false, __ATOMIC_RELAXED,
                                  __ATOMIC_RELAXED)) {
    strcpy(sApplicationPath, aText);
    __atomic_store_n(&sfApplicationPathIsReady, 1, __ATOMIC_RELEASE);
  }
}

char* qvPath_GetApplicationFullPath(void) {
  if (__atomic_load_n(&sfApplicationPathIsReady, __ATOMIC_ACQUIRE)) {
    return qvStrdup(sApplicationPath);
  }
  char thePath[kqvPath_MaxLength + 1];
  uint32 theProcessId = static_cast<uint32>(getpid());
  qvPath_S_FindApplicationPath(theProcessId, thePath);
  qvPath_S_FillCache(theProcessId, thePath);
  return qvStrdup(thePath);
}

char* qvPath_GetApplicationPath(int afRemoveExtension) {
  (void)afRemoveExtension;
  char* thePath = qvPath_GetApplicationFullPath();
  char* theSlash = strrchr(thePath, '/');
  if (theSlash == NULL) {
    qvFree(thePath);
    return NULL;
  }
  theSlash[1] = '\0';
  return thePath;
}

char* qvPath_GetApplicationName(int afRemoveExtension) {
  (void)afRemoveExtension;
  char* thePath = qvPath_GetApplicationFullPath();
  const char* theSlash = strrchr(thePath, '/');
  char* theName = theSlash != NULL ? qvStrdup(theSlash + 1) : NULL;
  qvFree(thePath);
  return theName;
}

char* qvPath_GetFunctionSharedLibraryPath(qvDefaultFunctionPtr aFunctionPtr) {
  Dl_info theInfo;
  if (dladdr(reinterpret_cast<void*>(aFunctionPtr), &theInfo) == 0) {
    return NULL;
  }
  return qvStrdup(theInfo.dli_fname);
}

char* qvPath_GetSystemFontPath(void) { return NULL; }

// KEEP qvPath.RealPathCopiesWhatHasNoPlaceholder
// Against its name it follows no link: it is there for placeholders, and this platform has none.
char* qvPath_RealPath(const char* aPath) {
  if (aPath == NULL || strchr(aPath, '<') != NULL) {
    return NULL;
  }
  return qvStrdup(aPath);
}

int qvPath_GetType(const char* aPath) {
  (void)aPath;
  return kqvPathType_Unknown;
}

char* qvPath_GetDefaultConfigPath(void) { return qvStrdup("./"); }
