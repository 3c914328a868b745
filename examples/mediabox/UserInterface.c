/* UserInterface.c - a module in plain C. */
#include <qvLog/qvLog.h>

#include "Mediabox.h"

void UserInterface_ShowMenu(int aWidth, int aHeight) {
  QVLOG_INFO(GUI, F("menu of %d by %d\n", aWidth, aHeight));
  QVLOG_DEBUG(GUI, F("%d entries, the first is '%s'\n", 12, "Television"));
  QVLOG_WARN(GUI, F("no translation for '%s'\n", "menu.favourites"));
  QVLOG_ERR(GUI, F("font '%s' is missing\n", "Serif"));
}
