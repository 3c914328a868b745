// Where the log daemon is: the settings, the environment and the resolver.
#include <netdb.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvLogger_qvLogd_p.h"
#include "qvOS/qvPlatform.h"
#include "qvraTools/qvMalloc.h"

#define kqvLogdLogger_Variable     "QVRALOG"
#define kqvLogdLogger_VariableMark "%QVRALOG%" /* stands for the variable's value in a target */
#define kqvLogdLogger_LocalTarget  "127.0.0.1:12222"
#define kqvLogdLogger_NoTarget     "null"
#define kqvLogdLogger_DefaultPort  "12222"
#define kqvLogdLogger_MaxPort      65535

#define kqvLogdLogger_Rule "#######################################################\n"

qvCString qvLogdLogger::GetEnv(const char* aName) {
  char* theValue = qvPlatform_getenv(aName);
  qvCString theResult(theValue != NULL ? theValue : "");
  qvFree(theValue);
  return theResult;
}

// The resolver would cut a number to 16 bits. Any other text may be the name of a service.
static bool qvLogdLogger_S_CanBePort(const char* aText) {
  char* theEnd;
  long theNumber = strtol(aText, &theEnd, 10);
  return *theEnd != '\0' || (theNumber >= 1 && theNumber <= kqvLogdLogger_MaxPort);
}

// Whether a host that is no address can be a name: "192.168.1.300" is neither.
static bool qvLogdLogger_S_CanBeName(const char* aHost) {
  return aHost[strspn(aHost, "0123456789.")] != '\0';
}

// The first IPv4 address of a host, or null; to be released with freeaddrinfo.
static struct addrinfo* qvLogdLogger_S_Resolve(const char* aHost, const char* aPort) {
  struct addrinfo theHints = {};
  theHints.ai_family = AF_INET;
  theHints.ai_socktype = SOCK_STREAM;
  // Numbers first: they must not wait for a name server.
  theHints.ai_flags = AI_NUMERICHOST;
  struct addrinfo* theResult = NULL;
  int theError = getaddrinfo(aHost, aPort, &theHints, &theResult);
  if (theError == EAI_NONAME && qvLogdLogger_S_CanBeName(aHost)) {
    theHints.ai_flags = 0;
    theError = getaddrinfo(aHost, aPort, &theHints, &theResult);
  }
  return theError == 0 ? theResult : NULL;
}

bool qvLogdLogger::MakeTargetAddressFromString(const qvCString& aTarget) {
  mTargetStr = aTarget;
  qvCString theHost = aTarget;
  qvCString thePort = kqvLogdLogger_DefaultPort;
  if (aTarget.Find(':') != -1) {
    theHost = aTarget.BeforeLast(':');
    thePort = aTarget.AfterLast(':');
    if (thePort.IsEmpty()) {
      thePort = kqvLogdLogger_DefaultPort;
    }
  }
  if (theHost.IsEmpty() || !qvLogdLogger_S_CanBePort(thePort)) {
    return false;
  }
  struct addrinfo* theAddress = qvLogdLogger_S_Resolve(theHost, thePort);
  if (theAddress == NULL) {
    return false;
  }
  memcpy(&mAddr, theAddress->ai_addr, theAddress->ai_addrlen);
  mAddrLen = theAddress->ai_addrlen;
  freeaddrinfo(theAddress);
  return true;
}

static void qvLogdLogger_S_WarnOfVariable(const char* aTarget) {
  qvCString theFile = qvLogger::GetConfigFileName();
  fprintf(stderr,
          kqvLogdLogger_Rule
          "# Warning: QVRALOG is deprecated. To change log target,\n"
          "# edit %s\n"
          "# or _%s\n"
          "# Current target: %s\n" kqvLogdLogger_Rule,
          theFile.c_str(), theFile.c_str(), aTarget);
}

bool qvLogdLogger::MakeTargetAddress() {
  qvCString theTarget = GetConfig("Target", kqvLogdLogger_DefaultTarget);
  qvCString theVariable = GetEnv(kqvLogdLogger_Variable);
  if (theTarget.Contains(kqvLogdLogger_VariableMark)) {
    theTarget.Replace(kqvLogdLogger_VariableMark, theVariable);
  } else if (!theVariable.IsEmpty() && theVariable != theTarget) {
    qvLogdLogger_S_WarnOfVariable(theTarget);
  }
  if (theTarget.IsEmpty()) {
    theTarget = kqvLogdLogger_LocalTarget;
  } else if (theTarget.CompareNoCase(kqvLogdLogger_NoTarget) == 0) {
    ChangeLevel(QVLOGLEVEL_NONE);
    return false;
  }
  return MakeTargetAddressFromString(theTarget);
}
