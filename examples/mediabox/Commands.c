#include "Commands.h"

#include <qvLog/qvLog.h>
#include <stdio.h>
#include <string.h>

void Commands_Run(void (*aScene)(void)) {
  char theCommand[64];
  while (fgets(theCommand, sizeof(theCommand), stdin) != NULL) {
    theCommand[strcspn(theCommand, "\n")] = '\0';
    if (strcmp(theCommand, "quit") == 0) {
      return;
    } else if (strcmp(theCommand, "scene") == 0) {
      aScene();
    } else if (strcmp(theCommand, "reload") == 0) {
      qvLog_ReloadConfig();
    }
    puts("ok");
    fflush(stdout);
  }
}
