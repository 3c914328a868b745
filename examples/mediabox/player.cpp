// player.cpp - a C++ program that names the log module in each statement.
#include <qvLog/qvLog.h>

#include "Commands.h"

static void Play() {
  const unsigned char theHeader[] = {0x47, 0x40, 0x11, 0x10, 'q', 'v'};
  QVLOG_INFO(PLAYER, F("playing \"%s\"\n", "Night Train"));
  QVLOG_DEBUG(PLAYER, FML("streams:\n  video %dx%d\n  audio %d channels\n", 1920, 1080, 6));
  QVLOG_DEBUG(PLAYER, B(theHeader, sizeof(theHeader)));
  QVLOG_WARN(STORAGE, F("buffer at %d %%\n", 12));
  QVLOG_ERR(PLAYER, F("decoder gave up at %02u:%02u\n", 1u, 7u));
}

int main() {
  Commands_Run(Play);
  return 0;
}
