#include "qv/ConfigConfig.h"

#include <string.h>

#include "qvOS/qvPath.h"
#include "qvOS/qvPlatform.h"
#include "qvOS/qvUser.h"
#include "qvraTools/format/qvFormat.h"

#define kqvConfigConfig_ReadPathKey      "ReadPath"
#define kqvConfigConfig_WritePathKey     "WritePath"
#define kqvConfigConfig_BrandSection     "Brand"
#define kqvConfigConfig_BrandVariable    "QVBRANDID"
#define kqvConfigConfig_UserIDVariable   "%USERID%"
#define kqvConfigConfig_NumberBufferSize 32 /* bytes; holds every 64-bit number as text */

namespace {

// What distinguishes the kinds of brand identifiers.
struct BrandKind {
  char mName[7];                   // of the kind and of its key
  char mFallback[10];              // when neither key nor variable has a value
  bool mfTakesVariableOrFallback;  // false: an empty key stays empty
  char mVariableSuffix[2];         // put behind the variable's value
};

const BrandKind kqvConfigConfig_BrandKinds[] = {
    // name   fallback     variable  suffix
    {"MBus", "qvra", true, ""},
    // KEEP qvConfigConfigKept.SBusNeverTakesItsFallback
    {"SBus", "sbus", false, ""},
    {"X_RPC", "", true, ""},
    {"AppSet", "com.qvra.", true, "."},
};

}  // namespace

static const BrandKind* qvConfigConfig_S_FindKind(const char* aKind) {
  for (const BrandKind& theKind : kqvConfigConfig_BrandKinds) {
    if (aKind != NULL && strcmp(aKind, theKind.mName) == 0) {
      return &theKind;
    }
  }
  return NULL;
}

static qvCString qvConfigConfig_S_GetVariableOrFallback(const BrandKind& aKind) {
  qvCString theValue = qvCString::FromAllocatedString(qvPlatform_getenv(kqvConfigConfig_BrandVariable));
  if (theValue.IsEmpty()) {
    return qvCString(aKind.mFallback);
  }
  theValue += aKind.mVariableSuffix;
  return theValue;
}

qvConfigConfig::qvConfigConfig(const char* aFileName)
    : qvConfig(qvCString::FromAllocatedString(qvPath_GetDefaultConfigPath()), qvCString(),
               qvCString(aFileName)) {}

qvConfigConfig::~qvConfigConfig() {}

void qvConfigConfig::GetPaths(qvCString& aReadPath, qvCString& aWritePath) const {
  FetchConfigPaths(NULL, kqvConfigConfig_ReadPathKey, kqvConfigConfig_WritePathKey, aReadPath, aWritePath,
                   false);
}

bool qvConfigConfig::GetAndCheckPaths(qvCString& aReadPath, qvCString& aWritePath) const {
  return FetchConfigPaths(NULL, kqvConfigConfig_ReadPathKey, kqvConfigConfig_WritePathKey, aReadPath,
                          aWritePath, true);
}

bool qvConfigConfig::GetConfigPaths(qvCString& aReadPath, qvCString& aWritePath, const char* aFileName) {
  qvConfigConfig theConfig(aFileName);
  return theConfig.GetAndCheckPaths(aReadPath, aWritePath);
}

qvCString qvConfigConfig::GetBrandInfo(const char* aKind, const char* aFileName) {
  qvCString theResult;
  qvConfigConfig theConfig(aFileName);
  int64 theUserID = qvUser_GetID();
  const BrandKind* theKind = qvConfigConfig_S_FindKind(aKind);
  if (theKind != NULL) {
    theResult = theConfig.GetCString(kqvConfigConfig_BrandSection, theKind->mName, qvCString());
    if (theResult.IsEmpty() && theKind->mfTakesVariableOrFallback) {
      theResult = qvConfigConfig_S_GetVariableOrFallback(*theKind);
    }
  }
  if (theResult.Contains(kqvConfigConfig_UserIDVariable) && theUserID >= 0) {
    char theNumber[kqvConfigConfig_NumberBufferSize];
    qv_snprintf(theNumber, sizeof(theNumber), "%lld", static_cast<long long>(theUserID));
    theResult.Replace(kqvConfigConfig_UserIDVariable, theNumber, true);
  }
  return theResult;
}
