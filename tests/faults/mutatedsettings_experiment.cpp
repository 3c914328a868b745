// Spoils the bytes of settings files at random, a hundred thousand times: each is loaded, read in every way
// and saved three times over. Nothing may crash, and the third save must equal the second.
#include <errno.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "faults/Experiment.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr size_t kLongestName = 127;  // bytes of a key; a longer line without '=' ends the process on purpose
constexpr const char* kOverlongKey =
    "reason '(strlen(aSection) < kqvINIFile_SectionMaxLength) && (strlen(aKey)) < "
    "kqvINIFile_SectionMaxLength'";
constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

std::vector<std::string> Seeds() {
  return {
      "; a comment\nvolume = 12  # inline\n[Net]\nHost = \"my box; the old one\"\nflag\n",
      std::string(kByteOrderMark) + "name='it\\'s'\r\n\r\n[A b]\r\nx=1\r\n[]\r\ny=0x1F\r\n",
      "[s/t]\nk=v\n[s]\nt=w\n[empty]\n[S]\nk=\"a\\\\b\\\"c\" rest\n",
      "k=" + std::string(900, 'v') + "\nq=\"" + std::string(500, '"') + "\"\nl=" + std::string(1500, ';') +
          "\n",
      "[" + std::string(140, 's') + "]\n" + std::string(126, 'k') + "=1\n" + std::string(150, 'k') + "=2\n",
      "[file]\nlevel=all\nfile=log-%y%m%d-%n.log\nappend=1\n\n[options]\nmax_len_logger=1024\ndate=off\n",
      "q=" + std::string(300, '\\') + "\nr=" + std::string(340, '\'') + "\nlast = no line end",
  };
}

class Mutator {
 public:
  explicit Mutator(unsigned aNumber) : mRandom(aNumber) {}

  std::string Spoil(std::string aText, const std::string& anOther) {
    for (size_t theCount = 1 + Below(8); theCount > 0; --theCount) {
      size_t thePos = Below(aText.size() + 1);
      size_t theLength = Below(std::min<size_t>(aText.size() - thePos, 40) + 1);
      switch (Below(7)) {
        case 0:
          aText.insert(thePos, 1, static_cast<char>(Below(256)));
          break;
        case 1:
          aText.insert(thePos, 1, "\n\r=[]\"'\\;#/ \t%\0"[Below(15)]);
          break;
        case 2:
          aText.erase(thePos, theLength);
          break;
        case 3:
          aText.insert(Below(aText.size() + 1), aText.substr(thePos, theLength));
          break;
        case 4:
          aText.insert(thePos, anOther.substr(Below(anOther.size() + 1), Below(200)));
          break;
        case 5:
          aText.insert(thePos, Below(200), "=\"\\ a;"[Below(6)]);
          break;
        default:
          if (thePos < aText.size()) {
            aText[thePos] = static_cast<char>(aText[thePos] ^ 1 << Below(8));
          }
      }
    }
    return aText;
  }

  size_t Below(size_t aLimit) { return mRandom() % aLimit; }

 private:
  std::mt19937 mRandom;
};

// Where a line begins, as the loader cuts them, that may be a key that is too long; npos if none does.
size_t OverlongKey(const std::string& aText) {
  for (size_t thePos = 0; thePos < aText.size();) {
    size_t theEnd = std::min(aText.find_first_of("\r\n", thePos), aText.size());
    size_t theLength = std::min<size_t>(theEnd - thePos, kqvINIFile_MaxLineLength - 1);
    std::string theLine = aText.substr(thePos, theLength).c_str();  // to the first zero byte
    if (theLine.size() > kLongestName && theLine.find('=') == std::string::npos) {
      return thePos;
    }
    thePos += theLength + (thePos + theLength == theEnd ? 1 : 0);
  }
  return std::string::npos;
}

// A text that depends on the number alone. Dying takes long, so nine of ten overlong keys are given a value.
std::string MutatedText(unsigned aNumber) {
  static const std::vector<std::string> kSeeds = Seeds();
  Mutator theMutator(aNumber);
  const std::string& theSeed = kSeeds[theMutator.Below(kSeeds.size())];
  std::string theText = theMutator.Spoil(theSeed, kSeeds[theMutator.Below(kSeeds.size())]);
  for (size_t thePos = 0; aNumber % 10 != 0 && (thePos = OverlongKey(theText)) != std::string::npos;) {
    theText.insert(thePos + kLongestName, 1, '=');
  }
  return theText;
}

void ReadInEveryWay(qvDictionary* aDictionary) {
  int theFound = 0;
  for (size_t i = 0; i < qvINIFile_GetNumberOfSections(aDictionary); ++i) {
    const std::string theSection = qvINIFile_GetSectionName(aDictionary, i);
    for (size_t j = 0; j < qvINIFile_GetNumberOfKeys(aDictionary, theSection.c_str()); ++j) {
      const std::string theKey = qvINIFile_GetKeyName(aDictionary, theSection.c_str(), j);
      if (theKey.size() <= kLongestName) {
        qvINIFile_ReadKeyAsString(aDictionary, theSection.c_str(), theKey.c_str(), "", &theFound);
        qvINIFile_ReadKeyAsInt32(aDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
        qvINIFile_ReadKeyAsUInt32(aDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
        qvINIFile_ReadKeyAsBool(aDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
        qvINIFile_ReadKeyAsDouble(aDictionary, theSection.c_str(), theKey.c_str(), 0, &theFound);
        qvFree(qvINIFile_ReadKeyAsStringWithSubstitution(aDictionary, theSection.c_str(), theKey.c_str(), "",
                                                         &theFound,
                                                         [](char*, void*) -> char* { return nullptr; }));
      }
    }
  }
}

// What is in the file after loading it, reading and saving.
std::string LoadAndSave(const std::string& aFile) {
  qvDictionary* theDictionary = qvDictionary_New(0);
  qvINIFile_LoadINIFile(aFile.c_str(), theDictionary);
  ReadInEveryWay(theDictionary);
  qvINIFile_SaveINIFile(aFile.c_str(), theDictionary);
  qvDictionary_Delete(theDictionary);
  return ReadWholeFile(aFile);
}

// Whether a header may name a section with the character that joins section and key: its keys move to another
// section with the next save, and what they are called then may be cut with the one after that.
bool MayHaveSlashInHeader(const std::string& aText) {
  for (size_t thePos = aText.find('['); thePos != std::string::npos; thePos = aText.find('[', thePos + 1)) {
    const std::string theName = aText.substr(thePos, aText.find_first_of("]\r\n", thePos) - thePos);
    if (theName.find(kqvINIFIle_SectionSeparator) != std::string::npos) {
      return true;
    }
  }
  return false;
}

// Whether the third save is the second, or at least the sixth the fifth where a section's name moves.
bool Settles(const std::string& aText, const std::string& aFile) {
  WriteWholeFile(aFile, aText);
  const std::string theFirst = LoadAndSave(aFile);
  const int theSaves = MayHaveSlashInHeader(aText) || MayHaveSlashInHeader(theFirst) ? 6 : 3;
  std::string theLast = theFirst;
  bool theIsSettled = false;
  // A name that begins with a byte order mark loses it when it comes to stand at the start of a file.
  bool theLosesItsMark = false;
  for (int i = 2; i <= theSaves && (i <= 3 || !theIsSettled); ++i) {
    const std::string theNext = LoadAndSave(aFile);
    theIsSettled = theNext == theLast;
    theLosesItsMark = theLosesItsMark || theLast.compare(0, 3, kByteOrderMark) == 0;
    theLast = theNext;
  }
  return theIsSettled || theLosesItsMark;
}

// Tries a text that may end the process: then in a child, which must die of that alone.
bool SettlesOrDiesOfItsKey(const std::string& aText, const std::string& aFile) {
  ChildResult theResult = RunInChild([&] {
    if (!Settles(aText, aFile)) {
      _exit(1);
    }
  });
  return theResult.mExitCode == 0 ||
         (theResult.mSignal == SIGABRT && theResult.mStderr.find(kOverlongKey) != std::string::npos);
}

// Tries the texts of a range in a child, which tells its progress in shared memory. A crash costs one text.
void TryRange(Experiment* anExperiment, unsigned aBegin, unsigned anEnd, unsigned* aProgress,
              bool* afSettled) {
  ScratchFolder theFolder;
  *aProgress = aBegin;
  while (*aProgress < anEnd) {
    *afSettled = true;
    pid_t theChild = fork();
    if (theChild == 0) {
      for (; *aProgress < anEnd && *afSettled; ++*aProgress) {
        const std::string theText = MutatedText(*aProgress);
        *afSettled = OverlongKey(theText) != std::string::npos
                         ? SettlesOrDiesOfItsKey(theText, theFolder.File("a.ini"))
                         : Settles(theText, theFolder.File("a.ini"));
      }
      _exit(0);
    }
    int theStatus = 0;
    waitpid(theChild, &theStatus, 0);
    if (!*afSettled) {
      anExperiment->Failed("text " + std::to_string(*aProgress - 1) + ": the third save is not the second");
    } else if (theStatus != 0) {
      anExperiment->Failed("text " + std::to_string(*aProgress) + ": died with status " +
                           std::to_string(theStatus));
      ++*aProgress;
    }
  }
  anExperiment->Tried(anEnd - aBegin);
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("mutatedsettings", aCount, anArguments);
  struct Shared {
    unsigned mProgress;
    bool mfSettled;
  };
  Shared* theShared = static_cast<Shared*>(
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  TryRange(&theExperiment, 0, theExperiment.IsNight() ? 3000000 : 100000, &theShared->mProgress,
           &theShared->mfSettled);
  return theExperiment.Finish();
}
