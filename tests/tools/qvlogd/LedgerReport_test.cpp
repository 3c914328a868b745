#include "tools/qvlogd/LedgerReport.h"

#include <gtest/gtest.h>

static LedgerEntry& OpenWith(Ledger& aLedger, const char* aProcess, const char* aUUID, uint64 aLines,
                             uint64 aLost) {
  LedgerEntry& theEntry = aLedger.Open(aProcess, aUUID);
  theEntry.mSums.mLines += aLines;
  theEntry.mSums.mLost += aLost;
  return theEntry;
}

TEST(LedgerReport, TextIsOneRowAnInstanceAndTheirSum) {
  Ledger theLedger(10, 0);
  theLedger.Close(OpenWith(theLedger, "player", "1a2b3c4d-0000-11f0-8000-001122334455", 900, 3));
  theLedger.Close(OpenWith(theLedger, "player", "1a2b3c4d-0000-11f0-8000-001122334455", 100, 0));
  OpenWith(theLedger, "player", "9f8e7d6c-0000-11f0-8000-001122334455", 20, 0).mSums.mHeldBack = 4;
  EXPECT_EQ(
      "PROCESS                         LINES         LOST    HELD BACK  CONNECTIONS\n"
      "player-1a2b3c4d                  1000            3            0            2  reconnected\n"
      "player-9f8e7d6c                    20            0            4            1  restarted\n"
      "2 processes                      1020            3            4            3\n"
      "dropped by the output: 0\n",
      LedgerReport_Text(theLedger, DeliveryCounts()));
}

TEST(LedgerReport, TextTellsOfForwardingAndOfDroppedLines) {
  Ledger theLedger(10, 0);
  DeliveryCounts theCounts;
  theCounts.mOutputDropped = 7;
  theCounts.mfForward = true;
  theCounts.mForwardSent = 1013;
  theCounts.mForwardDropped = 2;
  EXPECT_EQ(
      "PROCESS                         LINES         LOST    HELD BACK  CONNECTIONS\n"
      "0 processes                         0            0            0            0\n"
      "dropped by the output: 7\n"
      "forwarded: 1013, dropped: 2\n",
      LedgerReport_Text(theLedger, theCounts));
}

TEST(LedgerReport, TextSumsUpForgottenEntriesInOneRow) {
  Ledger theLedger(1, 0);
  theLedger.Close(OpenWith(theLedger, "a", "1", 5, 0));
  OpenWith(theLedger, "b", "2", 6, 0);
  EXPECT_EQ(
      "PROCESS                         LINES         LOST    HELD BACK  CONNECTIONS\n"
      "b-2                                 6            0            0            1\n"
      "1 earlier                           5            0            0            1\n"
      "2 processes                        11            0            0            2\n"
      "dropped by the output: 0\n",
      LedgerReport_Text(theLedger, DeliveryCounts()));
}

TEST(LedgerReport, ASenderWithoutAHeaderIsSaidToBeOne) {
  Ledger theLedger(10, 0);
  OpenWith(theLedger, "", "", 2, 0);
  EXPECT_NE(std::string::npos,
            LedgerReport_Text(theLedger, DeliveryCounts()).find("\n(no header)                         2 "));
}

TEST(LedgerReport, NoControlCharacterOfANameGetsThrough) {
  Ledger theLedger(10, 0);
  OpenWith(theLedger, "a\x1B[31m\x9B\n\"", "1", 0, 0);
  std::string theText = LedgerReport_Text(theLedger, DeliveryCounts());
  EXPECT_NE(std::string::npos, theText.find("\na\\x1b[31m\\x9b\\x0a\"-1")) << theText;
}

TEST(LedgerReport, JSONIsOneObjectOnOneLine) {
  Ledger theLedger(1, 0);
  theLedger.Close(OpenWith(theLedger, "tuner", "5e6f7a8b-0000-11f0-8000-001122334455", 5, 1));
  OpenWith(theLedger, "pl\"ayer", "1a2b3c4d-0000-11f0-8000-001122334455", 1000, 3);
  DeliveryCounts theCounts;
  theCounts.mfForward = true;
  theCounts.mForwardSent = 9;
  EXPECT_EQ(
      "{\"processes\":[{\"process\":\"pl\\\"ayer\",\"uuid\":\"1a2b3c4d-0000-11f0-8000-001122334455\","
      "\"lines\":1000,\"lost\":3,\"held_back\":0,\"connections\":1,\"connected\":true,\"restarted\":false}],"
      "\"earlier\":{\"processes\":1,\"lines\":5,\"lost\":1,\"held_back\":0,\"connections\":1},"
      "\"total\":{\"processes\":2,\"lines\":1005,\"lost\":4,\"held_back\":0,\"connections\":2},"
      "\"output\":{\"dropped\":0},\"forward\":{\"sent\":9,\"dropped\":0}}\n",
      LedgerReport_JSON(theLedger, theCounts));
}

TEST(LedgerReport, JSONWithoutForwardingHasNoSuchMember) {
  Ledger theLedger(1, 0);
  EXPECT_EQ(
      "{\"processes\":[],\"earlier\":{\"processes\":0,\"lines\":0,\"lost\":0,\"held_back\":0,\"connections\":"
      "0},"
      "\"total\":{\"processes\":0,\"lines\":0,\"lost\":0,\"held_back\":0,\"connections\":0},"
      "\"output\":{\"dropped\":0}}\n",
      LedgerReport_JSON(theLedger, DeliveryCounts()));
}
