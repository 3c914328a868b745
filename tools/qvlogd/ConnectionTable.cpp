#include "tools/qvlogd/ConnectionTable.h"

#include <algorithm>

#include "tools/logstream/Clock.h"

static const int64 kSettleTime = 2000;      // microseconds of quiet that end a message
static const size_t kWholeRead = 1024;      // bytes; what came with a smaller read was sent as a whole
static const size_t kAlwaysHeld = 4096;     // bytes that a connection may hold even when memory is short
static const int64 kLongestCheck = 100000;  // microseconds between two looks at lines without an end

ConnectionTable::ConnectionTable(const Options& aOptions)
    : mMaxHeld(aOptions.mMaxHeld), mPartialTime(static_cast<int64>(aOptions.mPartialTime) * 1000) {}

Connection& ConnectionTable::Add(std::unique_ptr<Connection> aConnection) {
  List& theIdle = mLists[ConnectionState_Idle];
  theIdle.push_back(std::move(aConnection));
  Connection& theConnection = *theIdle.back();
  theConnection.mPlace = std::prev(theIdle.end());
  ++mCount;
  return theConnection;
}

void ConnectionTable::Remove(Connection& aConnection) {
  aConnection.Close();
  CountHeld(aConnection, 0);
  mLists[aConnection.mState].erase(aConnection.mPlace);
  --mCount;
}

// To the end of the list; the iterators stay valid.
void ConnectionTable::MoveTo(Connection& aConnection, ConnectionState aState) {
  List& theTarget = mLists[aState];
  theTarget.splice(theTarget.end(), mLists[aConnection.mState], aConnection.mPlace);
  aConnection.mState = aState;
}

void ConnectionTable::CountHeld(Connection& aConnection, size_t aHeld) {
  mHeld = mHeld - aConnection.mHeld + aHeld;
  aConnection.mHeld = aHeld;
}

// Where the connection belongs after a handing over.
void ConnectionTable::HasHandedOver(Connection& aConnection) {
  CountHeld(aConnection, aConnection.WaitingBytes());
  if (!aConnection.IsWaiting()) {
    MoveTo(aConnection, ConnectionState_Idle);
  } else if (aConnection.mState != ConnectionState_Partial) {
    MoveTo(aConnection, ConnectionState_Partial);
  }
}

void ConnectionTable::HasRead(Connection& aConnection) {
  bool theMayBeUnderWay = aConnection.LastTurn() >= kWholeRead;
  if (!theMayBeUnderWay) {
    aConnection.Drain();
  }
  CountHeld(aConnection, aConnection.WaitingBytes());
  if (mHeld > mMaxHeld && aConnection.mHeld > kAlwaysHeld) {
    aConnection.Flush();
    theMayBeUnderWay = false;
  }
  if (theMayBeUnderWay && aConnection.IsWaiting()) {
    MoveTo(aConnection, ConnectionState_Settling);
  } else {
    HasHandedOver(aConnection);
  }
}

std::vector<Connection*> ConnectionTable::All() const {
  std::vector<Connection*> theConnections;
  for (const List& theList : mLists) {
    for (const auto& theConnection : theList) {
      theConnections.push_back(theConnection.get());
    }
  }
  return theConnections;
}

void ConnectionTable::HandOverDue() {
  List& theSettling = mLists[ConnectionState_Settling];
  int64 theNow = theSettling.empty() && mLists[ConnectionState_Partial].empty() ? 0 : Clock_Steady();
  while (!theSettling.empty() && theNow - theSettling.front()->LastRead() >= kSettleTime) {
    Connection& theConnection = *theSettling.front();
    theConnection.Drain();
    HasHandedOver(theConnection);
  }
  if (!mLists[ConnectionState_Partial].empty() && theNow >= mNextPartialCheck) {
    mNextPartialCheck = theNow + std::clamp<int64>(mPartialTime / 8, 1000, kLongestCheck);
    CutDuePartials();
  }
}

void ConnectionTable::CutDuePartials() {
  List& thePartial = mLists[ConnectionState_Partial];
  int64 theNow = Clock_Microseconds();
  for (auto theIter = thePartial.begin(); theIter != thePartial.end();) {
    Connection& theConnection = **theIter++;
    int64 theAge = theNow - theConnection.WaitingSince();
    // An age below 0: somebody has put the clock back.
    if (theAge >= mPartialTime || theAge < 0) {
      theConnection.Flush();
      HasHandedOver(theConnection);
    }
  }
}

int64 ConnectionTable::NextDue() const {
  int64 theDue = INT64_MAX;
  if (!mLists[ConnectionState_Settling].empty()) {
    theDue = mLists[ConnectionState_Settling].front()->LastRead() + kSettleTime;
  }
  if (!mLists[ConnectionState_Partial].empty()) {
    theDue = std::min(theDue, mNextPartialCheck);
  }
  return theDue == INT64_MAX ? -1 : std::max<int64>(0, theDue - Clock_Steady());
}
