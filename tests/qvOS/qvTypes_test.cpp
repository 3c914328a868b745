#include "qvOS/qvTypes.h"

#include <gtest/gtest.h>

#include <type_traits>

TEST(qvTypes, EveryIntegerHasTheWidthAndTheSignOfItsName) {
  EXPECT_EQ(1u, sizeof(int8));
  EXPECT_EQ(2u, sizeof(int16));
  EXPECT_EQ(4u, sizeof(int32));
  EXPECT_EQ(8u, sizeof(int64));
  EXPECT_EQ(1u, sizeof(uint8));
  EXPECT_EQ(2u, sizeof(uint16));
  EXPECT_EQ(4u, sizeof(uint32));
  EXPECT_EQ(8u, sizeof(uint64));
  EXPECT_EQ(8u, sizeof(qvint64_t));
  EXPECT_EQ(8u, sizeof(qvuint64_t));
  EXPECT_TRUE(std::is_signed<int8>::value && std::is_unsigned<uint8>::value);
  EXPECT_TRUE(std::is_signed<qvint64_t>::value && std::is_unsigned<qvuint64_t>::value);
}

TEST(qvTypes, TheLargestUInt32IsWhat32BitsHold) { EXPECT_EQ(4294967295u, kqvuint32_max); }
