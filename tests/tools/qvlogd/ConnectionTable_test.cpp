#include "tools/qvlogd/ConnectionTable.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <string>

// Remembers the texts of what would be written.
class TextSink : public LogRecordSink {
 public:
  void Take(const LogRecord& aRecord) override {
    mTexts.append(aRecord.mText).append(aRecord.mfPartial ? "~" : ".");
  }
  std::string mTexts;
};

class ConnectionTableTest : public testing::Test {
 protected:
  ~ConnectionTableTest() override {
    for (int thePeer : mPeers) {
      close(thePeer);
    }
  }

  ConnectionTable& Table() {
    if (mTable == nullptr) {
      mDistributor = std::make_unique<LogDistributor>(mOptions, mLedger, mSink);
      mTable = std::make_unique<ConnectionTable>(mOptions);
    }
    return *mTable;
  }
  Connection& Add() {
    int theSockets[2];
    EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, theSockets));
    mPeers.push_back(theSockets[1]);
    Table();
    return mTable->Add(std::make_unique<Connection>(theSockets[0], mOptions.mLimits, mLedger, *mDistributor));
  }
  // The peer of the connection with this index sends, and the connection reads.
  void Send(Connection& aConnection, size_t anIndex, const std::string& aBytes) {
    EXPECT_EQ(static_cast<ssize_t>(aBytes.size()), write(mPeers[anIndex], aBytes.data(), aBytes.size()));
    std::vector<char> theBuffer(65536);
    EXPECT_EQ(ConnectionRead_Empty, aConnection.Read(theBuffer.data(), theBuffer.size(), 65536));
    mTable->HasRead(aConnection);
  }
  void WaitUntilDue() {
    while (mTable->NextDue() > 0) {
      usleep(static_cast<useconds_t>(mTable->NextDue()));
    }
    mTable->HandOverDue();
  }

  Options mOptions;
  TextSink mSink;
  Ledger mLedger{10, 0};
  std::unique_ptr<LogDistributor> mDistributor;
  std::unique_ptr<ConnectionTable> mTable;
  std::vector<int> mPeers;
};

static const char kPrefix[] = "I 14:03:07:042|b6f2a000|PLAYER     ";

// Another sender's line must not overtake it.
TEST_F(ConnectionTableTest, WhatCameWithASmallReadIsHandedOverAtOnce) {
  Connection& theConnection = Add();
  Send(theConnection, 0, kPrefix + std::string("one\n"));
  EXPECT_EQ("one.", mSink.mTexts);
  EXPECT_EQ(-1, Table().NextDue());
}

TEST_F(ConnectionTableTest, BehindALargeReadTheLastMessageWaitsForItsContinuation) {
  Connection& theConnection = Add();
  std::string theLong(1024, 'x');
  Send(theConnection, 0, kPrefix + theLong + "\n");
  EXPECT_EQ("", mSink.mTexts);
  EXPECT_LE(0, Table().NextDue());
  EXPECT_GE(2000, Table().NextDue());
  Send(theConnection, 0, "continued\n");
  EXPECT_EQ(theLong + ".continued.", mSink.mTexts);
}

TEST_F(ConnectionTableTest, QuietEndsTheWaiting) {
  Connection& theConnection = Add();
  std::string theLong(1024, 'x');
  Send(theConnection, 0, kPrefix + theLong + "\n");
  WaitUntilDue();
  EXPECT_EQ(theLong + ".", mSink.mTexts);
  EXPECT_EQ(-1, Table().NextDue());
}

TEST_F(ConnectionTableTest, ALineWithoutItsEndIsCutWhenItsTimeIsOver) {
  mOptions.mPartialTime = 20;
  Connection& theConnection = Add();
  Send(theConnection, 0, kPrefix + std::string("loading"));
  Table().HandOverDue();
  EXPECT_EQ("", mSink.mTexts);
  while (mSink.mTexts.empty()) {
    WaitUntilDue();
  }
  EXPECT_EQ("loading~", mSink.mTexts);
  EXPECT_EQ(-1, Table().NextDue());
}

TEST_F(ConnectionTableTest, BeyondTheMemoryForAllTheOneThatSendsIsCut) {
  mOptions.mMaxHeld = 10000;
  Connection& theFirst = Add();
  Connection& theSecond = Add();
  Send(theFirst, 0, kPrefix + std::string(6000, 'x'));
  EXPECT_EQ("", mSink.mTexts);
  Send(theSecond, 1, kPrefix + std::string(6000, 'y'));
  EXPECT_EQ(std::string(6000, 'y') + "~", mSink.mTexts);
  EXPECT_TRUE(theFirst.IsWaiting());
}

TEST_F(ConnectionTableTest, BeyondTheMemoryForAllAShortLineMayStillWait) {
  mOptions.mMaxHeld = 10000;
  Connection& theFirst = Add();
  Connection& theSecond = Add();
  Send(theFirst, 0, kPrefix + std::string(9900, 'x'));
  Send(theSecond, 1, kPrefix + std::string(900, 'y'));
  EXPECT_EQ("", mSink.mTexts);
}

TEST_F(ConnectionTableTest, RemovingHandsOverWhatThereIsAndFreesItsMemory) {
  mOptions.mMaxHeld = 10000;
  Connection& theFirst = Add();
  Connection& theSecond = Add();
  Send(theFirst, 0, kPrefix + std::string(6000, 'x'));
  Table().Remove(theFirst);
  EXPECT_EQ(std::string(6000, 'x') + "~", mSink.mTexts);
  EXPECT_EQ(1u, Table().Count());
  Send(theSecond, 1, kPrefix + std::string(6000, 'y'));
  EXPECT_TRUE(theSecond.IsWaiting());
}
