#include "qvraTools/qvDictionary.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <signal.h>
#include <stdint.h>

#include <cstddef>
#include <string>

#include "support/ChildProcess.h"
#include "support/FatalLine.h"
#include "support/ScratchDictionary.h"

// The sanitizers' allocators end the process themselves unless they are told to return null.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

namespace {

void ExpectFreeSlot(const qvDictionaryEntry& anEntry) {
  EXPECT_STREQ("", anEntry.mKey);
  EXPECT_EQ(0u, anEntry.mHash);
  EXPECT_STREQ("", anEntry.mValue);
}

}  // namespace

TEST(qvDictionary, SmallestSlotCountAndGrowthStepAreEight) { EXPECT_EQ(8, kqvDictionary_DefaultHashSize); }

TEST(qvDictionary, DictionaryHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvDictionary, mSize));
  EXPECT_EQ(sizeof(size_t), offsetof(qvDictionary, mEntries));
  EXPECT_EQ(sizeof(size_t) + sizeof(void*), offsetof(qvDictionary, mEntryCount));
}

TEST(qvDictionary, EntryHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvDictionaryEntry, mKey));
  EXPECT_EQ(sizeof(char*), offsetof(qvDictionaryEntry, mHash));
  EXPECT_EQ(2 * sizeof(char*), offsetof(qvDictionaryEntry, mValue));
  EXPECT_EQ(4u, sizeof(qvDictionaryEntry::mHash));
}

TEST(qvDictionary, NewOneAskedForNoSlotsHasEightFreeOnes) {
  ScratchDictionary theDictionary(0);
  ASSERT_EQ(8u, theDictionary->mSize);
  EXPECT_EQ(0u, theDictionary->mEntryCount);
  for (size_t i = 0; i < 8; ++i) {
    ExpectFreeSlot(theDictionary->mEntries[i]);
  }
}

TEST(qvDictionary, NewOneAskedForThreeSlotsHasEight) { EXPECT_EQ(8u, ScratchDictionary(3)->mSize); }

TEST(qvDictionary, NewOneAskedForEightSlotsHasEight) { EXPECT_EQ(8u, ScratchDictionary(8)->mSize); }

TEST(qvDictionary, NewOneAskedForNineSlotsHasNine) {
  ScratchDictionary theDictionary(9);
  ASSERT_EQ(9u, theDictionary->mSize);
  ExpectFreeSlot(theDictionary->mEntries[8]);
}

TEST(qvDictionary, SlotsThatNoMemoryHoldsEndTheProcess) {
  const std::string theExpected = sizeof(size_t) == 8
                                      ? "qvFatalError: memory:realloc, size=18446744073709551615"
                                      : "qvFatalError: memory:realloc, size=4294967295";
  // The bytes of these slots wrap round to those of a few, and to nearly all that there are.
  for (size_t theSlots : {SIZE_MAX / sizeof(qvDictionaryEntry) + 1, SIZE_MAX}) {
    ChildResult theResult = RunInChild([&] { qvDictionary_New(theSlots); });
    EXPECT_EQ(SIGABRT, theResult.mSignal) << theSlots;
    EXPECT_EQ(theExpected, FatalLine(theResult.mStderr)) << theSlots;
  }
}

TEST(qvDictionary, NinthInsertionGrowsToSixteenSlotsAndEntriesKeepTheirIndices) {
  ScratchDictionary theDictionary(3);
  for (char theLetter = 'a'; theLetter < 'i'; ++theLetter) {
    theDictionary.Write(std::string(1, theLetter), "1");
  }
  EXPECT_EQ(8u, theDictionary->mSize);
  theDictionary.Write("i", "9");
  EXPECT_EQ(16u, theDictionary->mSize);
  EXPECT_EQ(9u, theDictionary->mEntryCount);
  EXPECT_EQ("a=1|b=1|c=1|d=1|e=1|f=1|g=1|h=1|i=9", theDictionary.Content());
  for (size_t i = 9; i < 16; ++i) {
    ExpectFreeSlot(theDictionary->mEntries[i]);
  }
}

TEST(qvDictionary, DeletingNullIsIgnored) { qvDictionary_Delete(nullptr); }

TEST(qvDictionary, WrittenKeyReadsBack) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "value");
  EXPECT_EQ("value", theDictionary.Read("key"));
}

TEST(qvDictionary, TextsAreCopied) {
  ScratchDictionary theDictionary;
  char theKey[] = "key";
  char theValue[] = "value";
  qvDictionary_WriteKey(theDictionary.Get(), theKey, theValue);
  theKey[0] = theValue[0] = '-';
  EXPECT_EQ("key=value", theDictionary.Content());
}

TEST(qvDictionary, KeysAreComparedWithTheirCase) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "lower");
  theDictionary.Write("KEY", "upper");
  EXPECT_EQ("key=lower|KEY=upper", theDictionary.Content());
}

TEST(qvDictionary, KeysMayHoldAnyByteButZero) {
  ScratchDictionary theDictionary;
  theDictionary.Write("\x01\x7f\x80\xff", "\xff\x80");
  EXPECT_EQ("\xff\x80", theDictionary.Read("\x01\x7f\x80\xff"));
}

TEST(qvDictionary, LongTextsAreKept) {
  ScratchDictionary theDictionary;
  std::string theKey(100000, 'k');
  std::string theValue(200000, 'v');
  theDictionary.Write(theKey, theValue);
  EXPECT_EQ(theValue, theDictionary.Read(theKey));
}

TEST(qvDictionary, AbsentKeyGivesTheDefaultPointerItself) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "text");
  char theDefault[] = "text";
  EXPECT_EQ(theDefault, qvDictionary_ReadKey(theDictionary.Get(), "other", theDefault));
  EXPECT_EQ(nullptr, qvDictionary_ReadKey(theDictionary.Get(), "other", nullptr));
}

TEST(qvDictionary, StoredValueIsNeverTheDefaultPointerEvenWhenEqual) {
  ScratchDictionary theDictionary;
  char theDefault[] = "text";
  qvDictionary_WriteKey(theDictionary.Get(), "key", theDefault);
  EXPECT_NE(theDefault, qvDictionary_ReadKey(theDictionary.Get(), "key", theDefault));
}

TEST(qvDictionary, RewrittenKeyKeepsItsIndex) {
  ScratchDictionary theDictionary;
  theDictionary.Write("a", "1");
  theDictionary.Write("b", "2");
  theDictionary.Write("c", "3");
  theDictionary.Write("b", "a much longer value");
  EXPECT_EQ("a=1|b=a much longer value|c=3", theDictionary.Content());
  theDictionary.Write("b", "");
  EXPECT_EQ("a=1|b=|c=3", theDictionary.Content());
}

TEST(qvDictionary, ValueReadFromAnEntryMayBeWrittenBackToIt) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "a value that is longer than most");
  const char* theValue = qvDictionary_ReadKey(theDictionary.Get(), "key", nullptr);
  qvDictionary_WriteKey(theDictionary.Get(), "key", theValue);
  EXPECT_EQ("a value that is longer than most", theDictionary.Read("key"));
  theValue = qvDictionary_ReadKey(theDictionary.Get(), "key", nullptr);
  qvDictionary_WriteKey(theDictionary.Get(), "key", theValue + 8);
  EXPECT_EQ("that is longer than most", theDictionary.Read("key"));
}

TEST(qvDictionary, ValueRewrittenWithAnEqualTextStaysWhereItIs) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "value");
  const char* theValue = qvDictionary_ReadKey(theDictionary.Get(), "key", nullptr);
  theDictionary.Write("key", "value");
  EXPECT_EQ(theValue, qvDictionary_ReadKey(theDictionary.Get(), "key", nullptr));
}

TEST(qvDictionary, NullValueIsStoredAsTheEmptyText) {
  ScratchDictionary theDictionary;
  qvDictionary_WriteKey(theDictionary.Get(), "key", nullptr);
  EXPECT_EQ("", theDictionary.Read("key"));
  theDictionary.Write("key", "value");
  qvDictionary_WriteKey(theDictionary.Get(), "key", nullptr);
  EXPECT_EQ("", theDictionary.Read("key"));
}

TEST(qvDictionary, DeletedEntryLetsTheEntriesBehindItMoveDown) {
  ScratchDictionary theDictionary;
  for (char theLetter = 'a'; theLetter < 'f'; ++theLetter) {
    theDictionary.Write(std::string(1, theLetter), std::string(1, theLetter));
  }
  qvDictionary_DeleteKey(theDictionary.Get(), "c");
  EXPECT_EQ("a=a|b=b|d=d|e=e", theDictionary.Content());
  EXPECT_EQ("(absent)", theDictionary.Read("c"));
  EXPECT_EQ("d", theDictionary.Read("d"));
  ExpectFreeSlot(theDictionary->mEntries[4]);
}

TEST(qvDictionary, LastEntryOfAFullDictionaryCanBeDeleted) {
  ScratchDictionary theDictionary;
  for (char theLetter = 'a'; theLetter < 'i'; ++theLetter) {
    theDictionary.Write(std::string(1, theLetter), "1");
  }
  qvDictionary_DeleteKey(theDictionary.Get(), "h");
  EXPECT_EQ(7u, theDictionary->mEntryCount);
  EXPECT_EQ(8u, theDictionary->mSize);
  ExpectFreeSlot(theDictionary->mEntries[7]);
}

TEST(qvDictionary, ArrayNeverShrinks) {
  ScratchDictionary theDictionary;
  for (int i = 0; i < 9; ++i) {
    theDictionary.Write(std::to_string(i), "1");
  }
  for (int i = 0; i < 9; ++i) {
    qvDictionary_DeleteKey(theDictionary.Get(), std::to_string(i).c_str());
  }
  EXPECT_EQ(16u, theDictionary->mSize);
  EXPECT_EQ(0u, theDictionary->mEntryCount);
}

TEST(qvDictionary, DeletingAnAbsentKeyIsIgnored) {
  ScratchDictionary theDictionary;
  qvDictionary_DeleteKey(theDictionary.Get(), "key");
  theDictionary.Write("key", "value");
  qvDictionary_DeleteKey(theDictionary.Get(), "other");
  qvDictionary_DeleteKey(theDictionary.Get(), "");
  EXPECT_EQ("key=value", theDictionary.Content());
}

TEST(qvDictionary, KeyWrittenAfterADeletionGoesToTheEnd) {
  ScratchDictionary theDictionary;
  theDictionary.Write("a", "1");
  theDictionary.Write("b", "2");
  qvDictionary_DeleteKey(theDictionary.Get(), "a");
  theDictionary.Write("a", "3");
  EXPECT_EQ("b=2|a=3", theDictionary.Content());
}

TEST(qvDictionary, ManyEntriesKeepTheirOrder) {
  ScratchDictionary theDictionary;
  std::string theExpected;
  for (int i = 0; i < 500; ++i) {
    theDictionary.Write("k" + std::to_string(i), std::to_string(i * 3));
    theExpected += (i > 0 ? "|k" : "k") + std::to_string(i) + "=" + std::to_string(i * 3);
  }
  EXPECT_EQ(theExpected, theDictionary.Content());
  EXPECT_EQ(504u, theDictionary->mSize);
}

TEST(qvDictionary, HashIsTheOneAtATimeHash) {
  const struct {
    const char* mKey;
    uint32 mHash;
    const char* mWhy;
  } kCases[] = {
      {"a", 0xca2e9442u, "one letter"},
      {"abc", 0xed131f5bu, "three letters"},
      {"default", 0xe4df46d5u, "a section"},
      {"The quick brown fox jumps over the lazy dog", 0x519e91f5u, "many letters"},
      {"\x80", 0x277fcedbu, "bytes count as unsigned"},
      {"\xff", 0xc7b20f1du, "bytes count as unsigned"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    ScratchDictionary theDictionary;
    theDictionary.Write(theCase.mKey, "");
    EXPECT_EQ(theCase.mHash, theDictionary->mEntries[0].mHash);
  }
}

TEST(qvDictionary, KeysOfTheSameHashAreToldApart) {
  ScratchDictionary theDictionary;
  theDictionary.Write("thaea", "first");
  theDictionary.Write("puwaa", "second");
  ASSERT_EQ(theDictionary->mEntries[0].mHash, theDictionary->mEntries[1].mHash);
  EXPECT_EQ("first", theDictionary.Read("thaea"));
  EXPECT_EQ("second", theDictionary.Read("puwaa"));
  qvDictionary_DeleteKey(theDictionary.Get(), "thaea");
  EXPECT_EQ("puwaa=second", theDictionary.Content());
}

TEST(qvDictionary, KeyWhoseHashIsZeroIsFound) {
  ScratchDictionary theDictionary;
  theDictionary.Write("oxtesww", "value");
  ASSERT_EQ(0u, theDictionary->mEntries[0].mHash);
  EXPECT_EQ("value", theDictionary.Read("oxtesww"));
}

TEST(qvDictionary, WritingToNullFailsAnAssertion) {
  EXPECT_QV_ASSERTION(qvDictionary_WriteKey(nullptr, "key", "value"),
                      "(aDictionary != NULL) && (aKey != NULL)", "qvDictionary");
}

TEST(qvDictionary, WritingANullKeyFailsAnAssertion) {
  ScratchDictionary theDictionary;
  EXPECT_QV_ASSERTION(qvDictionary_WriteKey(theDictionary.Get(), nullptr, "value"),
                      "(aDictionary != NULL) && (aKey != NULL)", "qvDictionary");
}

TEST(qvDictionary, IndexOutOfRangeFailsAnAssertion) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "value");
  EXPECT_QV_ASSERTION(qvDictionary_GetKeyAtIndex(theDictionary.Get(), 1),
                      "anIndex < aDictionary->mEntryCount", "qvDictionary");
  EXPECT_QV_ASSERTION(qvDictionary_GetValueAtIndex(theDictionary.Get(), 1),
                      "anIndex < aDictionary->mEntryCount", "qvDictionary");
  EXPECT_QV_ASSERTION(qvDictionary_GetKeyAtIndex(theDictionary.Get(), static_cast<size_t>(-1)),
                      "anIndex < aDictionary->mEntryCount", "qvDictionary");
}

TEST(qvDictionaryKept, TheEmptyKeyRaisesTheCountButIsNeverFound) {
  ScratchDictionary theDictionary;
  theDictionary.Write("a", "1");
  theDictionary.Write("", "lost");
  EXPECT_EQ(2u, qvDictionary_GetEntryCount(theDictionary.Get()));
  EXPECT_EQ("(absent)", theDictionary.Read(""));
  EXPECT_STREQ("", qvDictionary_GetKeyAtIndex(theDictionary.Get(), 1));
  EXPECT_STREQ("lost", qvDictionary_GetValueAtIndex(theDictionary.Get(), 1));
  EXPECT_EQ(0u, theDictionary->mEntries[1].mHash);
  // The slot reads as free, so the next key takes it.
  theDictionary.Write("b", "2");
  EXPECT_EQ(3u, qvDictionary_GetEntryCount(theDictionary.Get()));
  EXPECT_STREQ("b", qvDictionary_GetKeyAtIndex(theDictionary.Get(), 1));
  EXPECT_EQ("2", theDictionary.Read("b"));
  qvDictionary_DeleteKey(theDictionary.Get(), "a");
  EXPECT_EQ("2", theDictionary.Read("b"));
  EXPECT_EQ(2u, qvDictionary_GetEntryCount(theDictionary.Get()));
}

TEST(qvDictionary, ValueOfAnEmptyKeyMayBeWrittenUnderTheKeyThatTakesItsSlot) {
  ScratchDictionary theDictionary;
  theDictionary.Write("", "a value that is longer than most");
  qvDictionary_WriteKey(theDictionary.Get(), "a", qvDictionary_GetValueAtIndex(theDictionary.Get(), 0));
  EXPECT_EQ("a value that is longer than most", theDictionary.Read("a"));
}

// Some of the lengths fill a block of the allocator to its last byte.
TEST(qvDictionary, ANewValueHasRoomForItsTerminator) {
  ScratchDictionary theDictionary;
  theDictionary.Write("key", "");
  for (size_t theLength = 1; theLength <= 64; ++theLength) {
    theDictionary.Write("key", std::string(theLength, 'x'));
    EXPECT_LE(theLength + 1, malloc_usable_size(theDictionary->mEntries[0].mValue));
  }
}
