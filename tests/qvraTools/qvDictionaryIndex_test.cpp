// The index of a dictionary, and that nobody can tell a dictionary with one from a list that is walked
// through.
#include "qvraTools/qvDictionaryIndex_p.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "qvraTools/qvDictionary_p.h"
#include "qvraTools/qvMalloc.h"
#include "support/HeapUse.h"
#include "support/ScratchDictionary.h"

namespace {

// An index over keys that are added by hand, with hashes of the test's choice.
class ScratchIndex {
 public:
  ScratchIndex() { qvDictionaryIndex_S_Build(&mIndex, nullptr, 0); }
  ~ScratchIndex() { qvFree(mIndex.mPlaces); }

  void Add(const std::string& aKey, uint32 aHash) {
    mKeys.push_back(aKey);
    mEntries.push_back({mKeys.back().data(), 0, nullptr});
    qvDictionaryIndex_S_Add(&mIndex, aHash, mEntries.size() - 1);
  }
  void Remove(size_t aSlot, uint32 aHash) {
    qvDictionaryIndex_S_Remove(&mIndex, aHash, aSlot);
    mEntries.erase(mEntries.begin() + static_cast<ptrdiff_t>(aSlot));
  }
  size_t Find(const std::string& aKey, uint32 aHash) const {
    return qvDictionaryIndex_S_Find(&mIndex, mEntries.data(), aKey.c_str(), aKey.size(), aHash);
  }
  size_t PlaceCount() const { return mIndex.mPlaceCount; }
  size_t KeyCount() const { return mEntries.size(); }

 private:
  qvDictionaryIndex mIndex = {nullptr, 0, 0};
  std::deque<std::string> mKeys;  // which stay where they are
  std::vector<qvDictionaryEntry> mEntries;
};

// What a dictionary is by its description: slots in a list, walked through for everything.
class WalkedSlots {
 public:
  explicit WalkedSlots(size_t aCount) : mSlots(aCount) {}

  const std::string* Read(const std::string& aKey) const {
    for (const Slot& theSlot : mSlots) {
      if (!theSlot.mKey.empty() && theSlot.mKey == aKey) {
        return &theSlot.mValue;
      }
    }
    return nullptr;
  }
  void Write(const std::string& aKey, const std::string& aValue) {
    if (const std::string* theValue = Read(aKey)) {
      *const_cast<std::string*>(theValue) = aValue;
      return;
    }
    if (mUsed == mSlots.size()) {
      mSlots.resize(mSlots.size() + 8);
    }
    size_t theSlot = 0;
    while (!mSlots[theSlot].mKey.empty()) {
      ++theSlot;
    }
    mSlots[theSlot] = {aKey, aValue};
    ++mUsed;
  }
  void Delete(const std::string& aKey) {
    for (size_t i = 0; i < mSlots.size(); ++i) {
      if (!mSlots[i].mKey.empty() && mSlots[i].mKey == aKey) {
        mSlots.erase(mSlots.begin() + static_cast<ptrdiff_t>(i));
        mSlots.insert(mSlots.begin() + static_cast<ptrdiff_t>(--mUsed), Slot());
        return;
      }
    }
  }
  void DeleteAllWith(const std::string& aPrefix) {
    for (size_t i = 0; i < mUsed;) {
      if (mSlots[i].mKey.compare(0, aPrefix.size(), aPrefix) == 0) {
        Delete(mSlots[i].mKey);
      } else {
        ++i;
      }
    }
  }
  // All slots, the free ones too.
  std::string Content() const {
    std::string theContent = std::to_string(mUsed);
    for (const Slot& theSlot : mSlots) {
      theContent += "|" + theSlot.mKey + "=" + theSlot.mValue;
    }
    return theContent;
  }
  size_t UsedCount() const { return mUsed; }

 private:
  struct Slot {
    std::string mKey, mValue;
  };
  std::vector<Slot> mSlots;
  size_t mUsed = 0;
};

std::string SlotsOf(const qvDictionary* aDictionary) {
  std::string theContent = std::to_string(aDictionary->mEntryCount);
  for (size_t i = 0; i < aDictionary->mSize; ++i) {
    theContent += std::string("|") + aDictionary->mEntries[i].mKey + "=" + aDictionary->mEntries[i].mValue;
  }
  return theContent;
}

// One of aCount keys, of all lengths around the words that the index reads.
std::string KeyNumber(size_t aNumber) {
  return std::string(1, static_cast<char>('a' + aNumber % 3)) + "/" + std::string(aNumber % 19, 'k') +
         std::to_string(aNumber);
}

// Does the same at random to a dictionary and to its description, and compares all slots. Each phase prefers
// writing or deleting, so that sizes with and without an index, growing and shrinking, come up.
void CompareWithWalk(unsigned aSeed, size_t aKeyCount, bool afEmptyKeyToo) {
  std::mt19937 theRandom(aSeed);
  ScratchDictionary theDictionary;
  WalkedSlots theWalked(8);
  for (int i = 0; i < 2000; ++i) {
    const std::string theKey = KeyNumber(theRandom() % aKeyCount);
    const unsigned theWriteShare = i / 400 % 2 == 0 ? 80 : 30;
    const unsigned theChoice = theRandom() % 100;
    if (afEmptyKeyToo && i % 400 == 7) {
      theDictionary.Write("", "lost");
      theWalked.Write("", "lost");
    } else if (i % 700 == 699) {
      qvDictionary_S_DeleteKeysWith(theDictionary.Get(), "a/", 2);
      theWalked.DeleteAllWith("a/");
    } else if (theChoice < theWriteShare) {
      const std::string theValue(theRandom() % 40, static_cast<char>('A' + i % 26));
      theDictionary.Write(theKey, theValue);
      theWalked.Write(theKey, theValue);
    } else if (theChoice < 95) {
      qvDictionary_DeleteKey(theDictionary.Get(), theKey.c_str());
      theWalked.Delete(theKey);
    }
    const std::string* theValue = theWalked.Read(theKey);
    ASSERT_EQ(theValue != nullptr ? *theValue : "(absent)", theDictionary.Read(theKey)) << theKey;
    ASSERT_EQ(theWalked.UsedCount(), theDictionary->mEntryCount);
    if (i % 40 == 0) {
      ASSERT_EQ(theWalked.Content(), SlotsOf(theDictionary.Get())) << "step " << i;
    }
  }
}

}  // namespace

TEST(qvDictionaryIndex, KeysOfTheSameHashAreToldApart) {
  ScratchIndex theIndex;
  theIndex.Add("a", 7);
  theIndex.Add("b", 7);
  theIndex.Add("ab", 7);
  EXPECT_EQ(0u, theIndex.Find("a", 7));
  EXPECT_EQ(1u, theIndex.Find("b", 7));
  EXPECT_EQ(2u, theIndex.Find("ab", 7));
  EXPECT_EQ(kqvDictionary_NoSlot, theIndex.Find("", 7));
  EXPECT_EQ(kqvDictionary_NoSlot, theIndex.Find("abc", 7));
  EXPECT_EQ(kqvDictionary_NoSlot, theIndex.Find("a", 8));
}

TEST(qvDictionaryIndex, HalfOfThePlacesStayFree) {
  ScratchIndex theIndex;
  for (uint32 i = 0; i < 32; ++i) {
    theIndex.Add(std::to_string(i), i);
  }
  EXPECT_EQ(64u, theIndex.PlaceCount());
  theIndex.Add("32", 32);
  EXPECT_EQ(128u, theIndex.PlaceCount());
  for (uint32 i = 0; i < 33; ++i) {
    EXPECT_EQ(i, theIndex.Find(std::to_string(i), i));
  }
}

TEST(qvDictionaryIndex, RunAcrossTheEndOfThePlacesStaysWholeWhenAKeyIsRemoved) {
  ScratchIndex theIndex;
  theIndex.Add("a", 62);
  theIndex.Add("b", 63);
  theIndex.Add("c", 62);  // at 0
  theIndex.Add("d", 1);
  theIndex.Add("e", 0);  // at 2
  theIndex.Remove(1, 63);
  EXPECT_EQ(0u, theIndex.Find("a", 62));
  EXPECT_EQ(1u, theIndex.Find("c", 62));
  EXPECT_EQ(2u, theIndex.Find("d", 1));
  EXPECT_EQ(3u, theIndex.Find("e", 0));
  EXPECT_EQ(kqvDictionary_NoSlot, theIndex.Find("b", 63));
}

TEST(qvDictionaryIndex, FindsWhatIsThereAfterAnyAdditionsAndRemovals) {
  std::mt19937 theRandom(1);
  ScratchIndex theIndex;
  std::vector<std::pair<std::string, uint32>> theKeys;  // in the order of the slots
  for (int i = 0; i < 4000; ++i) {
    if (theKeys.empty() || theRandom() % 100 < (i / 500 % 2 == 0 ? 70u : 30u)) {
      // Few hashes, many of them at the ends of the places.
      const uint32 theHash = (theRandom() % 12 + 58) % 64 + theRandom() % 2 * 64;
      theKeys.emplace_back(std::to_string(i), theHash);
      theIndex.Add(theKeys.back().first, theHash);
    } else {
      const size_t theSlot = theRandom() % theKeys.size();
      theIndex.Remove(theSlot, theKeys[theSlot].second);
      theKeys.erase(theKeys.begin() + static_cast<ptrdiff_t>(theSlot));
    }
    for (size_t k = i % 7; k < theKeys.size(); k += 7) {
      ASSERT_EQ(k, theIndex.Find(theKeys[k].first, theKeys[k].second)) << "step " << i;
    }
  }
}

TEST(qvDictionaryIndex, EveryByteOfAKeyCountsForItsHash) {
  for (size_t theLength = 1; theLength < 40; ++theLength) {
    std::string theKey(theLength, 'k');
    const uint32 theHash = qvDictionaryIndex_S_Hash(theKey.data(), theLength);
    EXPECT_NE(theHash, qvDictionaryIndex_S_Hash(theKey.data(), theLength - 1)) << theLength;
    for (size_t i = 0; i < theLength; ++i) {
      theKey[i] = 'K';
      EXPECT_NE(theHash, qvDictionaryIndex_S_Hash(theKey.data(), theLength)) << theLength << " at " << i;
      theKey[i] = 'k';
    }
  }
}

TEST(qvDictionaryIndex, NumberedKeysHaveHashesOfTheirOwn) {
  std::map<uint32, int> theHashes;
  for (int i = 0; i < 10000; ++i) {
    const std::string theKey = "section/key" + std::to_string(i);
    theHashes[qvDictionaryIndex_S_Hash(theKey.data(), theKey.size())]++;
  }
  EXPECT_LE(9990u, theHashes.size());
}

TEST(qvDictionaryIndex, DictionaryIsTheListThatIsWalkedThroughWithFewKeys) {
  for (unsigned theSeed = 0; theSeed < 10; ++theSeed) {
    CompareWithWalk(theSeed, 12, false);
  }
}

TEST(qvDictionaryIndex, DictionaryIsTheListThatIsWalkedThroughWithManyKeys) {
  for (unsigned theSeed = 0; theSeed < 3; ++theSeed) {
    CompareWithWalk(theSeed, 300, false);
  }
}

TEST(qvDictionaryIndex, DictionaryIsTheListThatIsWalkedThroughAlsoWithTheEmptyKey) {
  for (unsigned theSeed = 0; theSeed < 10; ++theSeed) {
    CompareWithWalk(theSeed, 40, true);
  }
}

TEST(qvDictionaryIndex, IndexGoesWithItsDictionary) {
  ExpectNoHeapGrowth([] {
    ScratchDictionary theDictionary;
    for (int i = 0; i < 100; ++i) {
      theDictionary.Write(std::to_string(i), "value");
    }
    for (int i = 0; i < 60; ++i) {
      theDictionary.Write(std::to_string(i), "a longer value");
      qvDictionary_DeleteKey(theDictionary.Get(), std::to_string(i).c_str());
    }
  });
}

TEST(qvDictionaryIndex, AnIndexThatIsBuiltAgainDoesNotGrow) {
  ScratchDictionary theDictionary;
  for (int i = 0; i < 100; ++i) {
    theDictionary.Write("kept/" + std::to_string(i), "value");
  }
  ExpectNoHeapGrowth([&theDictionary] {
    theDictionary.Write("passing/key", "value");
    qvDictionary_S_DeleteKeysWith(theDictionary.Get(), "passing/", 8);
  });
}

TEST(qvDictionaryIndex, EmptyTextsOfFreeSlotsAreTheirOwn) {
  ScratchDictionary theDictionary(9);
  theDictionary.Write("key", "value");
  std::map<const char*, int> theTexts;
  for (size_t i = 0; i < theDictionary->mSize; ++i) {
    theTexts[theDictionary->mEntries[i].mKey]++;
    theTexts[theDictionary->mEntries[i].mValue]++;
  }
  EXPECT_EQ(18u, theTexts.size());
}
