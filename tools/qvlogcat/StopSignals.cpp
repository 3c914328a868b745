#include "tools/qvlogcat/StopSignals.h"

#include <signal.h>
#include <stddef.h>

static volatile sig_atomic_t sfHasCome = 0;

static void StopSignals_S_Remember(int) { sfHasCome = 1; }

void StopSignals_Catch() {
  struct sigaction theAction = {};
  theAction.sa_handler = StopSignals_S_Remember;
  theAction.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &theAction, NULL);
  sigaction(SIGTERM, &theAction, NULL);
}

bool StopSignals_HasCome() { return sfHasCome != 0; }
