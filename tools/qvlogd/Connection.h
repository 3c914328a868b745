// Connection.h - the socket of one sender and what is known about it.
#ifndef QVLOGD_CONNECTION_H
#define QVLOGD_CONNECTION_H

#include <list>
#include <memory>

#include "tools/logstream/LogStreamParser.h"
#include "tools/qvlogd/LogDistributor.h"
#include "tools/qvlogd/Watched.h"

class ConnectionTable;

// Where a connection's last message stands. Each state is a list of the table.
enum ConnectionState {
  ConnectionState_Idle,      // nothing is held back
  ConnectionState_Settling,  // the last message may go on: continuation lines may be under way
  ConnectionState_Partial,   // a line has no end yet
  ConnectionState_Count
};

// What a turn of reading has left in the socket.
enum ConnectionRead { ConnectionRead_Empty, ConnectionRead_More, ConnectionRead_Ended };

class Connection : public Watched, private LogRecordSink {
 public:
  // Owns the descriptor.
  Connection(int aDescriptor, const LogStreamLimits& aLimits, Ledger& aLedger, LogDistributor& aDistributor);
  ~Connection() override;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Reads at most about aMaxTurn bytes, in pieces of the buffer's size.
  ConnectionRead Read(char* aBuffer, size_t aSize, size_t aMaxTurn);
  // Hands over the last message if it is complete.
  void Drain() { mParser.Drain(); }
  // Hands over all there is, complete or not.
  void Flush() { mParser.Flush(); }
  // Nothing more is read: hands over all there is and the end.
  void Close();

  bool IsWaiting() const { return mParser.IsWaiting(); }
  int64 WaitingSince() const { return mParser.WaitingSince(); }
  size_t WaitingBytes() const { return mParser.WaitingBytes(); }
  int64 LastRead() const { return mLastRead; }   // by the steady clock
  size_t LastTurn() const { return mLastTurn; }  // bytes

 private:
  friend class ConnectionTable;

  void Take(const LogRecord& aRecord) override;

  Ledger& mLedger;
  LogDistributor& mDistributor;
  LedgerEntry* mEntry = nullptr;  // once the sender is known, or has sent something without a header
  LogStreamParser mParser;
  int64 mLastRead = 0;   // by the steady clock
  size_t mLastTurn = 0;  // bytes read in the last turn

  // The table's.
  ConnectionState mState = ConnectionState_Idle;
  size_t mHeld = 0;  // bytes, as they are in the table's sum
  std::list<std::unique_ptr<Connection>>::iterator mPlace;
};

#endif
