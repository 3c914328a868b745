// ConnectionTable.h - all connections, and when what they hold back is to be handed over.
//
// A sender's message may have continuation lines, so its last message waits until the next one begins or
// until the sender has been quiet for a moment. Mostly a message has come whole with one small read; then
// there is nothing to wait for, and lines of several processes keep the order in which they arrived. Only
// behind a larger read, which may have ended in the middle of a message, the moment is waited for.
#ifndef QVLOGD_CONNECTIONTABLE_H
#define QVLOGD_CONNECTIONTABLE_H

#include <list>
#include <memory>
#include <vector>

#include "tools/qvlogd/Connection.h"
#include "tools/qvlogd/Options.h"

class ConnectionTable {
 public:
  explicit ConnectionTable(const Options& aOptions);

  size_t Count() const { return mCount; }
  Connection& Add(std::unique_ptr<Connection> aConnection);
  // Closes the connection and deletes it.
  void Remove(Connection& aConnection);

  // To be called after each read of a connection that goes on.
  void HasRead(Connection& aConnection);
  // Hands over what has waited long enough.
  void HandOverDue();
  // Microseconds until HandOverDue has something to do; -1: nothing waits.
  int64 NextDue() const;

  std::vector<Connection*> All() const;

 private:
  using List = std::list<std::unique_ptr<Connection>>;

  void MoveTo(Connection& aConnection, ConnectionState aState);
  void HasHandedOver(Connection& aConnection);
  void CountHeld(Connection& aConnection, size_t aHeld);
  void CutDuePartials();

  List mLists[ConnectionState_Count];  // each in the order of entering it
  size_t mCount = 0;
  size_t mHeld = 0;  // bytes of all connections
  size_t mMaxHeld;
  int64 mPartialTime;           // microseconds
  int64 mNextPartialCheck = 0;  // by the steady clock
};

#endif
