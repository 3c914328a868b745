#include "tools/qvlogd/Connection.h"

#include <errno.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tools/logstream/Clock.h"

Connection::Connection(int aDescriptor, const LogStreamLimits& aLimits, Ledger& aLedger,
                       LogDistributor& aDistributor)
    : Watched(WatchedKind_Connection, aDescriptor),
      mLedger(aLedger),
      mDistributor(aDistributor),
      mParser(aLimits, *this) {}

// A quiet end would swallow the sender's next message: the first send after it still succeeds. After a reset
// that one fails already, so that the sender counts it as lost and tells the next collector.
Connection::~Connection() {
  struct linger theReset = {1, 0};
  setsockopt(Descriptor(), SOL_SOCKET, SO_LINGER, &theReset, sizeof(theReset));
  close(Descriptor());
}

ConnectionRead Connection::Read(char* aBuffer, size_t aSize, size_t aMaxTurn) {
  mLastTurn = 0;
  do {
    ssize_t theCount = recv(Descriptor(), aBuffer, aSize, MSG_DONTWAIT);
    if (theCount == 0 || (theCount < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
      return ConnectionRead_Ended;
    }
    if (theCount < 0) {
      return errno == EINTR ? ConnectionRead_More : ConnectionRead_Empty;
    }
    mLastRead = Clock_Steady();
    mLastTurn += static_cast<size_t>(theCount);
    mParser.Feed(aBuffer, static_cast<size_t>(theCount), Clock_Microseconds());
    if (static_cast<size_t>(theCount) < aSize) {
      return ConnectionRead_Empty;
    }
  } while (mLastTurn < aMaxTurn);
  return ConnectionRead_More;
}

void Connection::Close() {
  mParser.Close(Clock_Microseconds());
  if (mEntry != nullptr) {
    mLedger.Close(*mEntry);
    mEntry = nullptr;
  }
}

void Connection::Take(const LogRecord& aRecord) {
  if (mEntry == nullptr) {
    mEntry = &mLedger.Open(aRecord.mProcess, aRecord.mUUID);
  }
  mDistributor.Take(*mEntry, aRecord);
}
