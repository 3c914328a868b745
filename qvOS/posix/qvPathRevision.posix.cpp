// The part of qvPath that reads the revision stamp of a binary.
//
// The file may come from anywhere. Each offset and size in it is checked against the size of the file before
// it is used, and numbers are put together byte by byte, so no field has to be aligned or sensible.
#include "qvOS/qvPath.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include "qvOS/qvFile.h"
#include "qvraTools/qvMalloc.h"

#define kqvElf_StampSection    ".qvra.version"
#define kqvElf_TypeProgramData 1
#define kqvElf_Magic           "\177ELF"
#define kqvElf_MagicLength     4        /* bytes                                                  */
#define kqvElf_ClassOffset     4        /* bytes; where the class stands in every file            */
#define kqvElf_Class64         2        /* all other values are read with the 32-bit layout       */
#define kqvElf_MaxHeaderSize   64       /* bytes; of a file header or a section header            */
#define kqvElf_MaxStampSize    16777216 /* bytes; no more are read of a stamp                     */

// A little-endian number in a header.
struct Elf_Field {
  size_t mOffset;
  size_t mSize;
};

// Where the fields that are read stand in the headers of a class of files.
struct Elf_Layout {
  size_t mFileHeaderSize;
  Elf_Field mSectionTable;  // e_shoff
  Elf_Field mEntrySize;     // e_shentsize
  Elf_Field mEntryCount;    // e_shnum
  Elf_Field mNamesIndex;    // e_shstrndx
  size_t mSectionHeaderSize;
  Elf_Field mName;    // sh_name
  Elf_Field mType;    // sh_type
  Elf_Field mOffset;  // sh_offset
  Elf_Field mSize;    // sh_size
};

// clang-format off
//                                  header  e_shoff  shentsize e_shnum  shstrndx  section sh_name sh_type sh_offset sh_size
static const Elf_Layout kElf_Layout32 = {52, {32, 4}, {46, 2}, {48, 2}, {50, 2},  40, {0, 4}, {4, 4}, {16, 4}, {20, 4}};
static const Elf_Layout kElf_Layout64 = {64, {40, 8}, {58, 2}, {60, 2}, {62, 2},  64, {0, 4}, {4, 4}, {24, 8}, {32, 8}};
// clang-format on

struct Elf_File {
  qvFileFD mFD;
  uint64 mFileSize;
  const Elf_Layout* mLayout;
  uint64 mSectionTable;
  uint64 mEntrySize;
  uint64 mEntryCount;
  uint64 mNamesIndex;
};

struct Elf_SectionHeader {
  uint64 mName;
  uint64 mType;
  uint64 mOffset;
  uint64 mSize;
};

static uint64 Elf_GetField(const uint8* aHeader, Elf_Field aField) {
  uint64 theValue = 0;
  for (size_t i = aField.mSize; i > 0; --i) {
    theValue = theValue << 8 | aHeader[aField.mOffset + i - 1];
  }
  return theValue;
}

static bool Elf_IsInFile(const Elf_File* aFile, uint64 anOffset, uint64 aSize) {
  return anOffset <= aFile->mFileSize && aSize <= aFile->mFileSize - anOffset;
}

static bool Elf_ReadAt(const Elf_File* aFile, uint64 anOffset, void* aBuffer, uint32 aSize) {
  return Elf_IsInFile(aFile, anOffset, aSize) &&
         qvFile_Seek(aFile->mFD, static_cast<qvFileOffset>(anOffset), qvFileSeekMode_Begin) == 0 &&
         qvFile_Read(aFile->mFD, aBuffer, aSize) == aSize;
}

// Fills aFile, of which only the descriptor is known yet. False for a file without section names.
static bool Elf_ReadFileHeader(Elf_File* aFile) {
  qvFileOffset theSize;
  uint8 theHeader[kqvElf_MaxHeaderSize];
  if (qvFile_GetSize(aFile->mFD, &theSize) != 0) {
    return false;
  }
  aFile->mFileSize = static_cast<uint64>(theSize);
  const Elf_Layout* theLayout = &kElf_Layout32;
  if (!Elf_ReadAt(aFile, 0, theHeader, static_cast<uint32>(theLayout->mFileHeaderSize))) {
    return false;
  }
  if (memcmp(theHeader, kqvElf_Magic, kqvElf_MagicLength) == 0 &&
      theHeader[kqvElf_ClassOffset] == kqvElf_Class64) {
    theLayout = &kElf_Layout64;
    if (!Elf_ReadAt(aFile, 0, theHeader, static_cast<uint32>(theLayout->mFileHeaderSize))) {
      return false;
    }
  }
  aFile->mLayout = theLayout;
  aFile->mSectionTable = Elf_GetField(theHeader, theLayout->mSectionTable);
  aFile->mEntrySize = Elf_GetField(theHeader, theLayout->mEntrySize);
  aFile->mEntryCount = Elf_GetField(theHeader, theLayout->mEntryCount);
  aFile->mNamesIndex = Elf_GetField(theHeader, theLayout->mNamesIndex);
  return aFile->mNamesIndex != 0;
}

static bool Elf_ReadSectionHeader(const Elf_File* aFile, uint64 anIndex, Elf_SectionHeader* aSection) {
  uint8 theHeader[kqvElf_MaxHeaderSize];
  const Elf_Layout* theLayout = aFile->mLayout;
  // The table is checked by itself first: behind that, index times entry size (32 bits) cannot overflow the
  // sum.
  if (!Elf_IsInFile(aFile, aFile->mSectionTable, 0) ||
      !Elf_ReadAt(aFile, aFile->mSectionTable + anIndex * aFile->mEntrySize, theHeader,
                  static_cast<uint32>(theLayout->mSectionHeaderSize))) {
    return false;
  }
  aSection->mName = Elf_GetField(theHeader, theLayout->mName);
  aSection->mType = Elf_GetField(theHeader, theLayout->mType);
  aSection->mOffset = Elf_GetField(theHeader, theLayout->mOffset);
  aSection->mSize = Elf_GetField(theHeader, theLayout->mSize);
  return true;
}

// The data of the stamp's section as a new text, with a terminator behind it; null when it is not whole in
// the file. A sparse file can hold sections of any size, so a very long one is cut.
static char* Elf_ReadSectionData(const Elf_File* aFile, const Elf_SectionHeader* aSection) {
  if (!Elf_IsInFile(aFile, aSection->mOffset, aSection->mSize)) {
    return NULL;
  }
  uint32 theSize =
      static_cast<uint32>(aSection->mSize < kqvElf_MaxStampSize ? aSection->mSize : kqvElf_MaxStampSize);
  char* theData = static_cast<char*>(qvMalloc(theSize + 1));
  if (!Elf_ReadAt(aFile, aSection->mOffset, theData, theSize)) {
    qvFree(theData);
    return NULL;
  }
  theData[theSize] = '\0';
  return theData;
}

// Whether the text at aName in the section of names is that of the stamp. Only as many bytes are read as the
// stamp's name has, however long the section is.
static bool Elf_IsStampName(const Elf_File* aFile, const Elf_SectionHeader* aNames, uint64 aName) {
  char theName[sizeof(kqvElf_StampSection)] = "";
  if (aName >= aNames->mSize) {
    return false;
  }
  uint64 theSize = aNames->mSize - aName;
  if (theSize > sizeof(theName)) {
    theSize = sizeof(theName);
  }
  return Elf_ReadAt(aFile, aNames->mOffset + aName, theName, static_cast<uint32>(theSize)) &&
         memcmp(theName, kqvElf_StampSection, sizeof(theName)) == 0;
}

// Finds the first section of program data that bears the stamp's name.
static bool Elf_FindStamp(const Elf_File* aFile, Elf_SectionHeader* aStamp) {
  Elf_SectionHeader theNames;
  if (!Elf_ReadSectionHeader(aFile, aFile->mNamesIndex, &theNames) ||
      !Elf_IsInFile(aFile, theNames.mOffset, theNames.mSize)) {
    return false;
  }
  for (uint64 i = 1; i < aFile->mEntryCount && Elf_ReadSectionHeader(aFile, i, aStamp); ++i) {
    if (aStamp->mType == kqvElf_TypeProgramData && Elf_IsStampName(aFile, &theNames, aStamp->mName)) {
      return true;
    }
  }
  return false;
}

// The decimal number at the start, as atoi reads it; a number that no int holds becomes the nearest one.
static int qvPath_S_StampedRevision(const char* aStamp) {
  long long theRevision = strtoll(aStamp, NULL, 10);
  return static_cast<int>(theRevision > INT_MAX ? INT_MAX : theRevision < INT_MIN ? INT_MIN : theRevision);
}

// A copy of the second line, or null when it is not ended by a line feed.
static char* qvPath_S_StampedBranch(const char* aStamp) {
  const char* theFirstEnd = strchr(aStamp, '\n');
  const char* theSecondEnd = theFirstEnd != NULL ? strchr(theFirstEnd + 1, '\n') : NULL;
  if (theSecondEnd == NULL) {
    return NULL;
  }
  return qvStrndup(theFirstEnd + 1, static_cast<size_t>(theSecondEnd - theFirstEnd - 1));
}

static int qvPath_S_ReadRevision(Elf_File* aFile, char** aBranch) {
  Elf_SectionHeader theSection;
  if (!Elf_ReadFileHeader(aFile) || !Elf_FindStamp(aFile, &theSection)) {
    return 0;
  }
  char* theStamp = Elf_ReadSectionData(aFile, &theSection);
  if (theStamp == NULL) {
    return 0;
  }
  int theRevision = qvPath_S_StampedRevision(theStamp);
  char* theBranch = aBranch != NULL ? qvPath_S_StampedBranch(theStamp) : NULL;
  if (theBranch != NULL) {
    *aBranch = theBranch;
  }
  qvFree(theStamp);
  return theRevision;
}

int qvPath_GetBinaryRevision(const char* aFilePath, char** aBranch) {
  Elf_File theFile = {};
  if (aFilePath == NULL ||
      qvFile_Open(aFilePath, qvFileOpenMode_Read, qvFileAccessMode_Read, &theFile.mFD) != 0) {
    return 0;
  }
  int theRevision = qvPath_S_ReadRevision(&theFile, aBranch);
  qvFile_Close(theFile.mFD);
  return theRevision;
}
