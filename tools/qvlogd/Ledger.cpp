#include "tools/qvlogd/Ledger.h"

#include <algorithm>

static const size_t kMaxNameLength = 255;  // bytes; of a process's name and of its identifier

void LedgerSums::Add(const LedgerSums& aSums) {
  mLines += aSums.mLines;
  mLost += aSums.mLost;
  mHeldBack += aSums.mHeldBack;
  mConnections += aSums.mConnections;
}

// Instances of a process stand side by side in the map.
bool Ledger::IsRestart(const Key& aKey) const {
  bool theHasEarlierOne = false;
  for (auto theIter = mEntries.lower_bound({aKey.first, ""});
       theIter != mEntries.end() && theIter->first.first == aKey.first; ++theIter) {
    if (theIter->second.mOpenConnections > 0) {
      return false;
    }
    theHasEarlierOne = true;
  }
  return theHasEarlierOne;
}

LedgerEntry& Ledger::Open(std::string_view aProcess, std::string_view aUUID) {
  Key theKey(aProcess.substr(0, kMaxNameLength), aUUID.substr(0, kMaxNameLength));
  auto theFound = mEntries.find(theKey);
  if (theFound == mEntries.end()) {
    bool theIsRestart = IsRestart(theKey);
    if (mEntries.size() >= mMaxEntries) {
      ForgetOldest();
    }
    theFound = mEntries.emplace(theKey, LedgerEntry(theKey.first, theKey.second, mRate)).first;
    theFound->second.mNumber = ++mLastNumber;
    theFound->second.mfRestarted = theIsRestart;
  } else if (theFound->second.mOpenConnections == 0) {
    mEnded.erase(theFound->second.mEnded);
  }
  LedgerEntry& theEntry = theFound->second;
  ++theEntry.mOpenConnections;
  ++theEntry.mSums.mConnections;
  return theEntry;
}

void Ledger::Close(LedgerEntry& aEntry) {
  if (--aEntry.mOpenConnections == 0) {
    aEntry.mEnded = mEnded.insert(mEnded.end(), &aEntry);
  }
}

// Entries with a connection stay: they are bounded by the number of connections.
void Ledger::ForgetOldest() {
  if (mEnded.empty()) {
    return;
  }
  LedgerEntry* theEntry = mEnded.front();
  mEnded.pop_front();
  mForgotten.Add(theEntry->mSums);
  ++mForgottenCount;
  mEntries.erase({theEntry->mProcess, theEntry->mUUID});
}

std::vector<LedgerEntry*> Ledger::Entries() {
  std::vector<LedgerEntry*> theEntries;
  for (auto& theItem : mEntries) {
    theEntries.push_back(&theItem.second);
  }
  std::sort(theEntries.begin(), theEntries.end(), [](const LedgerEntry* aLeft, const LedgerEntry* aRight) {
    return aLeft->mNumber < aRight->mNumber;
  });
  return theEntries;
}

LedgerSums Ledger::Total() const {
  LedgerSums theTotal = mForgotten;
  for (const auto& theItem : mEntries) {
    theTotal.Add(theItem.second.mSums);
  }
  return theTotal;
}
