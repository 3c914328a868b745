// Logs what its arguments say, one operation after the other, so that a test can look at the outputs and the
// configuration files of a process of its own. File names are relative to the program's folder.
//
// clang-format off
//   log LEVEL MODULE TEXT           one message
//   begin, append TEXT, end         a message of level 1 and module 0 in pieces
//   takes                           prints whether such a message is taken
//   will LEVEL MODULE               prints the answer
//   gate                            prints the process-wide gate
//   threshold NAME                  prints a logger's threshold, "none" when it is not in the chain
//   capacity                        prints the size of the formatting buffer
//   reload, term, never             the framework operations
//   func LEVEL                      registers a callback that prints its text in brackets
//   fork, ..., parent               a child process does what is between and exits; then the parent goes on
//   print TEXT                      on standard output, which is flushed when the program exits
//   modules-off                     makes every module without a setting silent
//   probe                           makes a logger "Probe" outside the chain
//   probe-without-config            makes one with that option
//   probe-with-other-options        makes one with all options but that
//   get-level DEFAULT               prints the probe's threshold
//   get-int KEY DEFAULT             prints a setting of the probe; get-text KEY DEFAULT likewise
//   file-name                       prints the name of the configuration file
//   write FILE TEXT, cat FILE, make-folder FOLDER, remove FILE
//   limit BYTES                     how long a file may get; 0: as long as the system allows
//   count-writes LEVEL MODULE TEXT  logs, and prints the number of write system calls that took
//   clock SECONDS MICROSECONDS      stops the wall clock there
//   zone TZ, nozone                 changes the time zone, or leaves it to the system
//   no-local-time                   makes the conversion to local time fail
// clang-format on

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>

#include "qvLog/qvLogger.h"
#include "qvLog/qvLoggerConfig_p.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

static bool sfClockStopped = false;
static struct timeval sClock;

// Stands in for the system's: all wall-clock times of the library come from it.
extern "C" int gettimeofday(struct timeval* aTime, void*) noexcept {
  if (sfClockStopped) {
    *aTime = sClock;
  } else {
    struct timespec theNow;
    clock_gettime(CLOCK_REALTIME, &theNow);
    aTime->tv_sec = theNow.tv_sec;
    aTime->tv_usec = theNow.tv_nsec / 1000;
  }
  return 0;
}

static bool sfNoLocalTime = false;

// Stands in for the system's, which cannot be made to fail.
extern "C" struct tm* localtime(const time_t* aTime) noexcept {
  static struct tm sTime;
  if (sfNoLocalTime) {
    return NULL;
  }
  tzset();
  return localtime_r(aTime, &sTime);
}

class ProbeLogger : public qvLogger {
 public:
  ProbeLogger() : qvLogger("Probe", false) {}
};

static char** sArguments;
static ProbeLogger* sProbe;
static qvLogData* sData;

static const char* Next() {
  ++sArguments;
  if (*sArguments == NULL) {
    fprintf(stderr, "LogScript: argument missing\n");
    _exit(2);
  }
  return *sArguments;
}

static int NextNumber() { return atoi(Next()); }

static std::string InFolder(const char* aName) {
  char* thePath = qvPath_Normalize(aName, 0, kqvPathNormalizeMode_Native, NULL);
  std::string theResult(thePath);
  qvFree(thePath);
  return theResult;
}

static void Log() {
  qvLogLevel theLevel = static_cast<qvLogLevel>(NextNumber());
  qvLogModule theModule = static_cast<qvLogModule>(NextNumber());
  const char* theText = Next();
  qvLogData* theData = qvLog_Begin(theLevel, theModule);
  if (theData != NULL) {
    qvLog_Append_F("%s", theText);
    qvLog_End(theData);
  }
}

static long WriteCalls() {
  std::ifstream theStream("/proc/self/io");
  std::string theWord;
  long theNumber = -1;
  while (theStream >> theWord) {
    if (theWord == "syscw:") {
      theStream >> theNumber;
    }
  }
  return theNumber;
}

static void PrintThreshold(const char* aName) {
  for (qvLogger* theLogger = qvLogger::sHead; theLogger != NULL; theLogger = theLogger->mNext) {
    if (strcmp(theLogger->mName, aName) == 0) {
      printf("%d\n", theLogger->GetLevel());
      return;
    }
  }
  puts("none");
}

static void PrintText(void*, const qvLogData*, const char* aText, size_t aLength) {
  printf("[%.*s]\n", static_cast<int>(aLength), aText);
}

// In the child, returns; in the parent, when the child has exited.
static void Fork() {
  pid_t theChild = fork();
  if (theChild == 0) {
    return;
  }
  int theStatus = -1;
  waitpid(theChild, &theStatus, 0);
  if (theStatus != 0) {
    fprintf(stderr, "LogScript: a child ended with status %d\n", theStatus);
    _exit(3);
  }
  while (strcmp(Next(), "parent") != 0) {
  }
}

static void Limit(rlim_t aBytes) {
  struct rlimit theLimit;
  getrlimit(RLIMIT_FSIZE, &theLimit);
  theLimit.rlim_cur = aBytes != 0 ? aBytes : theLimit.rlim_max;
  setrlimit(RLIMIT_FSIZE, &theLimit);
  signal(SIGXFSZ, SIG_IGN);
}

static bool RunFileOperation(const std::string& aName) {
  if (aName == "write") {
    std::string thePath = InFolder(Next());
    std::ofstream(thePath, std::ios::trunc) << Next();
  } else if (aName == "cat") {
    std::ifstream theStream(InFolder(Next()));
    std::string theText(std::istreambuf_iterator<char>(theStream), {});
    fwrite(theText.data(), 1, theText.size(), stdout);
  } else if (aName == "make-folder") {
    mkdir(InFolder(Next()).c_str(), 0777);
  } else if (aName == "remove") {
    unlink(InFolder(Next()).c_str());
  } else if (aName == "limit") {
    Limit(static_cast<rlim_t>(NextNumber()));
  } else {
    return false;
  }
  return true;
}

static bool RunConfigOperation(const std::string& aName) {
  if (aName == "probe") {
    sProbe = new ProbeLogger;
  } else if (aName == "probe-without-config") {
    sProbe = new ProbeLogger;
    sProbe->SetOptions(qvLogger::OPT_NO_CONFIG);
  } else if (aName == "probe-with-other-options") {
    sProbe = new ProbeLogger;
    sProbe->SetOptions(~static_cast<uint32>(qvLogger::OPT_NO_CONFIG));
  } else if (aName == "get-level") {
    printf("%d\n", sProbe->GetConfigLevel(Next()));
  } else if (aName == "get-int") {
    const char* theKey = Next();
    printf("%d\n", sProbe->GetConfig(theKey, static_cast<int32>(NextNumber())));
  } else if (aName == "get-text") {
    const char* theKey = Next();
    printf("<%s>\n", sProbe->GetConfig(theKey, Next()).c_str());
  } else if (aName == "file-name") {
    puts(qvLogger::GetConfigFileName());
  } else if (aName == "capacity") {
    printf("%d\n", _qvLog_gData.mSizeofFormatted);
  } else {
    return false;
  }
  return true;
}

static bool RunLogOperation(const std::string& aName) {
  if (aName == "log") {
    Log();
  } else if (aName == "begin") {
    sData = qvLog_Begin(1, 0);
  } else if (aName == "append") {
    qvLog_Append_F("%s", Next());
  } else if (aName == "end") {
    qvLog_End(sData);
  } else if (aName == "takes") {
    sData = qvLog_Begin(1, 0);
    printf("%d\n", sData != NULL);
    if (sData != NULL) {
      qvLog_End(sData);
    }
  } else if (aName == "print") {
    printf("%s", Next());
  } else if (aName == "will") {
    qvLogLevel theLevel = static_cast<qvLogLevel>(NextNumber());
    printf("%d\n", qvLog_WillLog(theLevel, static_cast<qvLogModule>(NextNumber())));
  } else if (aName == "gate") {
    printf("%d\n", _qvLog_Level);
  } else if (aName == "threshold") {
    PrintThreshold(Next());
  } else if (aName == "count-writes") {
    fflush(stdout);
    long theBefore = WriteCalls();
    Log();
    printf("%ld\n", WriteCalls() - theBefore);
  } else {
    return false;
  }
  return true;
}

static bool RunFrameworkOperation(const std::string& aName) {
  if (aName == "reload") {
    qvLog_ReloadConfig();
  } else if (aName == "term") {
    qvLog_Term();
  } else if (aName == "never") {
    qvLog_NeverLog();
  } else if (aName == "func") {
    qvLog_SetLogFunc(static_cast<qvLogLevel>(NextNumber()), PrintText, NULL);
  } else if (aName == "fork") {
    Fork();
  } else if (aName == "parent") {
    exit(0);
  } else if (aName == "modules-off") {
    _gfDefaultIsToLog = 0;
  } else if (aName == "clock") {
    sClock.tv_sec = atol(Next());
    sClock.tv_usec = atol(Next());
    sfClockStopped = true;
  } else if (aName == "no-local-time") {
    sfNoLocalTime = true;
  } else if (aName == "zone") {
    setenv("TZ", Next(), 1);
  } else if (aName == "nozone") {
    unsetenv("TZ");
  } else {
    return false;
  }
  return true;
}

int main(int, char** anArguments) {
  for (sArguments = anArguments + 1; *sArguments != NULL; ++sArguments) {
    std::string theName = *sArguments;
    if (!RunLogOperation(theName) && !RunConfigOperation(theName) && !RunFrameworkOperation(theName) &&
        !RunFileOperation(theName)) {
      fprintf(stderr, "LogScript: unknown operation %s\n", theName.c_str());
      return 2;
    }
  }
  delete sProbe;
  return 0;
}
