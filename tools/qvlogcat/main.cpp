#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "qvLog/qvLog.h"
#include "tools/qvlogcat/StopSignals.h"
#include "tools/qvlogcat/Viewer.h"

static const int kExitBadOption = 2;

// What was printed has to arrive: a script must not take an empty file for the answer.
static int Main_S_EndPrinting() {
  if (fflush(stdout) == 0) {
    return 0;
  }
  fprintf(stderr, "qvlogcat: standard output: %s\n", strerror(errno));
  return 1;
}

int main(int anArgumentCount, char** anArguments) {
  // The viewer logs nothing; without this the library would write settings for it at exit.
  qvLog_NeverLog();
  signal(SIGPIPE, SIG_IGN);
  ViewerOptions theOptions;
  switch (ViewerOptions_Read(anArgumentCount, anArguments, &theOptions)) {
    case ViewerOptionsResult_Run:
      break;
    case ViewerOptionsResult_Done:
      return Main_S_EndPrinting();
    case ViewerOptionsResult_Bad:
      return kExitBadOption;
  }
  if (theOptions.mfFollow) {
    StopSignals_Catch();
  }
  return Viewer(theOptions, STDOUT_FILENO).Run();
}
