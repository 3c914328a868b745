#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

ScratchFolder::ScratchFolder() {
  std::string theTemplate = (std::filesystem::temp_directory_path() / "qvLogTest-XXXXXX").string();
  if (mkdtemp(theTemplate.data()) == nullptr) {
    ADD_FAILURE() << "no scratch folder " << theTemplate;
  }
  mPath = theTemplate;
}

ScratchFolder::~ScratchFolder() {
  std::error_code theIgnored;
  std::filesystem::remove_all(mPath, theIgnored);
}

std::string ScratchFolder::Names() const {
  std::set<std::string> theNames;
  for (const auto& theEntry : std::filesystem::directory_iterator(mPath)) {
    theNames.insert(theEntry.path().filename().string());
  }
  std::string theText;
  for (const std::string& theName : theNames) {
    theText += (theText.empty() ? "" : " ") + theName;
  }
  return theText;
}

std::string ReadWholeFile(const std::string& aPath) {
  std::ifstream theStream(aPath, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(theStream), {});
}

void WriteWholeFile(const std::string& aPath, const std::string& aContent) {
  std::ofstream theStream(aPath, std::ios::binary | std::ios::trunc);
  theStream.write(aContent.data(), static_cast<std::streamsize>(aContent.size()));
  theStream.flush();
  ASSERT_TRUE(theStream.good()) << aPath;
}

bool FileExists(const std::string& aPath) { return std::filesystem::exists(aPath); }
