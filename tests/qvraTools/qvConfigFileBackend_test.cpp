// The facade with a back-end that only remembers what it is called with.

#include <gtest/gtest.h>
#include <stdint.h>

#include <string>

#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvConfigFileINIBackend.h"
#include "support/OwnedText.h"

namespace {

std::string sCalls;

std::string Text(const char* aText) { return aText != nullptr ? aText : "(null)"; }

void Note(const std::string& aCall) { sCalls += aCall + ";"; }

// The calls since the last look.
std::string TakeCalls() {
  std::string theCalls;
  theCalls.swap(sCalls);
  return theCalls;
}

qvConfigFileBackend RememberingBackend() {
  qvConfigFileBackend theTable = {};
  theTable.mDelete = [](qvConfigFile*) { Note("delete"); };
  theTable.mReset = [](qvConfigFile*) { Note("reset"); };
  theTable.mSave = [](qvConfigFile*) { return Note("save"), 1; };
  theTable.mCreatePath = [](qvConfigFile*, const char* aPath) {
    return Note(std::string("create ") + aPath), aPath[0] != '-' ? 1 : 0;
  };
  theTable.mWriteKeyAsString = [](qvConfigFile*, const char* aSection, const char* aKey, const char* aValue) {
    return Note("string " + Text(aSection) + " " + aKey + "=" + aValue), 1;
  };
  theTable.mWriteKeyAsUInt32 = [](qvConfigFile*, const char* aSection, const char* aKey, uint32 aValue) {
    return Note("uint32 " + Text(aSection) + " " + aKey + "=" + std::to_string(aValue)), 1;
  };
  theTable.mWriteKeyAsInt32 = [](qvConfigFile*, const char* aSection, const char* aKey, int32 aValue) {
    return Note("int32 " + Text(aSection) + " " + aKey + "=" + std::to_string(aValue)), 1;
  };
  theTable.mReadKeyAsString = [](qvConfigFile*, const char* aSection, const char* aKey,
                                 const char* aDefault) -> const char* {
    return Note("string " + Text(aSection) + " " + aKey + " " + Text(aDefault)), "100%%";
  };
  theTable.mReadKeyAsUInt32 = [](qvConfigFile*, const char* aSection, const char* aKey, uint32 aDefault) {
    return Note("uint32 " + Text(aSection) + " " + aKey + " " + std::to_string(aDefault)), aDefault;
  };
  theTable.mReadKeyAsInt32 = [](qvConfigFile*, const char* aSection, const char* aKey, int32 aDefault) {
    return Note("int32 " + Text(aSection) + " " + aKey + " " + std::to_string(aDefault)), aDefault;
  };
  theTable.mReadKeyAsBool = [](qvConfigFile*, const char* aSection, const char* aKey, int aDefault) {
    return Note("bool " + Text(aSection) + " " + aKey + " " + std::to_string(aDefault)), 1;
  };
  theTable.mGetSectionCount = [](qvConfigFile*, int afForReadOnlyFile) {
    return Note("sections " + std::to_string(afForReadOnlyFile)), SIZE_MAX;
  };
  theTable.mGetSectionName = [](qvConfigFile*, size_t anIndex, int afForReadOnlyFile) -> const char* {
    return Note("section " + std::to_string(anIndex) + " " + std::to_string(afForReadOnlyFile)), "s";
  };
  theTable.mGetKeyCount = [](qvConfigFile*, const char* aSection, int afForReadOnlyFile) {
    return Note("keys " + Text(aSection) + " " + std::to_string(afForReadOnlyFile)), SIZE_MAX;
  };
  theTable.mGetKeyName = [](qvConfigFile*, const char* aSection, size_t anIndex,
                            int afForReadOnlyFile) -> const char* {
    return Note("key " + Text(aSection) + " " + std::to_string(anIndex) + " " +
                std::to_string(afForReadOnlyFile)),
           "k";
  };
  theTable.mDeleteSection = [](qvConfigFile*, const char* aSection) {
    return Note("delete " + Text(aSection)), 1;
  };
  theTable.mDeleteKey = [](qvConfigFile*, const char* aSection, const char* aKey) {
    return Note("delete " + Text(aSection) + " " + aKey), 1;
  };
  theTable.mReleaseBackend = [](qvConfigFileBackend*) { Note("release"); };
  return theTable;
}

// A configuration file of that back-end.
struct Remembering {
  qvConfigFileBackend mTable = RememberingBackend();
  qvConfigFile mObject = {&mTable};
  qvConfigFile* Get() { return &mObject; }
};

qvConfigFile* FailingNew(qvConfigFileBackend*, const char* aReadOnlyFileName, const char* aReadWriteFileName,
                         const char* aFileName) {
  Note("new " + Text(aReadOnlyFileName) + " " + Text(aReadWriteFileName) + " " + Text(aFileName));
  return nullptr;
}

}  // namespace

TEST(qvConfigFileBackend, ReadsAreForwarded) {
  Remembering theFile;
  EXPECT_EQ(1, qvConfigFile_OptionIsSet(theFile.Get(), "a", "b", 7));
  EXPECT_EQ(INT32_MIN, qvConfigFile_GetInt32(theFile.Get(), nullptr, "i", INT32_MIN));
  EXPECT_EQ(UINT32_MAX, qvConfigFile_GetUInt32(theFile.Get(), "a", "u", UINT32_MAX));
  EXPECT_STREQ("100%%", qvConfigFile_GetString(theFile.Get(), "a", "s", nullptr));
  EXPECT_EQ("100%", TakeText(qvConfigFile_GetStringWithSubstitution(theFile.Get(), "a", "s", "x", nullptr)));
  EXPECT_EQ("bool a b 7;int32 (null) i -2147483648;uint32 a u 4294967295;string a s (null);string a s x;",
            TakeCalls());
}

TEST(qvConfigFileBackend, NarrowNumbersAreReadAsInt32WithTheLargestAsDefault) {
  Remembering theFile;
  EXPECT_EQ(9, qvConfigFile_GetUInt16(theFile.Get(), "a", "k", 9));
  EXPECT_EQ(9, qvConfigFile_GetUInt8(theFile.Get(), "a", "l", 9));
  EXPECT_EQ("int32 a k 2147483647;int32 a l 2147483647;", TakeCalls());
}

TEST(qvConfigFileBackend, WritesDeletionsAndSavesAreForwarded) {
  Remembering theFile;
  EXPECT_EQ(1, qvConfigFile_SetString(theFile.Get(), "a", "s", "v"));
  EXPECT_EQ(1, qvConfigFile_SetInt32(theFile.Get(), nullptr, "i", INT32_MIN));
  EXPECT_EQ(1, qvConfigFile_SetUInt32(theFile.Get(), "a", "u", UINT32_MAX));
  EXPECT_EQ(1, qvConfigFile_DeleteKey(theFile.Get(), "a", "s"));
  EXPECT_EQ(1, qvConfigFile_DeleteSection(theFile.Get(), "a"));
  EXPECT_EQ(1, qvConfigFile_Save(theFile.Get()));
  qvConfigFile_Reset(theFile.Get());
  EXPECT_EQ("string a s=v;int32 (null) i=-2147483648;uint32 a u=4294967295;delete a s;delete a;save;reset;",
            TakeCalls());
}

TEST(qvConfigFileBackend, EnumerationIsForwarded) {
  Remembering theFile;
  EXPECT_EQ(SIZE_MAX, qvConfigFile_GetSectionCount(theFile.Get(), 1));
  EXPECT_STREQ("s", qvConfigFile_GetSectionName(theFile.Get(), 3, 0));
  EXPECT_EQ(SIZE_MAX, qvConfigFile_GetKeyCount(theFile.Get(), "a", 0));
  EXPECT_STREQ("k", qvConfigFile_GetKeyName(theFile.Get(), "a", 4, 1));
  EXPECT_EQ("sections 1;section 3 0;keys a 0;key a 4 1;", TakeCalls());
}

TEST(qvConfigFileBackend, PathsAreMadeOneAfterTheOtherUntilOneFails) {
  Remembering theFile;
  EXPECT_EQ(1, qvConfigFile_CreatePaths(theFile.Get(), "ro", "rw"));
  EXPECT_EQ(0, qvConfigFile_CreatePaths(theFile.Get(), "-ro", "rw"));
  EXPECT_EQ(0, qvConfigFile_CreatePaths(theFile.Get(), "ro", "-rw"));
  EXPECT_EQ("create ro;create rw;create -ro;create ro;create -rw;", TakeCalls());
}

TEST(qvConfigFileBackend, DeleteReleasesTheBackendAfterTheObject) {
  Remembering theFile;
  qvConfigFile_Delete(theFile.Get());
  EXPECT_EQ("delete;release;", TakeCalls());
}

TEST(qvConfigFileBackend, NewGivesTheBackendAllThreeNamesAndReleasesItWhenItFails) {
  qvConfigFileBackend* theTable = qvConfigFile_INI_GetBackend();
  theTable->mNew = FailingNew;
  EXPECT_EQ(nullptr, qvConfigFile_New("ro", nullptr, "file"));
  EXPECT_EQ("new ro (null) file;", TakeCalls());
  // This is the last reference, so the next table is a new one.
  qvConfigFile_INI_ReleaseBackend(theTable);
  theTable = qvConfigFile_INI_GetBackend();
  EXPECT_NE(FailingNew, theTable->mNew);
  qvConfigFile_INI_ReleaseBackend(theTable);
}

TEST(qvConfigFileBackend, ConfigurationFileHoldsOneReferenceToTheTableWhileItLives) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, nullptr, nullptr);
  theConfigFile->mBackend->mNew = FailingNew;  // marks the table
  qvConfigFileBackend* theTable = qvConfigFile_INI_GetBackend();
  EXPECT_EQ(FailingNew, theTable->mNew);
  qvConfigFile_INI_ReleaseBackend(theTable);
  qvConfigFile_Delete(theConfigFile);
  theTable = qvConfigFile_INI_GetBackend();
  EXPECT_NE(FailingNew, theTable->mNew) << "a reference is left";
  qvConfigFile_INI_ReleaseBackend(theTable);
}
