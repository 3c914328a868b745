// The revision stamp of a program file is found where the file's headers say, or not at all; in a whole file
// and in a broken one.
#include <limits.h>

#include "FuzzInput.h"
#include "MemoryFiles.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

namespace {

const char kPath[] = "/program";

// Where the numbers of the headers stand, and how many bytes they have.
struct Layout {
  size_t mHeaderSize;
  size_t mTable, mTableSize;
  size_t mEntrySize, mEntryCount, mNamesIndex;
  size_t mSectionSize;
  size_t mOffset, mDataSize, mWordSize;
};

const Layout kLayout32 = {52, 32, 4, 46, 48, 50, 40, 16, 20, 4};
const Layout kLayout64 = {64, 40, 8, 58, 60, 62, 64, 24, 32, 8};

struct Section {
  uint64_t mName;
  uint64_t mType;
  uint64_t mOffset;
  uint64_t mSize;
};

// A file that is read by its layout. What is not there is told by false.
class Program {
 public:
  explicit Program(const std::string& aBytes) : mBytes(aBytes), mLayout(kLayout32) {
    if (aBytes.compare(0, 5,
                       "\x7F"
                       "ELF\x02") == 0) {
      mLayout = kLayout64;
    }
  }

  bool IsWhole() const { return mBytes.size() >= mLayout.mHeaderSize && NamesIndex() != 0; }
  uint64_t SectionCount() const { return NumberAt(mLayout.mEntryCount, 2); }
  uint64_t NamesIndex() const { return NumberAt(mLayout.mNamesIndex, 2); }

  bool ReadSection(uint64_t anIndex, Section* aSection) const {
    uint64_t theTable = NumberAt(mLayout.mTable, mLayout.mTableSize);
    uint64_t thePosition = theTable + anIndex * NumberAt(mLayout.mEntrySize, 2);
    if (theTable > mBytes.size() || thePosition + mLayout.mSectionSize > mBytes.size()) {
      return false;
    }
    *aSection = {NumberAt(thePosition, 4), NumberAt(thePosition + 4, 4),
                 NumberAt(thePosition + mLayout.mOffset, mLayout.mWordSize),
                 NumberAt(thePosition + mLayout.mDataSize, mLayout.mWordSize)};
    return true;
  }

  bool ReadData(const Section& aSection, std::string* aData) const {
    if (aSection.mOffset > mBytes.size() || aSection.mSize > mBytes.size() - aSection.mOffset) {
      return false;
    }
    *aData = mBytes.substr(aSection.mOffset, aSection.mSize);
    return true;
  }

 private:
  uint64_t NumberAt(uint64_t aPosition, size_t aSize) const {
    uint64_t theNumber = 0;
    for (size_t i = aSize; i > 0; --i) {
      theNumber = theNumber << 8 | static_cast<uint8_t>(mBytes[aPosition + i - 1]);
    }
    return theNumber;
  }

  const std::string& mBytes;
  Layout mLayout;
};

bool FindStamp(const Program& aProgram, std::string* aStamp) {
  Section theNamesSection;
  std::string theNames;
  if (!aProgram.IsWhole() || !aProgram.ReadSection(aProgram.NamesIndex(), &theNamesSection) ||
      !aProgram.ReadData(theNamesSection, &theNames)) {
    return false;
  }
  Section theSection;
  for (uint64_t i = 1; i < aProgram.SectionCount() && aProgram.ReadSection(i, &theSection); ++i) {
    if (theSection.mType == 1 && theSection.mName < theNames.size() &&
        strcmp(theNames.c_str() + theSection.mName, ".qvra.version") == 0) {
      return aProgram.ReadData(theSection, aStamp);
    }
  }
  return false;
}

int RevisionOf(const std::string& aStamp) {
  long long theRevision = strtoll(aStamp.c_str(), nullptr, 10);
  theRevision = theRevision > INT_MAX ? INT_MAX : theRevision;
  return static_cast<int>(theRevision < INT_MIN ? INT_MIN : theRevision);
}

void CheckBranch(const char* aBranch, const std::string& aStamp) {
  std::string theText = aStamp.c_str();
  size_t theFirst = theText.find('\n');
  size_t theSecond = theFirst != std::string::npos ? theText.find('\n', theFirst + 1) : std::string::npos;
  if (theSecond == std::string::npos) {
    FUZZ_REQUIRE(aBranch == nullptr);
  } else {
    FUZZ_REQUIRE(aBranch != nullptr && theText.substr(theFirst + 1, theSecond - theFirst - 1) == aBranch);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string theBytes(reinterpret_cast<const char*>(aBytes), aLength);
  // A file may say that it has 65,535 sections. Looking at so many takes long and shows nothing new, so the
  // high byte of the number is 0 here, in either layout.
  for (size_t theHighByte : {kLayout32.mEntryCount + 1, kLayout64.mEntryCount + 1}) {
    if (theHighByte < theBytes.size()) {
      theBytes[theHighByte] = '\0';
    }
  }
  MemoryFiles_Set(kPath, theBytes);
  std::string theStamp;
  bool theFound = FindStamp(Program(theBytes), &theStamp);
  char* theBranch = nullptr;
  FUZZ_REQUIRE(qvPath_GetBinaryRevision(kPath, &theBranch) == (theFound ? RevisionOf(theStamp) : 0));
  CheckBranch(theBranch, theFound ? theStamp : "");
  qvFree(theBranch);
  return 0;
}
