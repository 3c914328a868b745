#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvPath.h"
#include "support/ChildProcess.h"
#include "support/ElfImage.h"
#include "support/OwnedText.h"
#include "support/ScratchFolder.h"

namespace {

constexpr const char* kStampName = ".qvra.version";
constexpr const char* kUntouched = "untouched";

struct Stamp {
  int mRevision;
  std::string mBranch;  // kUntouched when the output was left alone
};

Stamp ReadStamp(const std::string& aPath) {
  char theMark[] = "untouched";
  char* theBranch = theMark;
  Stamp theStamp;
  theStamp.mRevision = qvPath_GetBinaryRevision(aPath.c_str(), &theBranch);
  theStamp.mBranch = theBranch == theMark ? kUntouched : TakeText(theBranch);
  return theStamp;
}

// A file of each class with these bytes, to be read like a program.
class qvPathRevision : public testing::TestWithParam<int> {
 protected:
  Stamp Read(const std::string& aBytes) {
    WriteWholeFile(mScratch.File("image"), aBytes);
    return ReadStamp(mScratch.File("image"));
  }
  Stamp ReadStampText(const std::string& aText) {
    return Read(ElfImage(GetParam()).Add(kStampName, aText).Bytes());
  }
  void ExpectNoStamp(const std::string& aBytes, const std::string& aWhy) {
    Stamp theStamp = Read(aBytes);
    EXPECT_EQ(0, theStamp.mRevision) << aWhy;
    EXPECT_EQ(kUntouched, theStamp.mBranch) << aWhy;
  }

  ScratchFolder mScratch;
};

std::string ClassName(const testing::TestParamInfo<int>& anInfo) {
  return std::to_string(anInfo.param) + "Bit";
}

INSTANTIATE_TEST_SUITE_P(EachClass, qvPathRevision, testing::Values(32, 64), ClassName);

}  // namespace

TEST_P(qvPathRevision, TheFirstLineIsTheRevisionAndTheSecondTheBranch) {
  Stamp theStamp = ReadStampText("1234\nmain\n");
  EXPECT_EQ(1234, theStamp.mRevision);
  EXPECT_EQ("main", theStamp.mBranch);
}

TEST_P(qvPathRevision, AFileWithoutTheSectionHasNoRevision) {
  ExpectNoStamp(ElfImage(GetParam()).Bytes(), "no section at all");
  ExpectNoStamp(ElfImage(GetParam()).Add(".text", "1234\nmain\n").Bytes(), "another section");
  ExpectNoStamp(ElfImage(GetParam()).Add(".qvra.versio", "1\nmain\n").Bytes(), "a shorter name");
  ExpectNoStamp(ElfImage(GetParam()).Add(".qvra.version2", "1\nmain\n").Bytes(), "a longer name");
  ExpectNoStamp(ElfImage(GetParam()).Add(".QVRA.version", "1\nmain\n").Bytes(), "another case");
}

TEST_P(qvPathRevision, TheStampIsFoundAmongOtherSections) {
  Stamp theStamp = Read(ElfImage(GetParam())
                            .Add(".text", std::string(1000, '\x90'))
                            .Add(".data", "9\nwrong\n")
                            .Add(kStampName, "77\nrelease/2\n")
                            .Add(".bss", "", ElfImage::kNoBits)
                            .Bytes());
  EXPECT_EQ(77, theStamp.mRevision);
  EXPECT_EQ("release/2", theStamp.mBranch);
}

TEST_P(qvPathRevision, TheStampIsFoundBehindHundredsOfSections) {
  ElfImage theImage(GetParam());
  for (int i = 0; i < 600; ++i) {
    theImage.Add(".text", "code");
  }
  EXPECT_EQ(78, Read(theImage.Add(kStampName, "78\nmain\n").Bytes()).mRevision);
}

TEST_P(qvPathRevision, TheFirstOfTwoStampsCounts) {
  EXPECT_EQ(1, Read(ElfImage(GetParam()).Add(kStampName, "1\n").Add(kStampName, "2\n").Bytes()).mRevision);
}

TEST_P(qvPathRevision, OnlyProgramDataIsAStamp) {
  ElfImage theImage(GetParam());
  theImage.Add(kStampName, "5\nnote\n", ElfImage::kNote);
  ExpectNoStamp(theImage.Bytes(), "a note");
  theImage.Add(kStampName, "5\nother\n", 0x01000001);
  ExpectNoStamp(theImage.Bytes(), "a type whose lowest byte alone is that of program data");
  theImage.Add(kStampName, "6\ndata\n");
  EXPECT_EQ(6, Read(theImage.Bytes()).mRevision);
}

TEST_P(qvPathRevision, TheNumberIsReadAsDecimalDigitsAtTheStart) {
  const struct {
    const char* mText;
    int mRevision;
    const char* mWhy;
  } kCases[] = {
      {"42", 42, "no line end"},
      {"42M\n", 42, "text behind it"},
      {"  42\n", 42, "blanks before it"},
      {"+42\n", 42, "a plus"},
      {"-42\n", -42, "a minus"},
      {"0x10\n", 0, "decimal only"},
      {"010\n", 10, "no octal"},
      {"r42\n", 0, "text before it"},
      {"", 0, "nothing"},
      {"2147483647\n", 2147483647, "the largest"},
      {"2147483648\n", 2147483647, "one more is the largest"},
      {"-2147483648\n", INT_MIN, "the smallest"},
      {"-2147483649\n", INT_MIN, "one less is the smallest"},
      {"99999999999999999999999\n", 2147483647, "no number of the machine"},
  };
  for (const auto& theCase : kCases) {
    Stamp theStamp = ReadStampText(theCase.mText);
    EXPECT_EQ(theCase.mRevision, theStamp.mRevision) << theCase.mWhy;
    EXPECT_EQ(kUntouched, theStamp.mBranch) << theCase.mWhy;
  }
}

TEST_P(qvPathRevision, TheBranchNeedsTwoLineFeeds) {
  const struct {
    const char* mText;
    const char* mBranch;
    const char* mWhy;
  } kCases[] = {
      {"7", kUntouched, "none"},
      {"7\nmain", kUntouched, "one"},
      {"7\nmain\n", "main", "two"},
      {"7\nmain\nmore\nlines\n", "main", "further lines are free"},
      {"7\n\nx", "", "an empty branch"},
      {"\n\n", "", "nothing else"},
      {"7\n a b \r\n", " a b \r", "taken as it is"},
      {"7\n\xC3\xA4\xFF\n", "\xC3\xA4\xFF", "bytes above 0x7F"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mBranch, ReadStampText(theCase.mText).mBranch) << theCase.mWhy;
  }
}

TEST_P(qvPathRevision, TheTextEndsAtAZeroByte) {
  Stamp theStamp = ReadStampText(std::string("12\0\nmain\n", 9));
  EXPECT_EQ(12, theStamp.mRevision);
  EXPECT_EQ(kUntouched, theStamp.mBranch);
}

TEST_P(qvPathRevision, TheCallerNeedNotAskForTheBranch) {
  WriteWholeFile(mScratch.File("image"), ElfImage(GetParam()).Add(kStampName, "1234\nmain\n").Bytes());
  EXPECT_EQ(1234, qvPath_GetBinaryRevision(mScratch.File("image").c_str(), nullptr));
}

TEST_P(qvPathRevision, AFileCutAnywhereNeverGivesAnotherStamp) {
  std::string theBytes = ElfImage(GetParam()).Add(".text", "code").Add(kStampName, "1234\nmain\n").Bytes();
  for (size_t i = 0; i < theBytes.size(); ++i) {
    ExpectNoStamp(theBytes.substr(0, i), "cut to " + std::to_string(i));
  }
}

TEST_P(qvPathRevision, AFileWithAnyByteChangedIsReadWithoutHarm) {
  std::string theBytes = ElfImage(GetParam()).Add(".text", "code").Add(kStampName, "1234\nmain\n").Bytes();
  for (size_t i = 0; i < theBytes.size(); ++i) {
    for (int theValue : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
      std::string theBroken = theBytes;
      theBroken[i] = static_cast<char>(theValue);
      Read(theBroken);
    }
  }
}

TEST_P(qvPathRevision, NoNameSectionIndexMeansNoStamp) {
  ElfImage theImage(GetParam());
  std::string theBytes = theImage.Add(kStampName, "1\nmain\n").Bytes();
  PutNumber(&theBytes, theImage.NamesIndexField(), 2, 0);
  ExpectNoStamp(theBytes, "index 0");
  // Also when the header of that index leads to names.
  const size_t theSize = theImage.SectionHeaderSize();
  theBytes.replace(theImage.FileHeaderSize(), theSize, theBytes,
                   theImage.FileHeaderSize() + theImage.NamesIndex() * theSize, theSize);
  ExpectNoStamp(theBytes, "index 0 with names");
}

TEST_P(qvPathRevision, OffsetsAndSizesOutsideTheFileMeanNoStamp) {
  ElfImage theImage(GetParam());
  const std::string theSound = theImage.Add(kStampName, "1\nmain\n").Bytes();
  const size_t theWord = theImage.WordSize();
  const size_t theNames = theImage.NamesIndex();
  const struct {
    size_t mField;
    size_t mFieldSize;
    const char* mWhy;
  } kFields[] = {
      {theImage.SectionTableField(), theWord, "the section table"},
      {theImage.NamesIndexField(), 2, "the index of the names"},
      {theImage.OffsetField(theNames), theWord, "the offset of the names"},
      {theImage.SizeField(theNames), theWord, "the size of the names"},
      {theImage.NameField(1), 4, "the name of the stamp"},
      {theImage.OffsetField(1), theWord, "the offset of the stamp"},
      {theImage.SizeField(1), theWord, "the size of the stamp"},
  };
  for (const auto& theField : kFields) {
    for (uint64_t theValue : {uint64_t{0xFFFFFFFFFFFFFFFF}, uint64_t{0x8000000080008000},
                              uint64_t{0x7FFFFFFF7FFF7FFF}, uint64_t{theSound.size() + 1}}) {
      std::string theBroken = theSound;
      PutNumber(&theBroken, theField.mField, theField.mFieldSize, theValue);
      ExpectNoStamp(theBroken, theField.mWhy + (" at " + std::to_string(theValue)));
    }
    std::string theBroken = theSound;
    theBroken[theField.mField + theField.mFieldSize - 1] ^= 1;
    ExpectNoStamp(theBroken, theField.mWhy + std::string(" by its last byte"));
  }
}

TEST_P(qvPathRevision, ATableWithMoreEntriesThanTheFileHoldsIsWalkedToItsEnd) {
  ElfImage theImage(GetParam());
  std::string theBytes = theImage.Add(kStampName, "8\nmain\n").Bytes();
  PutNumber(&theBytes, theImage.EntryCountField(), 2, 0xFFFF);
  EXPECT_EQ(8, Read(theBytes).mRevision);
  std::string theOther = ElfImage(GetParam()).Add(".text", "8\nmain\n").Bytes();
  PutNumber(&theOther, theImage.EntryCountField(), 2, 0xFFFF);
  ExpectNoStamp(theOther, "the walk ends behind the file");
}

TEST_P(qvPathRevision, TheWalkGoesFromIndexOneToTheLastEntry) {
  ElfImage theImage(GetParam());
  const std::string theSound = theImage.Add(".text", "x").Add(kStampName, "8\nmain\n").Bytes();
  std::string theBytes = theSound;
  PutNumber(&theBytes, theImage.EntryCountField(), 2, 3);
  EXPECT_EQ(8, Read(theBytes).mRevision);
  PutNumber(&theBytes, theImage.EntryCountField(), 2, 2);
  ExpectNoStamp(theBytes, "the stamp is behind the count");
  // Moved down by two headers, the stamp's own is that of index 0.
  PutNumber(&theBytes, theImage.EntryCountField(), 2, 1);
  PutNumber(&theBytes, theImage.SectionTableField(), theImage.WordSize(),
            theImage.FileHeaderSize() + 2 * theImage.SectionHeaderSize());
  PutNumber(&theBytes, theImage.NamesIndexField(), 2, 1);
  ExpectNoStamp(theBytes, "the stamp is at index 0");
}

TEST_P(qvPathRevision, TheHeadersStandAsFarApartAsTheFileSays) {
  ElfImage theImage(GetParam());
  const size_t theSize = theImage.SectionHeaderSize();
  const size_t theTable = theImage.FileHeaderSize();
  std::string theBytes = theImage.Add(kStampName, "9\nmain\n").Bytes();
  // Spread by 300 bytes: the headers are written behind the file again, and found there.
  const size_t theNewTable = theBytes.size();
  for (size_t i = 0; i <= theImage.NamesIndex(); ++i) {
    theBytes += theBytes.substr(theTable + i * theSize, theSize) + std::string(300, '-');
  }
  PutNumber(&theBytes, theImage.SectionTableField(), theImage.WordSize(), theNewTable);
  PutNumber(&theBytes, theImage.EntrySizeField(), 2, theSize + 300);
  EXPECT_EQ(9, Read(theBytes).mRevision);
}

TEST_P(qvPathRevision, EverythingButTheFileHeaderMayLieBehindTwoGiB) {
  const uint64_t kFar = 0x81234567;
  const std::string theStampText = "6\nmain\n";
  ElfImage theImage(GetParam());
  std::string theBytes = theImage.Add(kStampName, theStampText).Bytes();
  const size_t theHeaderSize = theImage.FileHeaderSize();
  const uint64_t theData = kFar + theHeaderSize + (theImage.NamesIndex() + 1) * theImage.SectionHeaderSize();
  PutNumber(&theBytes, theImage.SectionTableField(), theImage.WordSize(), kFar + theHeaderSize);
  PutNumber(&theBytes, theImage.OffsetField(1), theImage.WordSize(), theData);
  PutNumber(&theBytes, theImage.OffsetField(2), theImage.WordSize(), theData + theStampText.size());
  std::string thePath = mScratch.File("sparse");
  WriteWholeFile(thePath, theBytes.substr(0, theHeaderSize));
  int theFile = open(thePath.c_str(), O_WRONLY);
  ASSERT_EQ(static_cast<ssize_t>(theBytes.size()),
            pwrite(theFile, theBytes.data(), theBytes.size(), static_cast<off_t>(kFar)));
  close(theFile);
  Stamp theStamp = ReadStamp(thePath);
  EXPECT_EQ(6, theStamp.mRevision);
  EXPECT_EQ("main", theStamp.mBranch);
}

TEST_P(qvPathRevision, ASectionMayClaimMoreThanMemoryHolds) {
  ElfImage theImage(GetParam());
  std::string theBytes = theImage.Add(kStampName, "3\nmain\n").Bytes();
  std::string thePath = mScratch.File("sparse");
  // The rest of the sparse file is zero bytes, which end the text.
  for (uint64_t theSize : {16777216u, 16777217u, 2999990000u}) {
    PutNumber(&theBytes, theImage.SizeField(1), theImage.WordSize(), theSize);
    PutNumber(&theBytes, theImage.SizeField(theImage.NamesIndex()), theImage.WordSize(), theSize);
    WriteWholeFile(thePath, theBytes);
    ASSERT_EQ(0, truncate(thePath.c_str(), 3000000000));
    Stamp theStamp = ReadStamp(thePath);
    EXPECT_EQ(3, theStamp.mRevision) << theSize;
    EXPECT_EQ("main", theStamp.mBranch) << theSize;
  }
}

TEST_P(qvPathRevision, WhatLiesBehind16MiBOfAStampIsNotRead) {
  const std::string theLongest(16777216 - 3, 'b');
  EXPECT_EQ(theLongest, ReadStampText("3\n" + theLongest + "\n").mBranch);
  EXPECT_EQ(theLongest, ReadStampText("3\n" + theLongest + "\nmore").mBranch);
  Stamp theStamp = ReadStampText("3\nb" + theLongest + "\n");
  EXPECT_EQ(3, theStamp.mRevision);
  EXPECT_EQ(kUntouched, theStamp.mBranch);
}

TEST_P(qvPathRevision, TheSectionOfNamesMayBeOfAnyLength) {
  const std::string theLongName(17 * 1024 * 1024, 'n');
  Stamp theStamp = Read(ElfImage(GetParam()).Add(theLongName, "x").Add(kStampName, "6\nmain\n").Bytes());
  EXPECT_EQ(6, theStamp.mRevision);
  EXPECT_EQ("main", theStamp.mBranch);
}

TEST_P(qvPathRevision, TheEndOfTheSectionOfNamesEndsAName) {
  ElfImage theImage(GetParam());
  std::string theBytes = theImage.Add(kStampName, "7\nmain\n").Bytes();
  const size_t theName = 1;  // behind the empty name of index 0
  PutNumber(&theBytes, theImage.SizeField(theImage.NamesIndex()), theImage.WordSize(), theName + 13);
  EXPECT_EQ(7, Read(theBytes).mRevision) << "the whole name, without its terminator";
  PutNumber(&theBytes, theImage.SizeField(theImage.NamesIndex()), theImage.WordSize(), theName + 12);
  ExpectNoStamp(theBytes, "the last character is outside");
  PutNumber(&theBytes, theImage.SizeField(theImage.NamesIndex()), theImage.WordSize(), theName);
  ExpectNoStamp(theBytes, "all of the name is outside");
}

TEST_P(qvPathRevision, TheFileIsClosedAgain) {
  std::string thePath = mScratch.File("image");
  for (const std::string& theBytes : {ElfImage(GetParam()).Add(kStampName, "1\nmain\n").Bytes(),
                                      std::string("no program"), std::string()}) {
    WriteWholeFile(thePath, theBytes);
    int theBefore = dup(0);
    close(theBefore);
    ReadStamp(thePath);
    int theAfter = dup(0);
    close(theAfter);
    EXPECT_EQ(theBefore, theAfter);
  }
}

TEST(qvPathRevisionFile, WhatIsNoProgramHasNoRevision) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("text"), std::string(10000, 'x'));
  WriteWholeFile(theScratch.File("zero"), std::string(10000, '\0'));
  WriteWholeFile(theScratch.File("high"), std::string(10000, '\xFF'));
  for (const std::string& thePath :
       {theScratch.File("text"), theScratch.File("zero"), theScratch.File("high"), theScratch.File("missing"),
        theScratch.Path(), std::string("/dev/null"), std::string("/dev/zero"), std::string()}) {
    Stamp theStamp = ReadStamp(thePath);
    EXPECT_EQ(0, theStamp.mRevision) << thePath;
    EXPECT_EQ(kUntouched, theStamp.mBranch) << thePath;
  }
}

TEST(qvPathRevisionFile, TheExampleOfTheDocumentationIsReadAsItSays) {
  // docs/revision-stamp.md shows these bytes.
  const struct {
    size_t mOffset;
    std::string mBytes;
  } kParts[] = {
      {0, "\x7f\x45\x4c\x46\x01"},
      {32, std::string("\x34\0\0\0", 4)},
      {46, std::string("\x28\0", 2)},
      {48, std::string("\x03\0", 2)},
      {50, std::string("\x02\0", 2)},
      {92, std::string("\x01\0\0\0", 4)},
      {96, std::string("\x01\0\0\0", 4)},
      {108, std::string("\xac\0\0\0", 4)},
      {112, std::string("\x0a\0\0\0", 4)},
      {148, std::string("\xb6\0\0\0", 4)},
      {152, std::string("\x19\0\0\0", 4)},
      {172, "1234\nmain\n"},
      {182, std::string("\0.qvra.version\0", 15)},
      {197, std::string(".shstrtab\0", 10)},
  };
  std::string theBytes(207, '\0');
  for (const auto& thePart : kParts) {
    theBytes.replace(thePart.mOffset, thePart.mBytes.size(), thePart.mBytes);
  }
  ASSERT_EQ(207u, theBytes.size());
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("image"), theBytes);
  Stamp theStamp = ReadStamp(theScratch.File("image"));
  EXPECT_EQ(1234, theStamp.mRevision);
  EXPECT_EQ("main", theStamp.mBranch);
}

TEST(qvPathRevisionFile, NullHasNoRevision) {
  char* theBranch = nullptr;
  EXPECT_EQ(0, qvPath_GetBinaryRevision(nullptr, &theBranch));
  EXPECT_EQ(nullptr, theBranch);
}

TEST(qvPathRevisionFile, AProgramReadsItsOwnStamp) {
  ScratchFolder theScratch;
  ChildResult theResult = RunProgram(CopyTestProgram("StampedProgram", theScratch.Path()));
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("1234 main\n", theResult.mStdout);
}

TEST(qvPathRevisionFile, AProgramWithoutAStampHasNone) {
  Stamp theStamp = ReadStamp(TestProgramPath("PathProbe"));
  EXPECT_EQ(0, theStamp.mRevision);
  EXPECT_EQ(kUntouched, theStamp.mBranch);
}
