// Disk.h - the folder of a settings file as a medium keeps it, and what a power cut may leave of it.
//
// What was flushed stays. Of a file's bytes that were not flushed there may be none, the first ones, or zeros
// in the place of some. Of the changes to names since the folder was flushed there may be
//
//     ordered      any first part, as a journalling file system keeps them
//     unordered    any choice
//
// and a rename may have added the new name without having removed the old one, never the other way round.
#ifndef TESTS_FAULTS_DISK_H
#define TESTS_FAULTS_DISK_H

#include <stddef.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "faults/Settings.h"
#include "interposed/PlannedCalls.h"

// A folder after a power cut. Two names of one file are kept apart from two files of one content.
struct DiskImage {
  std::map<std::string, int> mNames;  // to numbers of files
  std::map<int, std::string> mContents;

  bool operator<(const DiskImage& anOther) const {
    return mNames != anOther.mNames ? mNames < anOther.mNames : mContents < anOther.mContents;
  }
};
void WriteDiskImage(const std::string& aFolder, const DiskImage& anImage);
std::string Describe(const DiskImage& anImage);

enum class NameOrder { kOrdered, kUnordered };

class Disk {
 public:
  explicit Disk(const DiskImage& aDurable);

  void Do(const DiskOperation& anOperation);

  // Adds every image that a power cut may leave now. Of a file's parts, at most aPartCount are tried.
  void AddImages(NameOrder anOrder, size_t aPartCount, std::set<DiskImage>* anImages) const;

 private:
  struct File {
    std::string mBytes;
    bool mfFlushed;
  };
  // A name that is set to a file, or removed.
  struct NameChange {
    std::string mName;
    int mFile;   // kNoFile to remove the name
    int mNeeds;  // index of the change without which this one does not happen, or -1
  };

  int FileOf(const std::string& aName) const;
  bool IsPossible(const std::vector<bool>& aChoice) const;
  void AddImagesOfChoice(const std::vector<bool>& aChoice, size_t aPartCount,
                         std::set<DiskImage>* anImages) const;

  std::map<int, File> mFiles;
  std::map<std::string, int> mDurableNames;
  std::map<std::string, int> mNames;      // as programs see them
  std::map<std::string, int> mOpenFiles;  // by the name they were opened under
  std::vector<NameChange> mChanges;       // since the folder was flushed
};

DiskImage DurableImage(const FolderImage& anImage);

#endif
