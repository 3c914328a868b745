// ScratchDictionary.h - a dictionary for one test, released at its end.
#ifndef TESTS_SUPPORT_SCRATCHDICTIONARY_H
#define TESTS_SUPPORT_SCRATCHDICTIONARY_H

#include <gtest/gtest.h>

#include <string>

#include "qvraTools/qvDictionary.h"
#include "qvraTools/qvINIFile.h"

class ScratchDictionary {
 public:
  explicit ScratchDictionary(size_t aSlots = 0) : mDictionary(qvDictionary_New(aSlots)) {}
  ~ScratchDictionary() { qvDictionary_Delete(mDictionary); }
  ScratchDictionary(const ScratchDictionary&) = delete;
  ScratchDictionary& operator=(const ScratchDictionary&) = delete;
  qvDictionary* operator->() const { return mDictionary; }
  qvDictionary* Get() const { return mDictionary; }

  void Write(const std::string& aKey, const std::string& aValue) {
    qvDictionary_WriteKey(mDictionary, aKey.c_str(), aValue.c_str());
  }
  // The value, or "(absent)".
  std::string Read(const std::string& aKey) const {
    return qvDictionary_ReadKey(mDictionary, aKey.c_str(), "(absent)");
  }
  // Adds what an INI text holds.
  void Load(const std::string& aText) {
    EXPECT_EQ(1, qvINIFile_LoadINIFileFromBuffer(aText.data(), aText.size(), mDictionary));
  }
  // All entries in order, "key=value", with '|' between them.
  std::string Content() const {
    std::string theContent;
    for (size_t i = 0; i < qvDictionary_GetEntryCount(mDictionary); ++i) {
      theContent += i > 0 ? "|" : "";
      theContent += qvDictionary_GetKeyAtIndex(mDictionary, i);
      theContent += "=";
      theContent += qvDictionary_GetValueAtIndex(mDictionary, i);
    }
    return theContent;
  }

 private:
  qvDictionary* mDictionary;
};

// The entries that an INI text gives in a fresh dictionary, as Content() shows them.
inline std::string LoadedContent(const std::string& aText) {
  ScratchDictionary theDictionary;
  theDictionary.Load(aText);
  return theDictionary.Content();
}

#endif
