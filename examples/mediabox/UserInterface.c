/* UserInterface.c - a module in plain C. */
#include <qvLog/qvLog.h>

#include "Mediabox.h"

void UserInterface_ShowMenu(int aWidth, int aHeight) {
  static const wchar_t kTitle[] = L"Men\u00FC\n";
  QVLOG_INFO(USER_INTERFACE, F("menu of %d by %d\n", aWidth, aHeight));
  QVLOG_DEBUG(USER_INTERFACE, U(kTitle, sizeof(kTitle) / sizeof(kTitle[0]) - 1));
  QVLOG_WARN(USER_INTERFACE, F("no translation for '%s'\n", "menu.favourites"));
  QVLOG_ERR(USER_INTERFACE, F("font '%s' is missing\n", "Serif"));
}
