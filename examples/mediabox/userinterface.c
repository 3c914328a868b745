/* userinterface.c - a program in plain C. */
#include <qvLog/qvLog.h>

#include "Commands.h"

static void ShowMenu(void) {
  QVLOG_INFO(GUI, F("menu of %d by %d\n", 640, 480));
  QVLOG_DEBUG(GUI, F("%d entries, the first is '%s'\n", 12, "Television"));
  QVLOG_WARN(GUI, F("no translation for '%s'\n", "menu.favourites"));
  QVLOG_ERR(GUI, F("font '%s' is missing\n", "Serif"));
}

int main(void) {
  Commands_Run(ShowMenu);
  return 0;
}
