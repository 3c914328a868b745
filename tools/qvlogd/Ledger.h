// Ledger.h - who has sent how much.
//
// An entry is one instance of a process: a name and a UUID. The same UUID again is the same instance that
// connects anew; another UUID under a name that is not connected at the time is a process that was restarted.
// Senders without a connection header share one entry. The entries are bounded: beyond the limit those whose
// connections ended first are summed up in one.
#ifndef QVLOGD_LEDGER_H
#define QVLOGD_LEDGER_H

#include <list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "qvOS/qvTypes.h"
#include "tools/qvlogd/RateLimit.h"

struct LedgerSums {
  uint64 mLines = 0;        // received, whether shown or not
  uint64 mLost = 0;         // messages that the sender reported as lost
  uint64 mHeldBack = 0;     // lines above the rate
  uint64 mConnections = 0;  // ever

  void Add(const LedgerSums& aSums);
};

struct LedgerEntry {
  LedgerEntry(std::string_view aProcess, std::string_view aUUID, unsigned int aRate)
      : mProcess(aProcess), mUUID(aUUID), mRateLimit(aRate) {}

  std::string mProcess;  // both empty: without a header
  std::string mUUID;
  LedgerSums mSums;
  RateLimit mRateLimit;
  uint64 mNumber = 0;           // in the order of the first connection
  size_t mOpenConnections = 0;  // now
  bool mfRestarted = false;
  std::list<LedgerEntry*>::iterator mEnded;  // its place among those without a connection
};

class Ledger {
 public:
  // aRate: lines a second and process; 0: no limit.
  Ledger(size_t aMaxEntries, unsigned int aRate) : mMaxEntries(aMaxEntries), mRate(aRate) {}
  Ledger(const Ledger&) = delete;
  Ledger& operator=(const Ledger&) = delete;

  // A sender has connected. The entry stays until the sender's last connection has ended.
  LedgerEntry& Open(std::string_view aProcess, std::string_view aUUID);
  void Close(LedgerEntry& aEntry);

  std::vector<LedgerEntry*> Entries();  // in the order of their first connections
  size_t ForgottenCount() const { return mForgottenCount; }
  const LedgerSums& Forgotten() const { return mForgotten; }
  LedgerSums Total() const;

 private:
  using Key = std::pair<std::string, std::string>;

  bool IsRestart(const Key& aKey) const;
  void ForgetOldest();

  size_t mMaxEntries;
  unsigned int mRate;
  uint64 mLastNumber = 0;
  std::map<Key, LedgerEntry> mEntries;
  std::list<LedgerEntry*> mEnded;  // the one that ended first is the first
  size_t mForgottenCount = 0;
  LedgerSums mForgotten;
};

#endif
