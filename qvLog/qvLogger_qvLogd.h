// qvLogger_qvLogd.h - the logger that streams every line over TCP to a log collector, the log daemon.
//
// Settings, section "qvlogd": "Level" (default "All"), "Target" (host and port with a colon between them, or
// a host alone; default "%QVRALOG%", which stands for the environment variable QVRALOG; nothing is
// 127.0.0.1:12222, "null" switches the logger off until a reload) and "Blocking" (default 0; anything else
// lets connect and send wait for the collector, and every log call of the process with them). A host given by
// name is looked up by the system's resolver, which may take its time; one given by number never is.
//
// Every message carries the connection one step further: by default no log call waits for the network. What
// cannot be sent at once is lost and counted; the count goes into the header of the next connection. The
// stream is described in docs/log-daemon-protocol.md.
#ifndef QVLOG_QVLOGGER_QVLOGD_H
#define QVLOG_QVLOGGER_QVLOGD_H

#include <sys/socket.h>

#include "qvLog/qvLogger.h"

// The log daemon logger. See the top of this header.
class QVLOG_API qvLogdLogger : public qvLogger {
 public:
  // How far the connection is.
  enum State { State_Disconnected = 0, State_Connecting = 1, State_Connected = 2 };

  // Fails an assertion when the one instance exists already. The caller holds the framework lock.
  explicit qvLogdLogger(bool aAddToList);
  ~qvLogdLogger() override;

  // Connects if need be; false, and the message counts as lost, when it cannot be sent. A message that finds
  // no address, or gets no socket, is not counted.
  bool BeginLog(qvLogDataEx* aRecord) override;
  void Append_S(qvLogDataEx* aRecord, const char* aBytes, size_t aLength) override;
  // Sends the message with one call of Send.
  void EndLog(qvLogDataEx* aRecord) override;
  // Reads the settings and closes the connection; the next message looks the target up again.
  void ReloadConfig() override;

  // Whether the connection stands.
  virtual bool IsConnected();
  // The system's send, without a signal when the connection is broken. Returns how many bytes it took, or -1
  // with the reason in errno.
  virtual int Send(int aSocket, char* aBytes, int aLength);

  // The value of an environment variable; empty when it is unset.
  qvCString GetEnv(const char* aName);
  // Looks "host:port", "host:" or "host" up; false when that names no address or no port.
  bool MakeTargetAddressFromString(const qvCString& aTarget);
  // The same with the target of the settings. Target "null" sets the threshold to 0 and is false.
  bool MakeTargetAddress();
  // errno.
  int getLastSocketError();
  // One step towards the connection; true when it stands. Whoever completes it sends the header.
  bool MakeConnected(qvLogDataEx* aRecord);

  static qvLogdLogger* sInstance;  // the one instance, or null

  State mState;                   // of the connection
  struct sockaddr_storage mAddr;  // the resolved target
  size_t mAddrLen;                // bytes of it that count
  int mSocket;                    // -1: none
  qvCString mTargetStr;           // the target as it was last looked up
  unsigned int mLostLogs;         // messages lost since the last report
  char mLastChar;                 // the last byte sent; a prefix is written only after a line end
  bool mfHasAddress;              // mAddr is valid; false after a reload
  int mfBlocking;                 // log calls wait for the daemon
  char* mBuffer;                  // the bytes of the current message; kept and grown from message to message
  size_t mBufferLen;              // how many there are
  size_t mBufferAllocLen;         // how many have room
  // Identifies this instance, the same for all its connections. A child process is another instance; it gets
  // its own with its first connection.
  char mUUIDStr[37];
};

QV_BEGIN_DECLS

// Creates the log daemon logger and puts it into the chain, unless there is one or qvLog_NeverLog was called.
// Takes the framework lock.
QVLOG_API void qvLogger_qvLogd_Init(void);

QV_END_DECLS

#endif
