#include "tools/qvlogd/Ledger.h"

#include <gtest/gtest.h>

TEST(Ledger, TheSameUUIDAgainIsTheSameInstance) {
  Ledger theLedger(10, 0);
  LedgerEntry& theFirst = theLedger.Open("player", "1a2b3c4d");
  theLedger.Close(theFirst);
  LedgerEntry& theSecond = theLedger.Open("player", "1a2b3c4d");
  EXPECT_EQ(&theFirst, &theSecond);
  EXPECT_EQ(2u, theSecond.mSums.mConnections);
  EXPECT_FALSE(theSecond.mfRestarted);
}

TEST(Ledger, AnotherUUIDIsTheProcessRestarted) {
  Ledger theLedger(10, 0);
  theLedger.Close(theLedger.Open("player", "9f8e7d6c"));
  EXPECT_TRUE(theLedger.Open("player", "1a2b3c4d").mfRestarted);
  EXPECT_EQ(2u, theLedger.Entries().size());
}

TEST(Ledger, AnotherUUIDWhileTheFirstIsConnectedIsASecondProcess) {
  Ledger theLedger(10, 0);
  theLedger.Open("player", "1a2b3c4d");
  EXPECT_FALSE(theLedger.Open("player", "9f8e7d6c").mfRestarted);
}

TEST(Ledger, ANameThatBeginsLikeAnotherIsNoRestart) {
  Ledger theLedger(10, 0);
  theLedger.Close(theLedger.Open("player2", "1a2b3c4d"));
  EXPECT_FALSE(theLedger.Open("player", "9f8e7d6c").mfRestarted);
}

TEST(Ledger, EntriesStandInTheOrderOfTheirFirstConnections) {
  Ledger theLedger(10, 0);
  theLedger.Open("tuner", "2");
  theLedger.Open("player", "3");
  theLedger.Open("gui", "1");
  theLedger.Open("player", "3");
  std::vector<LedgerEntry*> theEntries = theLedger.Entries();
  ASSERT_EQ(3u, theEntries.size());
  EXPECT_EQ("tuner", theEntries[0]->mProcess);
  EXPECT_EQ("player", theEntries[1]->mProcess);
  EXPECT_EQ("gui", theEntries[2]->mProcess);
}

TEST(Ledger, BeyondItsRoomTheFirstThatEndedIsSummedUp) {
  Ledger theLedger(2, 0);
  LedgerEntry& theFirst = theLedger.Open("a", "1");
  theFirst.mSums.mLines = 5;
  theFirst.mSums.mLost = 7;
  LedgerEntry& theSecond = theLedger.Open("b", "2");
  theLedger.Close(theSecond);
  theLedger.Close(theFirst);
  theLedger.Open("c", "3");
  EXPECT_EQ(1u, theLedger.ForgottenCount());
  EXPECT_EQ(0u, theLedger.Forgotten().mLines);  // b
  theLedger.Open("d", "4");
  EXPECT_EQ(2u, theLedger.ForgottenCount());
  EXPECT_EQ(5u, theLedger.Forgotten().mLines);
  EXPECT_EQ(7u, theLedger.Forgotten().mLost);
  EXPECT_EQ(2u, theLedger.Forgotten().mConnections);
  EXPECT_EQ(4u, theLedger.Total().mConnections);
  EXPECT_EQ(5u, theLedger.Total().mLines);
}

TEST(Ledger, AnEntryWithAConnectionIsNotSummedUp) {
  Ledger theLedger(1, 0);
  LedgerEntry& theFirst = theLedger.Open("a", "1");
  theLedger.Open("b", "2");
  EXPECT_EQ(0u, theLedger.ForgottenCount());
  EXPECT_EQ(&theFirst, &theLedger.Open("a", "1"));
}

TEST(Ledger, AnInstanceThatCameBackIsNotTheFirstThatEnded) {
  Ledger theLedger(2, 0);
  theLedger.Close(theLedger.Open("a", "1"));
  theLedger.Close(theLedger.Open("b", "2"));
  theLedger.Open("a", "1");
  theLedger.Open("c", "3");
  std::vector<LedgerEntry*> theEntries = theLedger.Entries();
  ASSERT_EQ(2u, theEntries.size());
  EXPECT_EQ("a", theEntries[0]->mProcess);
  EXPECT_EQ("c", theEntries[1]->mProcess);
}

TEST(Ledger, NamesTakeBoundedRoom) {
  Ledger theLedger(2, 0);
  EXPECT_EQ(std::string(255, 'x'), theLedger.Open(std::string(5000, 'x'), "1").mProcess);
}
