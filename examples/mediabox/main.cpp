// main.cpp - a small media program that scripts/demo drives: it reads one command a line.
//   scene     each module logs at all four levels
//   reload    the module switches of the settings file are read again
//   restart   the loggers are closed; the next message opens them with the settings as they are then
// After each command it prints "ok" on standard output.
#include <qvLog/qvLog.h>
#include <stdio.h>
#include <string.h>

#include "Mediabox.h"

static void PrintLine(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  const char* thePrefix = static_cast<const char*>(aCookie);
  printf("%s level %u, module %u: %.*s", thePrefix, aData->mLevel, aData->mModule, static_cast<int>(aLength),
         aText);
}

static void RunScene() {
  Tuner_Tune(7);
  Player_Play("Night Train");
  UserInterface_ShowMenu(640, 480);
}

int main() {
  // The application's own log takes every level.
  static char sPrefix[] = "application:";
  qvLog_SetLogFunc(QVLOGLEVEL_DEBUG + 1, PrintLine, sPrefix);
  char theCommand[64];
  while (fgets(theCommand, sizeof(theCommand), stdin) != NULL) {
    theCommand[strcspn(theCommand, "\n")] = '\0';
    if (strcmp(theCommand, "scene") == 0) {
      RunScene();
    } else if (strcmp(theCommand, "reload") == 0) {
      qvLog_ReloadConfig();
    } else if (strcmp(theCommand, "restart") == 0) {
      qvLog_Term();
      qvLog_SetLogFunc(QVLOGLEVEL_DEBUG + 1, PrintLine, sPrefix);
    }
    puts("ok");
    fflush(stdout);
  }
  return 0;
}
