#include <signal.h>
#include <unistd.h>

#include "qvLog/qvLog.h"
#include "tools/qvlogcat/StopSignals.h"
#include "tools/qvlogcat/Viewer.h"

static const int kExitBadOption = 2;

int main(int anArgumentCount, char** anArguments) {
  // The viewer logs nothing; without this the library would write settings for it at exit.
  qvLog_NeverLog();
  signal(SIGPIPE, SIG_IGN);
  ViewerOptions theOptions;
  switch (ViewerOptions_Read(anArgumentCount, anArguments, &theOptions)) {
    case ViewerOptionsResult_Run:
      break;
    case ViewerOptionsResult_Done:
      return 0;
    case ViewerOptionsResult_Bad:
      return kExitBadOption;
  }
  if (theOptions.mfFollow) {
    StopSignals_Catch();
  }
  return Viewer(theOptions, STDOUT_FILENO).Run();
}
