// Relative names where nobody can tell which directory the executable is in: in this program no link can be
// read, so that of "/proc" neither.

#include <errno.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvConfigFileINIBackend.h"

ssize_t readlink(const char* /*aPath*/, char* /*aBuffer*/, size_t /*aSize*/) noexcept {
  errno = ENOENT;
  return -1;
}

TEST(qvConfigFileUnanchored, ReadWriteNameGivesALayerWhichCannotBeSaved) {
  qvConfigFile* theConfigFile = qvConfigFile_New("ro.ini", "rw.ini", nullptr);
  ASSERT_NE(nullptr, theConfigFile);
  const qvConfigFile_INI* theObject = reinterpret_cast<const qvConfigFile_INI*>(theConfigFile);
  EXPECT_EQ(nullptr, theObject->mROFileName);
  EXPECT_EQ(nullptr, theObject->mRWFileName);
  EXPECT_EQ(1, qvConfigFile_SetString(theConfigFile, "a", "k", "1"));
  EXPECT_STREQ("1", qvConfigFile_GetString(theConfigFile, "a", "k", ""));
  EXPECT_EQ(0, qvConfigFile_Save(theConfigFile));
  qvConfigFile_Delete(theConfigFile);
}
