/* reload.c - log settings that are read again when the program is told so by SIGHUP, from its own loop. */
#define _POSIX_C_SOURCE 200809L /* sigaction */
#include <qvLog/qvLog.h>
#include <qvraTools/qvConfigFile.h>
#include <signal.h>
#include <string.h>

QVLOG_WITH_MODULE_IF(TUNER, 1);

/* Nothing of the library may be called in a signal handler, so the loop does the work. */
static volatile sig_atomic_t sfReload = 0;

static void OnHangup(int aSignal) {
  (void)aSignal;
  sfReload = 1;
}

/* What somebody else does with an editor and "kill -HUP": module TUNER on or off, in the file logger. */
static void SwitchTuner(int afOn) {
  qvConfigFile* theSettings = qvConfigFile_New("qvLog.reload.ini", "_qvLog.reload.ini", NULL);
  qvConfigFile_SetString(theSettings, "file", "level", "all");
  qvConfigFile_SetString(theSettings, "file", "file", "stdout");
  qvConfigFile_SetInt32(theSettings, "file", "log_tuner", afOn);
  qvConfigFile_Save(theSettings);
  qvConfigFile_Delete(theSettings);
  raise(SIGHUP);
}

static void DoOneRound(int aRound) {
  if (sfReload) {
    sfReload = 0;
    QVLOG_RELOADCONFIG;
  }
  QV_DEBUG(F("round %d\n", aRound));
  QVLOG_INFO(PLAYER, F("playing in round %d\n", aRound));
}

int main(void) {
  struct sigaction theAction;
  memset(&theAction, 0, sizeof(theAction));
  theAction.sa_handler = OnHangup;
  sigaction(SIGHUP, &theAction, NULL);

  SwitchTuner(1);
  DoOneRound(1);
  SwitchTuner(0);
  DoOneRound(2);
  SwitchTuner(1);
  DoOneRound(3);
  return 0;
}
