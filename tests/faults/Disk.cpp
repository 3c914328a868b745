#include "faults/Disk.h"

#include <unistd.h>

#include <algorithm>

#include "support/ScratchFolder.h"

namespace {

constexpr int kNoFile = -1;
constexpr int kNeedsNothing = -1;

// What may be there of bytes that were not flushed.
std::vector<std::string> Remains(const std::string& aBytes, size_t aPartCount) {
  std::set<std::string> theRemains = {"", aBytes, std::string(aBytes.size(), '\0')};
  for (size_t i = 1; i < std::min(aPartCount, aBytes.size()); ++i) {
    size_t theLength = aBytes.size() <= aPartCount ? i : std::max<size_t>(1, aBytes.size() * i / aPartCount);
    std::string theZeros(aBytes.size() - theLength, '\0');
    theRemains.insert(aBytes.substr(0, theLength));
    theRemains.insert(aBytes.substr(0, theLength) + theZeros);
    theRemains.insert(std::string(theLength, '\0') + aBytes.substr(theLength));
  }
  return {theRemains.begin(), theRemains.end()};
}

}  // namespace

void WriteDiskImage(const std::string& aFolder, const DiskImage& anImage) {
  std::map<int, std::string> theWritten;
  for (const auto& theEntry : anImage.mNames) {
    const std::string thePath = aFolder + "/" + theEntry.first;
    std::string& theFirstPath = theWritten[theEntry.second];
    if (theFirstPath.empty()) {
      WriteWholeFile(thePath, anImage.mContents.at(theEntry.second));
      theFirstPath = thePath;
    } else {
      (void)!link(theFirstPath.c_str(), thePath.c_str());
    }
  }
}

std::string Describe(const DiskImage& anImage) {
  FolderImage theImage;
  for (const auto& theEntry : anImage.mNames) {
    theImage[theEntry.first] = anImage.mContents.at(theEntry.second);
  }
  return Describe(theImage);
}

DiskImage DurableImage(const FolderImage& anImage) {
  DiskImage theResult;
  for (const auto& theEntry : anImage) {
    const int theNumber = static_cast<int>(theResult.mNames.size());
    theResult.mNames[theEntry.first] = theNumber;
    theResult.mContents[theNumber] = theEntry.second;
  }
  return theResult;
}

Disk::Disk(const DiskImage& aDurable) : mDurableNames(aDurable.mNames), mNames(aDurable.mNames) {
  for (const auto& theEntry : aDurable.mContents) {
    mFiles[theEntry.first] = {theEntry.second, true};
  }
}

int Disk::FileOf(const std::string& aName) const {
  auto theFound = mNames.find(aName);
  return theFound != mNames.end() ? theFound->second : kNoFile;
}

void Disk::Do(const DiskOperation& anOperation) {
  const std::string& theName = anOperation.mName;
  const int theFile = FileOf(theName);
  switch (anOperation.mKind) {
    case DiskOperation::Kind::kCreate:
      if (theFile == kNoFile) {
        const int theNewFile = mFiles.empty() ? 0 : mFiles.rbegin()->first + 1;
        mNames[theName] = theNewFile;
        mChanges.push_back({theName, theNewFile, kNeedsNothing});
      }
      mOpenFiles[theName] = mNames[theName];
      mFiles[mNames[theName]] = {"", false};
      break;
    case DiskOperation::Kind::kWrite:
      mFiles[mOpenFiles[theName]].mBytes += anOperation.mBytes;
      mFiles[mOpenFiles[theName]].mfFlushed = false;
      break;
    case DiskOperation::Kind::kSyncFile:
      mFiles[mOpenFiles[theName]].mfFlushed = true;
      break;
    case DiskOperation::Kind::kSyncFolder:
      mDurableNames = mNames;
      mChanges.clear();
      break;
    case DiskOperation::Kind::kRename:
      mNames[anOperation.mNewName] = theFile;
      mNames.erase(theName);
      mChanges.push_back({anOperation.mNewName, theFile, kNeedsNothing});
      mChanges.push_back({theName, kNoFile, static_cast<int>(mChanges.size()) - 1});
      break;
    case DiskOperation::Kind::kUnlink:
      mNames.erase(theName);
      mChanges.push_back({theName, kNoFile, kNeedsNothing});
      break;
  }
}

bool Disk::IsPossible(const std::vector<bool>& aChoice) const {
  for (size_t i = 0; i < mChanges.size(); ++i) {
    if (aChoice[i] && mChanges[i].mNeeds != kNeedsNothing && !aChoice[mChanges[i].mNeeds]) {
      return false;
    }
  }
  return true;
}

void Disk::AddImagesOfChoice(const std::vector<bool>& aChoice, size_t aPartCount,
                             std::set<DiskImage>* anImages) const {
  DiskImage theImage;
  theImage.mNames = mDurableNames;
  for (size_t i = 0; i < mChanges.size(); ++i) {
    if (aChoice[i] && mChanges[i].mFile == kNoFile) {
      theImage.mNames.erase(mChanges[i].mName);
    } else if (aChoice[i]) {
      theImage.mNames[mChanges[i].mName] = mChanges[i].mFile;
    }
  }
  // A save has one file open that is not flushed yet.
  int theUnflushed = kNoFile;
  for (const auto& theEntry : theImage.mNames) {
    theImage.mContents[theEntry.second] = mFiles.at(theEntry.second).mBytes;
    theUnflushed = mFiles.at(theEntry.second).mfFlushed ? theUnflushed : theEntry.second;
  }
  if (theUnflushed == kNoFile) {
    anImages->insert(theImage);
    return;
  }
  for (const std::string& theRemains : Remains(mFiles.at(theUnflushed).mBytes, aPartCount)) {
    theImage.mContents[theUnflushed] = theRemains;
    anImages->insert(theImage);
  }
}

void Disk::AddImages(NameOrder anOrder, size_t aPartCount, std::set<DiskImage>* anImages) const {
  const size_t theCount = mChanges.size();
  if (anOrder == NameOrder::kOrdered) {
    for (size_t theLength = 0; theLength <= theCount; ++theLength) {
      std::vector<bool> theChoice(theLength, true);
      theChoice.resize(theCount, false);
      AddImagesOfChoice(theChoice, aPartCount, anImages);
    }
    return;
  }
  for (size_t theBits = 0; theBits < (static_cast<size_t>(1) << theCount); ++theBits) {
    std::vector<bool> theChoice(theCount);
    for (size_t i = 0; i < theCount; ++i) {
      theChoice[i] = (theBits >> i & 1) != 0;
    }
    if (IsPossible(theChoice)) {
      AddImagesOfChoice(theChoice, aPartCount, anImages);
    }
  }
}
