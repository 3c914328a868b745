#include "tools/qvlogd/BoundedQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

constexpr int kGenerous = 60000;  // milliseconds

bool PutText(BoundedQueue& aQueue, std::string aText, int aMilliseconds = 0) {
  return aQueue.Put(aText, aMilliseconds);
}

}  // namespace

TEST(BoundedQueue, BlocksComeOutInOrder) {
  BoundedQueue theQueue(1000);
  std::string theBlock = "old";
  EXPECT_TRUE(PutText(theQueue, "one\n"));
  EXPECT_TRUE(theQueue.Take(theBlock, 0));
  EXPECT_EQ("one\n", theBlock);
  EXPECT_TRUE(PutText(theQueue, "two\n"));
  EXPECT_TRUE(theQueue.Take(theBlock, 0));
  EXPECT_EQ("two\n", theBlock);
}

TEST(BoundedQueue, SmallBlocksAreJoined) {
  BoundedQueue theQueue(1000);
  std::string theBlock;
  PutText(theQueue, "one\n");
  PutText(theQueue, "two\n");
  EXPECT_EQ(8u, theQueue.Size());
  EXPECT_TRUE(theQueue.Take(theBlock, 0));
  EXPECT_EQ("one\ntwo\n", theBlock);
  EXPECT_EQ(0u, theQueue.Size());
}

TEST(BoundedQueue, LargeBlocksStayApart) {
  BoundedQueue theQueue(1000000);
  std::string theBlock;
  PutText(theQueue, std::string(200000, 'a'));
  PutText(theQueue, std::string(200000, 'b'));
  EXPECT_TRUE(theQueue.Take(theBlock, 0));
  EXPECT_EQ(std::string(200000, 'a'), theBlock);
  EXPECT_EQ(200000u, theQueue.Size());
}

TEST(BoundedQueue, WhatFitsIsTakenAndWhatDoesNotIsLeftToTheCaller) {
  BoundedQueue theQueue(8);
  EXPECT_TRUE(PutText(theQueue, "1234"));
  EXPECT_TRUE(PutText(theQueue, "5678"));
  std::string theBlock = "9";
  EXPECT_FALSE(theQueue.Put(theBlock));
  EXPECT_EQ("9", theBlock);
  EXPECT_EQ(8u, theQueue.Size());
}

TEST(BoundedQueue, ABlockThatIsPutIsEmptyAfterwards) {
  BoundedQueue theQueue(8);
  std::string theFirst = "1234";
  std::string theSecond = "5678";
  EXPECT_TRUE(theQueue.Put(theFirst));
  EXPECT_TRUE(theQueue.Put(theSecond));
  EXPECT_EQ("", theFirst);
  EXPECT_EQ("", theSecond);
}

TEST(BoundedQueue, AnEmptyQueueTakesABlockOfAnySize) {
  BoundedQueue theQueue(4);
  EXPECT_TRUE(PutText(theQueue, "12345678"));
  EXPECT_FALSE(PutText(theQueue, "9"));
}

TEST(BoundedQueue, AnEmptyBlockIsNothing) {
  BoundedQueue theQueue(4);
  std::string theBlock;
  EXPECT_TRUE(theQueue.Put(theBlock));
  EXPECT_FALSE(theQueue.Take(theBlock, 0));
}

TEST(BoundedQueue, TakingWaitsForABlock) {
  BoundedQueue theQueue(100);
  std::thread thePutter([&] { PutText(theQueue, "late"); });
  std::string theBlock;
  EXPECT_TRUE(theQueue.Take(theBlock, kGenerous));
  EXPECT_EQ("late", theBlock);
  thePutter.join();
}

TEST(BoundedQueue, PuttingWaitsForRoom) {
  BoundedQueue theQueue(4);
  PutText(theQueue, "1234");
  std::string theTaken;
  std::thread theTaker([&] { theQueue.Take(theTaken, kGenerous); });
  EXPECT_TRUE(PutText(theQueue, "5678", kGenerous));
  theTaker.join();
  EXPECT_EQ("1234", theTaken);
}

TEST(BoundedQueue, PuttingWaitsNoLongerThanItIsTold) {
  BoundedQueue theQueue(4);
  PutText(theQueue, "1234");
  auto theStart = std::chrono::steady_clock::now();
  EXPECT_FALSE(PutText(theQueue, "5678", 30));
  EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(30));
}

TEST(BoundedQueue, InterruptEndsOneWaiting) {
  BoundedQueue theQueue(100);
  std::string theBlock;
  std::thread theInterrupter([&] { theQueue.Interrupt(); });
  EXPECT_FALSE(theQueue.Take(theBlock, -1));
  theInterrupter.join();
  PutText(theQueue, "next");
  EXPECT_TRUE(theQueue.Take(theBlock, 0));
  EXPECT_FALSE(theQueue.IsClosed());
}

TEST(BoundedQueue, AClosedQueueGivesWhatItHoldsAndTakesNothing) {
  BoundedQueue theQueue(100);
  PutText(theQueue, "last");
  theQueue.Interrupt();
  theQueue.Close();
  EXPECT_TRUE(theQueue.IsClosed());
  EXPECT_FALSE(PutText(theQueue, "more"));
  std::string theBlock;
  EXPECT_TRUE(theQueue.Take(theBlock, -1));
  EXPECT_EQ("last", theBlock);
  EXPECT_FALSE(theQueue.Take(theBlock, -1));
}

TEST(BoundedQueue, CloseEndsTheWaitingForRoom) {
  BoundedQueue theQueue(4);
  PutText(theQueue, "1234");
  std::thread theCloser([&] { theQueue.Close(); });
  EXPECT_FALSE(PutText(theQueue, "5678", kGenerous));
  theCloser.join();
}

TEST(BoundedQueue, ManyBlocksFromOneThreadReachTheOtherWhole) {
  BoundedQueue theQueue(300);
  constexpr int kBlocks = 20000;
  std::thread thePutter([&] {
    for (int i = 0; i < kBlocks; ++i) {
      PutText(theQueue, std::to_string(i) + "\n", kGenerous);
    }
    theQueue.Close();
  });
  std::string theAll;
  std::string theBlock;
  while (theQueue.Take(theBlock, -1)) {
    theAll += theBlock;
  }
  thePutter.join();
  std::string theExpected;
  for (int i = 0; i < kBlocks; ++i) {
    theExpected += std::to_string(i) + "\n";
  }
  EXPECT_TRUE(theExpected == theAll);
}
