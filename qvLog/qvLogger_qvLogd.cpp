#include "qvLog/qvLogger_qvLogd.h"

#include <errno.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "qvLog/qvLogFork_p.h"
#include "qvLog/qvLogger_qvLogd_p.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvNew_p.h"
#include "qvraTools/qvRand.h"
#include "qvraTools/qvUUID.h"

#define kqvLogdLogger_DefaultLevel    "All"
#define kqvLogdLogger_DefaultBlocking 0

#define kqvLogdLogger_SendBuffer     102400 /* bytes; absorbs bursts before messages are lost */
#define kqvLogdLogger_LossReportSize 20     /* bytes */
#define kqvLogdLogger_UUIDSize       16     /* bytes */

qvLogdLogger* qvLogdLogger::sInstance = NULL;

// BeginLog refused the message that is going on. When another logger takes it, its parts and its end come
// here all the same. There is one instance at a time.
static bool sfRefused = false;

// The UUID is the parent process's. Most children execute another program and never connect, so their own one
// is made for their first header.
static bool sfHasParentsUUID = false;

// Sends nothing: what is not sent yet is left to the system.
static void qvLogdLogger_S_CloseSocket(qvLogdLogger* aLogger) {
  if (aLogger->mSocket != -1) {
    close(aLogger->mSocket);
  }
  aLogger->mSocket = -1;
  aLogger->mState = qvLogdLogger::State_Disconnected;
}

static void qvLogdLogger_S_MakeUUID(char* aText) {
  uint8 theUUID[kqvLogdLogger_UUIDSize];
  qvRand_Init();
  qvUUID_Generate(theUUID);
  qvUUID_Print(theUUID, aText);
}

qvLogdLogger::qvLogdLogger(bool aAddToList)
    : qvLogger("qvLogd", aAddToList),
      mState(State_Disconnected),
      mAddr(),
      mAddrLen(0),
      mSocket(-1),
      mLostLogs(0),
      mLastChar('\n'),
      mfHasAddress(false),
      mfBlocking(kqvLogdLogger_DefaultBlocking),
      mBuffer(NULL),
      mBufferLen(0),
      mBufferAllocLen(1) {
  qvAssert(sInstance == NULL);
  sInstance = this;
  sfRefused = false;
  sfHasParentsUUID = false;
  mBuffer = static_cast<char*>(qvMalloc(mBufferAllocLen));
  qvLogdLogger_S_MakeUUID(mUUIDStr);
  qvLogdLogger::ReloadConfig();
}

qvLogdLogger::~qvLogdLogger() {
  sInstance = NULL;
  qvLogdLogger_S_CloseSocket(this);
  qvFree(mBuffer);
}

void qvLogdLogger::ReloadConfig() {
  ChangeLevel(GetConfigLevel(kqvLogdLogger_DefaultLevel));
  GetConfig("Target", kqvLogdLogger_DefaultTarget);
  mfBlocking = GetConfig("Blocking", kqvLogdLogger_DefaultBlocking);
  qvLogdLogger_S_CloseSocket(this);
  mfHasAddress = false;
  qvLogger::ReloadConfig();
}

bool qvLogdLogger::IsConnected() { return mState == State_Connected; }

int qvLogdLogger::Send(int aSocket, char* aBytes, int aLength) {
  return static_cast<int>(send(aSocket, aBytes, static_cast<size_t>(aLength), MSG_NOSIGNAL));
}

int qvLogdLogger::getLastSocketError() { return errno; }

static bool qvLogdLogger_S_OpenSocket(qvLogdLogger* aLogger) {
  // Programs that the process launches do not inherit the connection.
  aLogger->mSocket = socket(aLogger->mAddr.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (aLogger->mSocket == -1) {
    return false;
  }
  int theOn = 1;
  if (!aLogger->mfBlocking && ioctl(aLogger->mSocket, FIONBIO, &theOn) != 0) {
    qvLogdLogger_S_CloseSocket(aLogger);  // it could make a log call wait
    return false;
  }
  int theSize = kqvLogdLogger_SendBuffer;
  setsockopt(aLogger->mSocket, SOL_SOCKET, SO_SNDBUF, &theSize, sizeof(theSize));
  aLogger->mState = qvLogdLogger::State_Connecting;
  return true;
}

// Whether connecting, or sending, may go on after this error.
static bool qvLogdLogger_S_IsUnderWay(int anError) {
  return anError == EAGAIN || anError == EINTR || anError == EINPROGRESS;
}

// 0 when the connection stands, else the error.
static int qvLogdLogger_S_Connect(qvLogdLogger* aLogger) {
  const struct sockaddr* theAddress = reinterpret_cast<const struct sockaddr*>(&aLogger->mAddr);
  if (connect(aLogger->mSocket, theAddress, static_cast<socklen_t>(aLogger->mAddrLen)) == 0) {
    return 0;
  }
  int theError = aLogger->getLastSocketError();
  if (theError == EISCONN) {
    return 0;
  }
  return theError == EALREADY ? EINPROGRESS : theError;
}

// Without a listener, the system may draw the target's port as the socket's own, and connect it to itself.
// The daemon could not listen there then, for as long as the process lives.
static bool qvLogdLogger_S_IsItsOwnPeer(const qvLogdLogger* aLogger) {
  struct sockaddr_in theOwn = {};
  socklen_t theLength = sizeof(theOwn);
  if (getsockname(aLogger->mSocket, reinterpret_cast<struct sockaddr*>(&theOwn), &theLength) != 0) {
    return false;
  }
  const struct sockaddr_in* theTarget = reinterpret_cast<const struct sockaddr_in*>(&aLogger->mAddr);
  return theOwn.sin_port == theTarget->sin_port && theOwn.sin_addr.s_addr == theTarget->sin_addr.s_addr;
}

// Closes so that the port is free at once; it would be kept for a minute.
static void qvLogdLogger_S_LeaveOwnPeer(qvLogdLogger* aLogger) {
  struct linger theReset = {1, 0};
  setsockopt(aLogger->mSocket, SOL_SOCKET, SO_LINGER, &theReset, sizeof(theReset));
  qvLogdLogger_S_CloseSocket(aLogger);
}

static void qvLogdLogger_S_StartMessage(qvLogdLogger* aLogger) {
  aLogger->mBufferLen = 0;
  sfRefused = false;
}

// KEEP qvLogdLoggerKept.ALossReportWithTheSameCountPrecedesTheHeader
// The header is sent like any message, and pending losses are reported before it.
static void qvLogdLogger_S_SendHeader(qvLogdLogger* aLogger, qvLogDataEx* aRecord) {
  unsigned int theLost = aLogger->mLostLogs;
  if (sfHasParentsUUID) {
    qvLogdLogger_S_MakeUUID(aLogger->mUUIDStr);
    sfHasParentsUUID = false;
  }
  aLogger->mState = qvLogdLogger::State_Connected;
  aLogger->mLastChar = '\n';
  qvLogdLogger_S_StartMessage(aLogger);
  aLogger->Append_F(aRecord, "\nPROTOCOL: qvLogd-1.0\nUUID: %s\nLOST: %u\nNAME: ", aLogger->mUUIDStr,
                    theLost);
  aLogger->Append_ProcessNameOrId(aRecord);
  aLogger->Append_F(aRecord, "(log started, %u logs previously lost)\n", theLost);
  aLogger->EndLog(aRecord);
}

bool qvLogdLogger::MakeConnected(qvLogDataEx* aRecord) {
  if (mState == State_Connected) {
    return true;
  }
  if (mState != State_Disconnected && mState != State_Connecting) {
    qvAssertFail("Wrong state");
  }
  int theError = EINPROGRESS;
  if (mState == State_Disconnected) {
    mfHasAddress = mfHasAddress || MakeTargetAddress();
    if (!mfHasAddress || !qvLogdLogger_S_OpenSocket(this)) {
      return false;
    }
    theError = qvLogdLogger_S_Connect(this);
  }
  if (qvLogdLogger_S_IsUnderWay(theError)) {
    theError = qvLogdLogger_S_Connect(this);
  }
  if (theError == 0 && qvLogdLogger_S_IsItsOwnPeer(this)) {
    qvLogdLogger_S_LeaveOwnPeer(this);
    theError = ECONNREFUSED;
  }
  if (theError != 0) {
    if (!qvLogdLogger_S_IsUnderWay(theError)) {
      qvLogdLogger_S_CloseSocket(this);
    }
    ++mLostLogs;
    return false;
  }
  qvLogdLogger_S_SendHeader(this, aRecord);
  return mSocket != -1;
}

// poll, where select would write behind its set for a descriptor above 1023. Like there, a broken connection
// is writable: sending will tell.
static bool qvLogdLogger_S_IsWritable(int aSocket) {
  struct pollfd thePoll = {aSocket, POLLOUT, 0};
  return poll(&thePoll, 1, 0) == 1 && (thePoll.revents & POLLNVAL) == 0;
}

static bool qvLogdLogger_S_CanSend(qvLogdLogger* aLogger, qvLogDataEx* aRecord) {
  if (!aLogger->MakeConnected(aRecord)) {
    return false;
  }
  if (aLogger->mLostLogs == 0) {
    return true;
  }
  if (!qvLogdLogger_S_IsWritable(aLogger->mSocket)) {
    ++aLogger->mLostLogs;
    return false;
  }
  // KEEP qvLogdLoggerKept.LossesOfAStandingConnectionAreToldOnStandardError
  fprintf(stderr, "qvLogdLogger: Restarting, %u logs were lost.\n", aLogger->mLostLogs);
  aLogger->mLostLogs = 0;
  return true;
}

bool qvLogdLogger::BeginLog(qvLogDataEx* aRecord) {
  qvLogdLogger_S_StartMessage(this);
  if (!qvLogdLogger_S_CanSend(this, aRecord)) {
    sfRefused = true;
    return false;
  }
  qvLogdLogger_S_StartMessage(this);
  if (mLastChar == '\n') {
    GenerateBeginLine(aRecord);
  }
  return true;
}

void qvLogdLogger::Append_S(qvLogDataEx*, const char* aBytes, size_t aLength) {
  if (aLength == 0 || sfRefused) {
    return;
  }
  size_t theSize = mBufferLen + aLength;
  if (theSize > mBufferAllocLen) {
    mBuffer = static_cast<char*>(qvRealloc(mBuffer, theSize));
    mBufferAllocLen = theSize;
  }
  memcpy(mBuffer + mBufferLen, aBytes, aLength);
  mBufferLen = theSize;
}

static void qvLogdLogger_S_ReportLosses(qvLogdLogger* aLogger) {
  if (aLogger->mLostLogs == 0) {
    return;
  }
  char theReport[kqvLogdLogger_LossReportSize];
  int theLength = qv_snprintf(theReport, sizeof(theReport), "\nLOST: %u\n", aLogger->mLostLogs);
  if (aLogger->Send(aLogger->mSocket, theReport, theLength) > 0) {
    aLogger->mLostLogs = 0;
  }
}

// KEEP qvLogdLoggerKept.TheRestOfAMessageThatWasSentInPartIsNeverSent
// Keeping it would make the next message wait, or grow the buffer. The line is torn, and counts as lost.
static bool qvLogdLogger_S_SendMessage(qvLogdLogger* aLogger) {
  int theLength = static_cast<int>(aLogger->mBufferLen);
  int theSent = aLogger->Send(aLogger->mSocket, aLogger->mBuffer, theLength);
  if (theSent == theLength) {
    if (theLength > 0) {
      aLogger->mLastChar = aLogger->mBuffer[theLength - 1];
    }
    return true;
  }
  if (theSent < 0 && !qvLogdLogger_S_IsUnderWay(aLogger->getLastSocketError())) {
    qvLogdLogger_S_CloseSocket(aLogger);
  }
  aLogger->mLastChar = '\n';  // so that the next message starts with a prefix
  return false;
}

void qvLogdLogger::EndLog(qvLogDataEx*) {
  bool theLost = true;
  if (mSocket != -1 && mState == State_Connected) {
    qvLogdLogger_S_ReportLosses(this);
    // A message that was refused is in the report, if that has been sent.
    theLost = sfRefused ? mLostLogs != 0 : !qvLogdLogger_S_SendMessage(this);
  }
  // KEEP qvLogdLoggerKept.ARefusedMessageCountsTwiceWhenAnotherLoggerTakesIt
  // KEEP qvLogdLoggerKept.AMessageThatFindsNoAddressIsCountedAtItsEndWhenAnotherLoggerTakesIt
  // Whatever was counted when it began: its end is the end of a lost message.
  if (theLost) {
    ++mLostLogs;
  }
  qvLogdLogger_S_StartMessage(this);
}

void qvLogdLogger_S_LeaveParentsConnection() {
  qvLogdLogger* theLogger = qvLogdLogger::sInstance;
  if (theLogger == NULL) {
    return;
  }
  qvLogdLogger_S_CloseSocket(theLogger);  // the parent's stays open
  qvLogdLogger_S_StartMessage(theLogger);
  theLogger->mLostLogs = 0;
  theLogger->mLastChar = '\n';
  sfHasParentsUUID = true;
}

void qvLogger_qvLogd_Init(void) {
  qvLogger::LockFramework();
  if (qvLogdLogger::sInstance == NULL && !qvLogger::NeverLog()) {
    new (qvOrFatalError{}) qvLogdLogger(true);  // enters the chain, which owns it
  }
  qvLogger::UnlockFramework();
}
