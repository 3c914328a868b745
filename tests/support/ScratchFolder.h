// ScratchFolder.h - a new folder for one test, removed with everything in it at the end.
#ifndef TESTS_SUPPORT_SCRATCHFOLDER_H
#define TESTS_SUPPORT_SCRATCHFOLDER_H

#include <string>

class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  // The folder's absolute path, without a trailing '/'.
  const std::string& Path() const { return mPath; }
  // The full path of a file in the folder.
  std::string File(const std::string& aName) const { return mPath + "/" + aName; }
  // The names of what is in the folder, sorted, with one blank between them.
  std::string Names() const;

 private:
  std::string mPath;
};

// The whole content of a file; the empty string when it cannot be read.
std::string ReadWholeFile(const std::string& aPath);
// Makes or replaces a file; fails the test when that is not possible.
void WriteWholeFile(const std::string& aPath, const std::string& aContent);
bool FileExists(const std::string& aPath);

#endif
