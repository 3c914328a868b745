// How qvPlatform starts a program. The function below stands before the system's own in this program, so that
// a test sees the command; it runs the command only when a test asks for that.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <string>

#include "qvOS/qvPlatform.h"
#include "support/ScratchFolder.h"

namespace {

std::string sCommand;
int sResult = 0;
bool sfRun = false;

}  // namespace

extern "C" int system(const char* aCommand) {
  using SystemFunc = int (*)(const char*);
  sCommand = aCommand;
  return sfRun ? reinterpret_cast<SystemFunc>(dlsym(RTLD_NEXT, "system"))(aCommand) : sResult;
}

TEST(qvPlatformLaunch, TheCommandIsTheQuotedPathTheParameterAndAnAmpersand) {
  const struct {
    const char* mPath;
    const char* mParameter;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"/bin/prog", nullptr, "\"/bin/prog\"  &", "no parameter is an empty one"},
      {"/bin/prog", "", "\"/bin/prog\"  &", "an empty parameter"},
      {"/bin/prog", "-a  b", "\"/bin/prog\" -a  b &", "the parameter is not quoted"},
      {"/my files/prog", "\"x y\"", "\"/my files/prog\" \"x y\" &", "blanks and quotes pass"},
      {"a%sb", "%d\xC3\xFF", "\"a%sb\" %d\xC3\xFF &", "neither text is a format"},
      {"", nullptr, "\"\"  &", "an empty path"},
  };
  for (const auto& theCase : kCases) {
    qvPlatform_Launch(theCase.mPath, theCase.mParameter);
    EXPECT_EQ(theCase.mExpected, sCommand) << theCase.mWhy;
  }
}

TEST(qvPlatformLaunch, ALongCommandIsNotCut) {
  std::string theParameter(100000, 'p');
  qvPlatform_Launch("/bin/prog", theParameter.c_str());
  EXPECT_EQ("\"/bin/prog\" " + theParameter + " &", sCommand);
}

TEST(qvPlatformLaunch, TheResultIsThatOfTheSystem) {
  for (int theResult : {0, -1, 127 << 8, 9}) {
    sResult = theResult;
    EXPECT_EQ(theResult, qvPlatform_Launch("/bin/prog", nullptr));
  }
}

TEST(qvPlatformLaunch, NothingIsRunWithoutAPath) {
  sCommand = "untouched";
  EXPECT_EQ(-1, qvPlatform_Launch(nullptr, "-a"));
  EXPECT_EQ("untouched", sCommand);
}

TEST(qvPlatformLaunch, TheProgramRunsInTheBackground) {
  ScratchFolder theScratch;
  std::string thePipe = theScratch.File("pipe");
  ASSERT_EQ(0, mkfifo(thePipe.c_str(), 0600));
  sfRun = true;
  // The program cannot end before somebody reads, so a call that waited for it would never return.
  EXPECT_EQ(0, qvPlatform_Launch("/bin/echo", ("hello > " + thePipe).c_str()));
  sfRun = false;
  EXPECT_EQ("hello\n", ReadWholeFile(thePipe));
}
