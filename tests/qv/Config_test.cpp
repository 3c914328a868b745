#include "qv/Config.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <type_traits>

#include "qvraTools/qvConfigFileINIBackend.h"
#include "qvraTools/qvMalloc.h"
#include "support/ClassLayout.h"
#include "support/HeapUse.h"
#include "support/ScratchFolder.h"

namespace {

// A qvConfig on "app.ini" with the directories ro and rw of a folder of its own.
class Settings {
 public:
  explicit Settings(const std::string& aReadOnlyText = "", const std::string& aReadWriteText = "") {
    mkdir(mFolder.File("ro").c_str(), 0755);
    mkdir(mFolder.File("rw").c_str(), 0755);
    WriteWholeFile(mFolder.File("ro/app.ini"), aReadOnlyText);
    WriteWholeFile(mFolder.File("rw/_app.ini"), aReadWriteText);
    Open();
  }
  void Open() {
    mConfig.reset(new qvConfig(qvCString(mFolder.File("ro").c_str()), qvCString(mFolder.File("rw/").c_str()),
                               qvCString("app.ini")));
  }
  qvConfig* operator->() const { return mConfig.get(); }
  const ScratchFolder& Folder() const { return mFolder; }
  std::string Get(const char* aSection, const char* aKey) const {
    return mConfig->GetCString(aSection, aKey, qvCString("(default)")).c_str();
  }

 private:
  ScratchFolder mFolder;
  std::unique_ptr<qvConfig> mConfig;
};

// Shows the field that a derived class may use.
class ShownConfig : public qvConfig {
 public:
  qvConfigFile* Field() const { return mConfigFile; }
  size_t FieldOffset() const {
    return static_cast<size_t>(reinterpret_cast<const char*>(&mConfigFile) -
                               reinterpret_cast<const char*>(static_cast<const qvConfig*>(this)));
  }
};

char* KnowsX(char* aName, void* /*aUserData*/) { return strcmp(aName, "x") == 0 ? qvStrdup("Z") : nullptr; }

}  // namespace

TEST(qvConfig, HoldsTheVirtualTableAndTheConfigurationFile) {
  EXPECT_EQ(sizeof(void*), ShownConfig().FieldOffset());
  EXPECT_EQ(2 * sizeof(void*), sizeof(qvConfig));
  EXPECT_TRUE(std::has_virtual_destructor<qvConfig>::value);
}

TEST(qvConfig, OnlyTheDestructorIsVirtual) {
  class Derived : public qvConfig {
   public:
    virtual void Next() {}
  };
  EXPECT_EQ(2u, SlotOf(&Derived::Next));
}

TEST(qvConfig, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible<qvConfig>::value);
  EXPECT_FALSE(std::is_copy_assignable<qvConfig>::value);
}

TEST(qvConfig, ReadWriteFileBearsAnUnderscore) {
  Settings theSettings("[a]\nk=1\nro=2\n", "[a]\nk=3\n");
  EXPECT_EQ("3", theSettings.Get("a", "k"));
  EXPECT_EQ("2", theSettings.Get("a", "ro"));
  EXPECT_TRUE(theSettings->SetString("a", "k", qvCString("4")));
  EXPECT_TRUE(theSettings->Save());
  EXPECT_EQ("[a]\nk=4\n", ReadWholeFile(theSettings.Folder().File("rw/_app.ini")));
  EXPECT_EQ("[a]\nk=1\nro=2\n", ReadWholeFile(theSettings.Folder().File("ro/app.ini")));
}

TEST(qvConfig, BothFilesBearTheBareNameInTheirFolders) {
  const qvConfig theConfig(qvCString("/etc/app/"), qvCString("/var/app"), qvCString("sub\\app.ini"));
  const auto* theFile = reinterpret_cast<const qvConfigFile_INI*>(theConfig.GetConfigFile());
  EXPECT_STREQ("/etc/app/app.ini", theFile->mROFileName);
  EXPECT_STREQ("/var/app/_app.ini", theFile->mRWFileName);
}

TEST(qvConfig, TheDestructorDeletesTheConfigurationFile) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("app.ini"), "[a]\nk=1\n");
  const qvCString thePath(theFolder.Path().c_str());
  ExpectNoHeapGrowth([&] { qvConfig theConfig(thePath, thePath, qvCString("app.ini")); });
}

TEST(qvConfig, BothFilesMayLieInOneFolder) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("app.ini"), "k=1\n");
  qvCString thePath(theFolder.Path().c_str());
  qvConfig theConfig(thePath, thePath, qvCString("app.ini"));
  EXPECT_TRUE(theConfig.SetInt32(nullptr, "k", 2));
  EXPECT_TRUE(theConfig.Save());
  EXPECT_EQ("k=1\n", ReadWholeFile(theFolder.File("app.ini")));
  EXPECT_EQ("k=2\n", ReadWholeFile(theFolder.File("_app.ini")));
}

TEST(qvConfig, WithoutWriteDirectoryNothingCanBeWritten) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("app.ini"), "[a]\nk=1\n");
  qvConfig theConfig(qvCString(theFolder.Path().c_str()), qvCString(), qvCString("app.ini"));
  EXPECT_FALSE(theConfig.SetString("a", "k", qvCString("2")));
  EXPECT_FALSE(theConfig.SetInt32("a", "k", 2));
  EXPECT_FALSE(theConfig.SetUInt32("a", "k", 2));
  EXPECT_FALSE(theConfig.SetStringIfNotEmpty("a", "k", qvCString()));
  EXPECT_FALSE(theConfig.DeleteKey("a", "k"));
  EXPECT_FALSE(theConfig.DeleteSection("a"));
  EXPECT_FALSE(theConfig.Save());
  EXPECT_EQ(1, theConfig.GetInt32("a", "k", 0));
  EXPECT_FALSE(FileExists(theFolder.File("_app.ini")));
}

TEST(qvConfig, ConstructionWithoutFilesSucceeds) {
  ScratchFolder theFolder;
  qvConfig theConfig(qvCString(theFolder.File("a").c_str()), qvCString(theFolder.File("b").c_str()),
                     qvCString("app.ini"));
  ASSERT_NE(nullptr, theConfig.GetConfigFile());
  EXPECT_EQ(7, theConfig.GetInt32("a", "k", 7));
  EXPECT_TRUE(theConfig.SetInt32("a", "k", 8));
  EXPECT_FALSE(theConfig.Save());
}

TEST(qvConfig, DefaultConstructedObjectGivesDefaultsAndFalse) {
  ShownConfig theConfig;
  qvCString theRead;
  qvCString theWrite;
  EXPECT_EQ(nullptr, theConfig.Field());
  EXPECT_EQ(nullptr, theConfig.GetConfigFile());
  EXPECT_TRUE(theConfig.OptionIsSet("a", "k", true));
  EXPECT_FALSE(theConfig.OptionIsSet("a", "k", false));
  EXPECT_STREQ("text", theConfig.GetCString("a", "k", qvCString("text")).c_str());
  EXPECT_STREQ("Z", theConfig.GetCStringWithSubstitution("a", "k", qvCString("%x%"), KnowsX).c_str());
  EXPECT_EQ(-7, theConfig.GetInt32("a", "k", -7));
  EXPECT_EQ(7u, theConfig.GetUInt32("a", "k", 7));
  EXPECT_EQ(-7, theConfig.GetInt16("a", "k", -7));
  EXPECT_EQ(-7, theConfig.GetInt8("a", "k", -7));
  EXPECT_EQ(7, theConfig.GetUInt16("a", "k", 7));
  EXPECT_EQ(7, theConfig.GetUInt8("a", "k", 7));
  EXPECT_FALSE(theConfig.SetString("a", "k", qvCString("x")));
  EXPECT_FALSE(theConfig.SetStringIfNotEmpty("a", "k", qvCString()));
  EXPECT_FALSE(theConfig.SetInt32("a", "k", 1));
  EXPECT_FALSE(theConfig.SetUInt32("a", "k", 1));
  EXPECT_FALSE(theConfig.Save());
  EXPECT_EQ(0u, theConfig.GetSectionCount(false));
  EXPECT_STREQ("", theConfig.GetSectionName(0, true).c_str());
  EXPECT_EQ(0u, theConfig.GetKeyCount("a", false));
  EXPECT_STREQ("", theConfig.GetKeyNameCString("a", 0, false).c_str());
  EXPECT_FALSE(theConfig.DeleteSection("a"));
  EXPECT_FALSE(theConfig.DeleteKey("a", "k"));
  theConfig.Reset();
  EXPECT_STREQ("./", theConfig.GetNonEmptyPath("a", "k").c_str());
  EXPECT_TRUE(theConfig.FetchConfigPaths("a", "r", "w", theRead, theWrite, false));
  EXPECT_FALSE(theConfig.FetchConfigPaths("a", "r", "w", theRead, theWrite, true));
}

TEST(qvConfig, ValidPathIsTheDirectoryThePrefixAndTheBareName) {
  const struct {
    const char* mDirectory;
    const char* mFileName;
    const char* mPrefix;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"/etc/app/", "app.ini", "", "/etc/app/app.ini", "a slash at the end"},
      {"/etc/app", "app.ini", "_", "/etc/app/_app.ini", "no slash at the end, and a prefix"},
      {"/etc/app/", "sub\\app.ini", "", "/etc/app/app.ini", "a backslash in the name"},
      {"/var/app", "sub\\app.ini", "_", "/var/app/_app.ini", "the same with a prefix"},
      {"", "app.ini", "", "./app.ini", "no directory"},
      {"\\etc\\app\\", "app.ini", "", "/etc/app/app.ini", "backslashes in the directory"},
      {"a", "b/c\\d/e.ini", "", "a/e.ini", "what follows the last of both"},
      {"a", "b\\c\\e.ini", "", "a/e.ini", "every backslash in the name"},
      {"a/", "b/", "_", "a/_", "a name that ends in a slash"},
      {"a", "", "_", "a/_", "no name"},
      {"/", "app.ini", "", "/app.ini", "the root"},
      {"a//", "app.ini", "", "a//app.ini", "nothing else is tidied"},
  };
  qvConfig theConfig;
  for (const auto& theCase : kCases) {
    EXPECT_STREQ(
        theCase.mExpected,
        theConfig.GetValidPath(qvCString(theCase.mDirectory), qvCString(theCase.mFileName), theCase.mPrefix)
            .c_str())
        << theCase.mWhy;
  }
}

TEST(qvConfig, ValidPathWithoutPrefixHasNone) {
  EXPECT_STREQ("/etc/app.ini",
               qvConfig().GetValidPath(qvCString("/etc"), qvCString("app.ini"), nullptr).c_str());
}

TEST(qvConfig, ValidPathLeavesItsArguments) {
  qvConfig theConfig;
  qvCString theDirectory("\\etc");
  qvCString theName("sub\\app.ini");
  theConfig.GetValidPath(theDirectory, theName, "_");
  EXPECT_STREQ("\\etc", theDirectory.c_str());
  EXPECT_STREQ("sub\\app.ini", theName.c_str());
}

TEST(qvConfig, CStringIsACopyOfTheValueOrTheDefault) {
  Settings theSettings("[a]\nk=value\nempty=\n");
  qvCString theValue = theSettings->GetCString("a", "k", qvCString("x"));
  theSettings->SetString("a", "k", qvCString("other"));
  EXPECT_STREQ("value", theValue.c_str());
  EXPECT_STREQ("x", theSettings->GetCString("a", "none", qvCString("x")).c_str());
  EXPECT_STREQ("", theSettings->GetCString("a", "empty", qvCString("x")).c_str());
  EXPECT_TRUE(theSettings->GetCString("a", "none", qvCString()).IsEmpty());
}

TEST(qvConfig, DefaultWithZeroBytesIsCopiedWhole) {
  Settings theSettings;
  const qvCString theDefault("a\0b", size_t{3});
  EXPECT_EQ(3u, theSettings->GetCString("a", "none", theDefault).length());
  EXPECT_TRUE(theSettings->GetCString("a", "none", theDefault) == theDefault);
}

TEST(qvConfig, SubstitutionReplacesVariables) {
  Settings theSettings("[a]\nk=<%x%>\nonly=%unknown%\n");
  EXPECT_STREQ("<Z>", theSettings->GetCStringWithSubstitution("a", "k", qvCString(), KnowsX).c_str());
  EXPECT_STREQ("Z!", theSettings->GetCStringWithSubstitution("a", "n", qvCString("%x%!"), KnowsX).c_str());
  EXPECT_TRUE(theSettings->GetCStringWithSubstitution("a", "only", qvCString("x"), KnowsX).IsEmpty());
  EXPECT_TRUE(theSettings->GetCStringWithSubstitution("a", "n", qvCString(), nullptr).IsEmpty());
}

TEST(qvConfig, SubstitutedTextIsTakenOverNotCopied) {
  Settings theSettings("[a]\nk=%x%\n");
  EXPECT_EQ(
      kqvCStringData_AllocatedText,
      theSettings->GetCStringWithSubstitution("a", "k", qvCString(), KnowsX).mCStringData->mAllocatedLength);
}

TEST(qvConfig, OptionIsABool) {
  Settings theSettings("[a]\nyes=y\nno=0\nmaybe=maybe\n");
  EXPECT_TRUE(theSettings->OptionIsSet("a", "yes", false));
  EXPECT_FALSE(theSettings->OptionIsSet("a", "no", true));
  EXPECT_FALSE(theSettings->OptionIsSet("a", "maybe", true));
  EXPECT_TRUE(theSettings->OptionIsSet("a", "none", true));
  EXPECT_FALSE(theSettings->OptionIsSet("a", "none", false));
}

TEST(qvConfig, NarrowIntegersOutOfRangeGiveTheDefault) {
  const struct {
    const char* mValue;
    int16 mInt16;
    int8 mInt8;
    uint16 mUInt16;
    uint8 mUInt8;
    const char* mWhy;
  } kCases[] = {
      {"0", 0, 0, 0, 0, "zero"},
      {"127", 127, 127, 127, 127, "the highest of int8"},
      {"128", 128, 9, 128, 128, "one above it"},
      {"-128", -128, -128, 9, 9, "the lowest of int8"},
      {"-129", -129, 9, 9, 9, "one below it"},
      {"255", 255, 9, 255, 255, "the highest of uint8"},
      {"256", 256, 9, 256, 9, "one above it"},
      {"32767", 32767, 9, 32767, 9, "the highest of int16"},
      {"32768", 9, 9, 32768, 9, "one above it"},
      {"40000", 9, 9, 40000, 9, "above int16"},
      {"-32768", -32768, 9, 9, 9, "the lowest of int16"},
      {"-32769", 9, 9, 9, 9, "one below it"},
      {"65535", 9, 9, 65535, 9, "the highest of uint16"},
      {"65536", 9, 9, 9, 9, "one above it"},
      {"2147483647", 9, 9, 9, 9, "what stands for a missing key"},
      {"12abc", 9, 9, 9, 9, "no number"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    Settings theSettings;
    theSettings->SetString("a", "k", qvCString(theCase.mValue));
    EXPECT_EQ(theCase.mInt16, theSettings->GetInt16("a", "k", 9));
    EXPECT_EQ(theCase.mInt8, theSettings->GetInt8("a", "k", 9));
    EXPECT_EQ(theCase.mUInt16, theSettings->GetUInt16("a", "k", 9));
    EXPECT_EQ(theCase.mUInt8, theSettings->GetUInt8("a", "k", 9));
  }
}

TEST(qvConfig, NarrowIntegersOfAMissingKeyGiveTheDefault) {
  Settings theSettings;
  EXPECT_EQ(INT16_MIN, theSettings->GetInt16("a", "k", INT16_MIN));
  EXPECT_EQ(INT8_MIN, theSettings->GetInt8("a", "k", INT8_MIN));
  EXPECT_EQ(65535, theSettings->GetUInt16("a", "k", 65535));
  EXPECT_EQ(255, theSettings->GetUInt8("a", "k", 255));
}

TEST(qvConfig, DefaultsOfUnsignedNarrowReadersAreCut) {
  Settings theSettings;
  EXPECT_EQ(0x2345, theSettings->GetUInt16("a", "k", 0x12345));
  EXPECT_EQ(0x45, theSettings->GetUInt8("a", "k", 0x12345));
  EXPECT_EQ(65535, theSettings->GetUInt16("a", "k", 0xffffffffu));
}

TEST(qvConfig, WideIntegersAreReadAndWritten) {
  Settings theSettings;
  EXPECT_TRUE(theSettings->SetInt32("a", "i", INT32_MIN));
  EXPECT_TRUE(theSettings->SetUInt32("a", "u", 4294967295u));
  EXPECT_EQ(INT32_MIN, theSettings->GetInt32("a", "i", 0));
  EXPECT_EQ(4294967295u, theSettings->GetUInt32("a", "u", 0));
  EXPECT_EQ(-1, theSettings->GetInt32("a", "none", -1));
  EXPECT_EQ(1u, theSettings->GetUInt32("a", "none", 1));
}

TEST(qvConfig, NullSectionIsTheDefaultSection) {
  Settings theSettings("k=1\n");
  EXPECT_EQ("1", theSettings.Get(nullptr, "k"));
  EXPECT_EQ("1", theSettings.Get("", "k"));
}

TEST(qvConfig, SettingAnEmptyStringDeletesAnEarlierOne) {
  Settings theSettings("[a]\nk=shipped\n");
  EXPECT_TRUE(theSettings->SetStringIfNotEmpty("a", "k", qvCString("mine")));
  EXPECT_EQ("mine", theSettings.Get("a", "k"));
  EXPECT_TRUE(theSettings->SetStringIfNotEmpty("a", "k", qvCString()));
  EXPECT_EQ("shipped", theSettings.Get("a", "k"));
  // SetString keeps the empty text.
  EXPECT_TRUE(theSettings->SetString("a", "k", qvCString()));
  EXPECT_EQ("", theSettings.Get("a", "k"));
}

TEST(qvConfig, DeletedKeysAndSectionsReadFromTheReadOnlyLayerAgain) {
  Settings theSettings("[a]\nk=1\nl=2\n", "[a]\nk=3\nl=4\n");
  EXPECT_TRUE(theSettings->DeleteKey("a", "k"));
  EXPECT_EQ("1", theSettings.Get("a", "k"));
  EXPECT_EQ("4", theSettings.Get("a", "l"));
  EXPECT_TRUE(theSettings->DeleteSection("a"));
  EXPECT_EQ("2", theSettings.Get("a", "l"));
}

TEST(qvConfig, ResetForgetsTheReadWriteLayerInMemoryOnly) {
  Settings theSettings("[a]\nk=1\n", "[a]\nk=2\n");
  theSettings->Reset();
  EXPECT_EQ("1", theSettings.Get("a", "k"));
  EXPECT_EQ("[a]\nk=2\n", ReadWholeFile(theSettings.Folder().File("rw/_app.ini")));
  theSettings.Open();
  EXPECT_EQ("2", theSettings.Get("a", "k"));
}

TEST(qvConfig, NothingIsSavedByTheDestructor) {
  Settings theSettings;
  theSettings->SetInt32("a", "k", 1);
  theSettings.Open();
  EXPECT_EQ("(default)", theSettings.Get("a", "k"));
}

TEST(qvConfig, ReadingAKeyAddsItsSectionToTheSavedFile) {
  Settings theSettings;
  theSettings.Get("Seen", "k");
  EXPECT_TRUE(theSettings->Save());
  EXPECT_EQ("[seen]\n", ReadWholeFile(theSettings.Folder().File("rw/_app.ini")));
}

TEST(qvConfig, EnumerationLooksAtOneLayer) {
  Settings theSettings("[a]\nk=1\nl=2\n", "[b]\nm=3\n");
  EXPECT_EQ(2u, theSettings->GetSectionCount(true));
  EXPECT_EQ(2u, theSettings->GetSectionCount(false));
  EXPECT_STREQ("", theSettings->GetSectionName(0, true).c_str());
  EXPECT_STREQ("a", theSettings->GetSectionName(1, true).c_str());
  EXPECT_STREQ("b", theSettings->GetSectionName(1, false).c_str());
  EXPECT_STREQ("", theSettings->GetSectionName(9, false).c_str());
  EXPECT_EQ(2u, theSettings->GetKeyCount("a", true));
  EXPECT_EQ(0u, theSettings->GetKeyCount("a", false));
  EXPECT_STREQ("l", theSettings->GetKeyNameCString("a", 1, true).c_str());
  EXPECT_STREQ("", theSettings->GetKeyNameCString("a", 2, true).c_str());
}

TEST(qvConfig, NonEmptyPathIsTheValueOrTheCurrentFolder) {
  Settings theSettings("[a]\npath=/etc/app\nempty=\n");
  EXPECT_STREQ("/etc/app", theSettings->GetNonEmptyPath("a", "path").c_str());
  EXPECT_STREQ("./", theSettings->GetNonEmptyPath("a", "empty").c_str());
  EXPECT_STREQ("./", theSettings->GetNonEmptyPath("a", "none").c_str());
}

TEST(qvConfig, FetchedPathsAreNotMadeUnlessAsked) {
  Settings theSettings;
  std::string theRead = theSettings.Folder().File("x/read");
  std::string theWrite = theSettings.Folder().File("y/write/");
  theSettings->SetString("p", "r", qvCString(theRead.c_str()));
  theSettings->SetString("p", "w", qvCString(theWrite.c_str()));
  qvCString theReadPath("old");
  qvCString theWritePath("old");
  EXPECT_TRUE(theSettings->FetchConfigPaths("p", "r", "w", theReadPath, theWritePath, false));
  EXPECT_EQ(theRead, theReadPath.c_str());
  EXPECT_EQ(theWrite, theWritePath.c_str());
  EXPECT_FALSE(FileExists(theRead));
  EXPECT_TRUE(theSettings->FetchConfigPaths("p", "r", "w", theReadPath, theWritePath, true));
  EXPECT_TRUE(FileExists(theRead));
  EXPECT_TRUE(FileExists(theWrite));
}

TEST(qvConfig, FetchedPathsAreFilledEvenWhenTheyCannotBeMade) {
  Settings theSettings;
  std::string theBroken = theSettings.Folder().File("ro/app.ini/x");
  theSettings->SetString("p", "r", qvCString(theBroken.c_str()));
  theSettings->SetString("p", "w", qvCString(theSettings.Folder().File("made").c_str()));
  qvCString theReadPath;
  qvCString theWritePath;
  EXPECT_FALSE(theSettings->FetchConfigPaths("p", "r", "w", theReadPath, theWritePath, true));
  EXPECT_EQ(theBroken, theReadPath.c_str());
  EXPECT_EQ(theSettings.Folder().File("made"), theWritePath.c_str());
  EXPECT_FALSE(FileExists(theSettings.Folder().File("made"))) << "the first failure ends it";
}
