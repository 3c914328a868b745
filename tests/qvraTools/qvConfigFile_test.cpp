// The two layers, through the facade.

#include "qvraTools/qvConfigFile.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <string>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/OwnedText.h"
#include "support/ScratchFolder.h"

namespace {

// A configuration file over ro.ini and rw.ini of a folder of its own.
class Layers {
 public:
  Layers(const std::string& aReadOnlyText, const std::string& aReadWriteText) {
    WriteWholeFile(mFolder.File("ro.ini"), aReadOnlyText);
    WriteWholeFile(mFolder.File("rw.ini"), aReadWriteText);
    Open();
  }
  ~Layers() { qvConfigFile_Delete(mConfigFile); }
  Layers(const Layers&) = delete;
  Layers& operator=(const Layers&) = delete;

  // Forgets what was not saved.
  void Reopen() {
    qvConfigFile_Delete(mConfigFile);
    Open();
  }
  qvConfigFile* Get() const { return mConfigFile; }
  std::string GetString(const char* aSection, const char* aKey) const {
    return qvConfigFile_GetString(mConfigFile, aSection, aKey, "(default)");
  }
  // What the read-write file holds after a save.
  std::string SavedText() {
    EXPECT_EQ(1, qvConfigFile_Save(mConfigFile));
    return ReadWholeFile(mFolder.File("rw.ini"));
  }
  const ScratchFolder& Folder() const { return mFolder; }

 private:
  void Open() {
    mConfigFile = qvConfigFile_New(mFolder.File("ro.ini").c_str(), mFolder.File("rw.ini").c_str(), "ignored");
  }

  ScratchFolder mFolder;
  qvConfigFile* mConfigFile;
};

// A configuration file with a read-only layer alone.
class ReadOnly {
 public:
  explicit ReadOnly(const std::string& aText) {
    WriteWholeFile(mFolder.File("ro.ini"), aText);
    mConfigFile = qvConfigFile_New(mFolder.File("ro.ini").c_str(), nullptr, nullptr);
  }
  ~ReadOnly() { qvConfigFile_Delete(mConfigFile); }
  ReadOnly(const ReadOnly&) = delete;
  ReadOnly& operator=(const ReadOnly&) = delete;
  qvConfigFile* Get() const { return mConfigFile; }
  const ScratchFolder& Folder() const { return mFolder; }

 private:
  ScratchFolder mFolder;
  qvConfigFile* mConfigFile;
};

char* KnowsX(char* aName, void* aUserData) {
  EXPECT_EQ(nullptr, aUserData);
  return strcmp(aName, "x") == 0 ? qvStrdup("Z") : nullptr;
}

}  // namespace

TEST(qvConfigFile, HoldsItsBackendAlone) {
  EXPECT_EQ(0u, offsetof(qvConfigFile, mBackend));
  EXPECT_EQ(sizeof(void*), sizeof(qvConfigFile));
}

TEST(qvConfigFile, ReadWriteLayerIsReadFirstAndTheReadOnlyLayerNext) {
  Layers theLayers("[a]\nk=1\nro=only\n", "[a]\nk=2\nrw=only\n");
  EXPECT_EQ("2", theLayers.GetString("a", "k"));
  EXPECT_EQ("only", theLayers.GetString("a", "ro"));
  EXPECT_EQ("only", theLayers.GetString("a", "rw"));
  EXPECT_EQ("(default)", theLayers.GetString("a", "none"));
}

TEST(qvConfigFile, DeletedKeyReadsFromTheReadOnlyLayerAgain) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\n");
  EXPECT_EQ(1, qvConfigFile_DeleteKey(theLayers.Get(), "a", "k"));
  EXPECT_EQ("1", theLayers.GetString("a", "k"));
}

TEST(qvConfigFile, ResetLayerReadsFromTheReadOnlyLayerAgain) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\n");
  qvConfigFile_Reset(theLayers.Get());
  EXPECT_EQ("1", theLayers.GetString("a", "k"));
}

TEST(qvConfigFile, ResetLayerHasNoSectionAtAll) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\n");
  qvConfigFile_Reset(theLayers.Get());
  EXPECT_EQ(0u, qvConfigFile_GetSectionCount(theLayers.Get(), 0));
  EXPECT_EQ(2u, qvConfigFile_GetSectionCount(theLayers.Get(), 1));
}

TEST(qvConfigFile, SaveRightAfterResetWritesAnEmptyFile) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\n");
  qvConfigFile_Reset(theLayers.Get());
  EXPECT_EQ("", theLayers.SavedText());
}

TEST(qvConfigFile, SaveAfterResetAndAReadWritesTheHeaderOfTheSectionRead) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\n");
  qvConfigFile_Reset(theLayers.Get());
  EXPECT_EQ("1", theLayers.GetString("a", "k"));
  EXPECT_EQ("[a]\n", theLayers.SavedText());
}

TEST(qvConfigFile, ResetTouchesNoFile) {
  Layers theLayers("", "[a]\nk=2\n");
  qvConfigFile_Reset(theLayers.Get());
  theLayers.Reopen();
  EXPECT_EQ("2", theLayers.GetString("a", "k"));
}

TEST(qvConfigFileKept, ReadingAKeyAddsItsSectionToTheReadWriteLayer) {
  Layers theLayers("[s]\nx=1\n", "");
  EXPECT_EQ("1", theLayers.GetString("s", "x"));
  EXPECT_EQ("[s]\n", theLayers.SavedText());
  // Every kind of read does.
  EXPECT_EQ(0, qvConfigFile_GetInt32(theLayers.Get(), "i", "x", 0));
  EXPECT_EQ(0u, qvConfigFile_GetUInt32(theLayers.Get(), "u", "x", 0));
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "b", "x", 0));
  EXPECT_EQ("[s]\n\n[i]\n\n[u]\n\n[b]\n", theLayers.SavedText());
  // Counting and deleting do not.
  EXPECT_EQ(0u, qvConfigFile_GetKeyCount(theLayers.Get(), "c", 0));
  EXPECT_EQ(1, qvConfigFile_DeleteKey(theLayers.Get(), "d", "x"));
  EXPECT_EQ("[s]\n\n[i]\n\n[u]\n\n[b]\n", theLayers.SavedText());
}

TEST(qvConfigFile, ReadOnlyLayerIsAskedOnlyForKeysThatTheOtherLacks) {
  Layers theLayers("", "[a]\nk=1\n");
  EXPECT_EQ("1", theLayers.GetString("a", "k"));
  EXPECT_EQ(1u, qvConfigFile_GetSectionCount(theLayers.Get(), 1));
  EXPECT_EQ("(default)", theLayers.GetString("a", "none"));
  EXPECT_STREQ("a", qvConfigFile_GetSectionName(theLayers.Get(), 1, 1)) << "a layer that is asked has it";
}

TEST(qvConfigFile, SettingsAreKeptByASave) {
  Layers theLayers("", "");
  EXPECT_EQ(1, qvConfigFile_SetString(theLayers.Get(), "Net", "Host", "my box"));
  EXPECT_EQ(1, qvConfigFile_SetInt32(theLayers.Get(), "Net", "Low", INT32_MIN));
  EXPECT_EQ(1, qvConfigFile_SetUInt32(theLayers.Get(), "Net", "High", 4294967295u));
  EXPECT_EQ("[net]\nhost=\"my box\"\nlow=-2147483648\nhigh=4294967295\n", theLayers.SavedText());
  theLayers.Reopen();
  EXPECT_EQ("my box", theLayers.GetString("NET", "HOST"));
  EXPECT_EQ(INT32_MIN, qvConfigFile_GetInt32(theLayers.Get(), "net", "low", 0));
  EXPECT_EQ(4294967295u, qvConfigFile_GetUInt32(theLayers.Get(), "net", "high", 0));
}

TEST(qvConfigFile, NothingIsOnDiskWithoutASave) {
  Layers theLayers("", "k=1\n");
  EXPECT_EQ(1, qvConfigFile_SetString(theLayers.Get(), nullptr, "k", "2"));
  EXPECT_EQ("2", theLayers.GetString(nullptr, "k"));
  EXPECT_EQ("k=1\n", ReadWholeFile(theLayers.Folder().File("rw.ini")));
  theLayers.Reopen();
  EXPECT_EQ("1", theLayers.GetString(nullptr, "k"));
}

TEST(qvConfigFile, ReadOnlyFileIsNeverWritten) {
  Layers theLayers("; a comment\n[A]\nK = 1\n", "");
  qvConfigFile_SetString(theLayers.Get(), "a", "k", "2");
  qvConfigFile_DeleteSection(theLayers.Get(), "a");
  theLayers.SavedText();
  EXPECT_EQ("; a comment\n[A]\nK = 1\n", ReadWholeFile(theLayers.Folder().File("ro.ini")));
}

TEST(qvConfigFile, MissingFilesAreEmptyLayersAndTheSaveMakesTheReadWriteFile) {
  ScratchFolder theFolder;
  qvConfigFile* theConfigFile =
      qvConfigFile_New(theFolder.File("ro.ini").c_str(), theFolder.File("rw.ini").c_str(), nullptr);
  ASSERT_NE(nullptr, theConfigFile);
  EXPECT_STREQ("(default)", qvConfigFile_GetString(theConfigFile, "a", "k", "(default)"));
  EXPECT_EQ(1, qvConfigFile_SetString(theConfigFile, "a", "k", "1"));
  EXPECT_EQ(1, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
  EXPECT_EQ("[a]\nk=1\n", ReadWholeFile(theFolder.File("rw.ini")));
  EXPECT_FALSE(FileExists(theFolder.File("ro.ini")));
}

TEST(qvConfigFile, FilesThatCannotBeReadAreEmptyLayers) {
  ScratchFolder theFolder;
  ASSERT_EQ(0, mkdir(theFolder.File("ro.ini").c_str(), 0755));
  ASSERT_EQ(0, mkdir(theFolder.File("rw.ini").c_str(), 0755));
  qvConfigFile* theConfigFile =
      qvConfigFile_New(theFolder.File("ro.ini").c_str(), theFolder.File("rw.ini").c_str(), nullptr);
  ASSERT_NE(nullptr, theConfigFile);
  EXPECT_STREQ("(default)", qvConfigFile_GetString(theConfigFile, "a", "k", "(default)"));
  EXPECT_EQ(1, qvConfigFile_SetString(theConfigFile, "a", "k", "1"));
  EXPECT_STREQ("1", qvConfigFile_GetString(theConfigFile, "a", "k", "(default)"));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, EmptyNamesAreEmptyLayers) {
  qvConfigFile* theConfigFile = qvConfigFile_New("", "", "");
  EXPECT_STREQ("(default)", qvConfigFile_GetString(theConfigFile, "a", "k", "(default)"));
  EXPECT_EQ(1, qvConfigFile_SetString(theConfigFile, "a", "k", "1"));
  EXPECT_STREQ("1", qvConfigFile_GetString(theConfigFile, "a", "k", "(default)"));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, WithoutReadWriteNameNothingCanBeWrittenOrSaved) {
  ReadOnly theReadOnly("[a]\nk=1\n");
  EXPECT_EQ(0, qvConfigFile_SetString(theReadOnly.Get(), "a", "k", "2"));
  EXPECT_EQ(0, qvConfigFile_SetInt32(theReadOnly.Get(), "a", "k", 2));
  EXPECT_EQ(0, qvConfigFile_SetUInt32(theReadOnly.Get(), "a", "k", 2));
  EXPECT_EQ(0, qvConfigFile_DeleteKey(theReadOnly.Get(), "a", "k"));
  EXPECT_EQ(0, qvConfigFile_DeleteSection(theReadOnly.Get(), "a"));
  EXPECT_EQ(0, qvConfigFile_Save(theReadOnly.Get()));
  qvConfigFile_Reset(theReadOnly.Get());
  EXPECT_STREQ("1", qvConfigFile_GetString(theReadOnly.Get(), "a", "k", nullptr));
}

TEST(qvConfigFile, WithoutReadWriteNameItsLayerEnumeratesAsEmpty) {
  ReadOnly theReadOnly("[a]\nk=1\n");
  EXPECT_EQ(0u, qvConfigFile_GetSectionCount(theReadOnly.Get(), 0));
  EXPECT_STREQ("", qvConfigFile_GetSectionName(theReadOnly.Get(), 1, 0));
  EXPECT_EQ(0u, qvConfigFile_GetKeyCount(theReadOnly.Get(), "a", 0));
  EXPECT_STREQ("", qvConfigFile_GetKeyName(theReadOnly.Get(), "a", 0, 0));
}

TEST(qvConfigFile, WithoutAnyNameEverythingIsEmpty) {
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, nullptr, nullptr);
  ASSERT_NE(nullptr, theConfigFile);
  EXPECT_EQ(nullptr, qvConfigFile_GetString(theConfigFile, "a", "k", nullptr));
  EXPECT_EQ(0, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, EnumerationLooksAtOneLayer) {
  Layers theLayers("[a]\nk=1\nl=2\n[b]\n", "[c]\nm=3\n");
  EXPECT_EQ(3u, qvConfigFile_GetSectionCount(theLayers.Get(), 1));
  EXPECT_EQ(2u, qvConfigFile_GetSectionCount(theLayers.Get(), 0));
  EXPECT_STREQ("", qvConfigFile_GetSectionName(theLayers.Get(), 0, 1));
  EXPECT_STREQ("a", qvConfigFile_GetSectionName(theLayers.Get(), 1, 1));
  EXPECT_STREQ("b", qvConfigFile_GetSectionName(theLayers.Get(), 2, -1));
  EXPECT_STREQ("c", qvConfigFile_GetSectionName(theLayers.Get(), 1, 0));
  EXPECT_EQ(2u, qvConfigFile_GetKeyCount(theLayers.Get(), "A", 1));
  EXPECT_EQ(0u, qvConfigFile_GetKeyCount(theLayers.Get(), "A", 0));
  EXPECT_STREQ("l", qvConfigFile_GetKeyName(theLayers.Get(), "a", 1, 1));
  EXPECT_STREQ("m", qvConfigFile_GetKeyName(theLayers.Get(), "c", 0, 0));
  EXPECT_STREQ("", qvConfigFile_GetKeyName(theLayers.Get(), "c", 0, 1));
}

TEST(qvConfigFile, DeletedSectionIsGoneFromTheReadWriteLayerOnly) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=2\nl=3\n[b]\nm=4\n");
  EXPECT_EQ(1, qvConfigFile_DeleteSection(theLayers.Get(), "a"));
  EXPECT_EQ("[b]\nm=4\n", theLayers.SavedText());
  EXPECT_EQ("1", theLayers.GetString("a", "k"));
  EXPECT_EQ("(default)", theLayers.GetString("a", "l"));
}

TEST(qvConfigFile, StringGivesTheDefaultPointerItself) {
  Layers theLayers("", "");
  char theDefault[] = "text";
  EXPECT_EQ(theDefault, qvConfigFile_GetString(theLayers.Get(), "a", "k", theDefault));
  EXPECT_EQ(nullptr, qvConfigFile_GetString(theLayers.Get(), "a", "k", nullptr));
}

TEST(qvConfigFile, EmptyValueOfTheReadWriteLayerHidesTheReadOnlyValue) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=\n");
  EXPECT_EQ("", theLayers.GetString("a", "k"));
}

TEST(qvConfigFile, NumberThatCannotBeReadGivesTheDefaultAndNotTheValueBelow) {
  Layers theLayers("[a]\nk=1\n", "[a]\nk=12abc\n");
  EXPECT_EQ(-5, qvConfigFile_GetInt32(theLayers.Get(), "a", "k", -5));
  EXPECT_EQ(5u, qvConfigFile_GetUInt32(theLayers.Get(), "a", "k", 5));
}

TEST(qvConfigFile, NumbersFallBackToTheReadOnlyLayer) {
  Layers theLayers("[a]\ni=-1\nu=0x10\nb=yes\n", "");
  EXPECT_EQ(-1, qvConfigFile_GetInt32(theLayers.Get(), "a", "i", 0));
  EXPECT_EQ(16u, qvConfigFile_GetUInt32(theLayers.Get(), "a", "u", 0));
  EXPECT_EQ(1, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "b", 0));
  EXPECT_EQ(-7, qvConfigFile_GetInt32(theLayers.Get(), "a", "none", -7));
  EXPECT_EQ(7u, qvConfigFile_GetUInt32(theLayers.Get(), "a", "none", 7));
}

TEST(qvConfigFile, OptionTakesTheDefaultOnlyWhenNeitherLayerHasTheKey) {
  Layers theLayers("[a]\nlow=yes\nboth=yes\n", "[a]\nboth=no\n");
  EXPECT_EQ(1, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "low", 0));
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "both", 1));
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "none", 0));
  EXPECT_EQ(1, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "none", 1));
}

TEST(qvConfigFileKept, ValueThatIsNeitherYesNorNoReadsAsNo) {
  Layers theLayers("[a]\nlow=maybe\nboth=yes\n", "[a]\nhigh=maybe\nboth=maybe\n");
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "high", 1));
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "low", 1));
  EXPECT_EQ(0, qvConfigFile_OptionIsSet(theLayers.Get(), "a", "both", 1));
  // A number gives the default there.
  EXPECT_EQ(1, qvConfigFile_GetInt32(theLayers.Get(), "a", "high", 1));
}

TEST(qvConfigFile, NarrowNumbersOutOfRangeGiveTheDefault) {
  const struct {
    const char* mValue;
    uint16 mUInt16;
    uint8 mUInt8;
    const char* mWhy;
  } kCases[] = {
      {"0", 0, 0, "the lowest of both"},
      {"255", 255, 255, "the highest of 8 bits"},
      {"256", 256, 9, "one above it"},
      {"300", 300, 9, "above 8 bits"},
      {"65535", 65535, 9, "the highest of 16 bits"},
      {"65536", 9, 9, "one above it"},
      {"-1", 9, 9, "negative"},
      {"2147483647", 9, 9, "what stands for a missing key"},
      {"0x10", 9, 9, "decimal text only"},
      {"abc", 9, 9, "no number"},
      {"", 9, 9, "nothing"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    Layers theLayers("", "");
    qvConfigFile_SetString(theLayers.Get(), "a", "k", theCase.mValue);
    EXPECT_EQ(theCase.mUInt16, qvConfigFile_GetUInt16(theLayers.Get(), "a", "k", 9));
    EXPECT_EQ(theCase.mUInt8, qvConfigFile_GetUInt8(theLayers.Get(), "a", "k", 9));
  }
}

TEST(qvConfigFile, NarrowNumbersOfAMissingKeyGiveTheDefault) {
  Layers theLayers("", "");
  EXPECT_EQ(65535, qvConfigFile_GetUInt16(theLayers.Get(), "a", "k", 65535));
  EXPECT_EQ(255, qvConfigFile_GetUInt8(theLayers.Get(), "a", "k", 255));
}

TEST(qvConfigFile, SubstitutionReplacesVariablesOfTheValueOrTheDefault) {
  Layers theLayers("[a]\nk=<%x%%unknown%>\n", "");
  EXPECT_EQ("<Z>", TakeText(qvConfigFile_GetStringWithSubstitution(theLayers.Get(), "a", "k", "", KnowsX)));
  EXPECT_EQ("Z!",
            TakeText(qvConfigFile_GetStringWithSubstitution(theLayers.Get(), "a", "l", "%x%!", KnowsX)));
  EXPECT_EQ(nullptr, qvConfigFile_GetStringWithSubstitution(theLayers.Get(), "a", "l", nullptr, KnowsX));
  EXPECT_EQ("%", TakeText(qvConfigFile_GetStringWithSubstitution(theLayers.Get(), "a", "l", "%%", nullptr)));
}

TEST(qvConfigFile, SubstitutionDoesNotLookIntoReplacements) {
  setenv("QVTEST_SET", "<%x%>", 1);
  Layers theLayers("[a]\nk=%env.QVTEST_SET%\n", "");
  EXPECT_EQ("<%x%>", TakeText(qvConfigFile_GetStringWithSubstitution(theLayers.Get(), "a", "k", "", KnowsX)));
}

TEST(qvConfigFile, NullConfigurationFileGivesDefaultsAndZeros) {
  EXPECT_EQ(7, qvConfigFile_OptionIsSet(nullptr, "a", "k", 7));
  EXPECT_EQ(-7, qvConfigFile_GetInt32(nullptr, "a", "k", -7));
  EXPECT_EQ(7u, qvConfigFile_GetUInt32(nullptr, "a", "k", 7));
  EXPECT_EQ(7, qvConfigFile_GetUInt16(nullptr, "a", "k", 7));
  EXPECT_EQ(7, qvConfigFile_GetUInt8(nullptr, "a", "k", 7));
  EXPECT_STREQ("text", qvConfigFile_GetString(nullptr, "a", "k", "text"));
  EXPECT_EQ("Z", TakeText(qvConfigFile_GetStringWithSubstitution(nullptr, "a", "k", "%x%", KnowsX)));
  EXPECT_EQ(0, qvConfigFile_SetInt32(nullptr, "a", "k", 1));
  EXPECT_EQ(0, qvConfigFile_SetUInt32(nullptr, "a", "k", 1));
  EXPECT_EQ(0, qvConfigFile_SetString(nullptr, "a", "k", "1"));
  EXPECT_EQ(0u, qvConfigFile_GetSectionCount(nullptr, 0));
  EXPECT_STREQ("", qvConfigFile_GetSectionName(nullptr, 0, 1));
  EXPECT_EQ(0u, qvConfigFile_GetKeyCount(nullptr, "a", 0));
  EXPECT_STREQ("", qvConfigFile_GetKeyName(nullptr, "a", 0, 1));
  EXPECT_EQ(0, qvConfigFile_DeleteSection(nullptr, "a"));
  EXPECT_EQ(0, qvConfigFile_DeleteKey(nullptr, "a", "k"));
  EXPECT_EQ(0, qvConfigFile_Save(nullptr));
  qvConfigFile_Reset(nullptr);
  qvConfigFile_Delete(nullptr);
}

TEST(qvConfigFile, CreatePathsMakesBothFoldersWithTheirParents) {
  Layers theLayers("", "");
  const ScratchFolder& theFolder = theLayers.Folder();
  EXPECT_EQ(1, qvConfigFile_CreatePaths(theLayers.Get(), theFolder.File("a/b").c_str(),
                                        theFolder.File("c/d/").c_str()));
  EXPECT_TRUE(FileExists(theFolder.File("a/b")));
  EXPECT_TRUE(FileExists(theFolder.File("c/d")));
  EXPECT_EQ(1, qvConfigFile_CreatePaths(theLayers.Get(), theFolder.File("a/b").c_str(),
                                        theFolder.File("a/b").c_str()));
}

TEST(qvConfigFile, CreatePathsStopsAtTheFirstFailure) {
  Layers theLayers("", "");
  const ScratchFolder& theFolder = theLayers.Folder();
  EXPECT_EQ(0, qvConfigFile_CreatePaths(theLayers.Get(), theFolder.File("ro.ini/x").c_str(),
                                        theFolder.File("c").c_str()));
  EXPECT_FALSE(FileExists(theFolder.File("c")));
  EXPECT_EQ(0, qvConfigFile_CreatePaths(theLayers.Get(), theFolder.File("c").c_str(),
                                        theFolder.File("ro.ini/x").c_str()));
  EXPECT_TRUE(FileExists(theFolder.File("c")));
}

TEST(qvConfigFile, LeftoverTemporaryFileIsDeletedAtOpen) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("rw.ini"), "k=old\n");
  WriteWholeFile(theFolder.File("rw.ini.tmp"), "k=hal");
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFolder.File("rw.ini").c_str(), nullptr);
  EXPECT_STREQ("old", qvConfigFile_GetString(theConfigFile, nullptr, "k", ""));
  EXPECT_FALSE(FileExists(theFolder.File("rw.ini.tmp")));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, LeftoverCompletedFileBecomesTheFile) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("rw.ini.ok"), "k=new\n");
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFolder.File("rw.ini").c_str(), nullptr);
  EXPECT_STREQ("new", qvConfigFile_GetString(theConfigFile, nullptr, "k", ""));
  EXPECT_EQ("k=new\n", ReadWholeFile(theFolder.File("rw.ini")));
  EXPECT_FALSE(FileExists(theFolder.File("rw.ini.ok")));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, LeftoverCompletedFileReplacesTheFile) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("rw.ini"), "k=old\n");
  WriteWholeFile(theFolder.File("rw.ini.ok"), "k=new\n");
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFolder.File("rw.ini").c_str(), nullptr);
  EXPECT_STREQ("new", qvConfigFile_GetString(theConfigFile, nullptr, "k", ""));
  EXPECT_FALSE(FileExists(theFolder.File("rw.ini.ok")));
  qvConfigFile_Delete(theConfigFile);
}

TEST(qvConfigFile, ReadOnlyFileIsNotRepaired) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("ro.ini"), "k=old\n");
  WriteWholeFile(theFolder.File("ro.ini.ok"), "k=new\n");
  WriteWholeFile(theFolder.File("ro.ini.tmp"), "k=half\n");
  qvConfigFile* theConfigFile = qvConfigFile_New(theFolder.File("ro.ini").c_str(), nullptr, nullptr);
  EXPECT_STREQ("old", qvConfigFile_GetString(theConfigFile, nullptr, "k", ""));
  EXPECT_TRUE(FileExists(theFolder.File("ro.ini.ok")));
  EXPECT_TRUE(FileExists(theFolder.File("ro.ini.tmp")));
  qvConfigFile_Delete(theConfigFile);
}
