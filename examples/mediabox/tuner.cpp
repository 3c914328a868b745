// tuner.cpp - a C++ program that names its log module once and then logs without naming it.
#include <qvLog/qvLog.h>

#include "Commands.h"

QVLOG_WITH_MODULE_IF(TUNER, 1)

static void Tune() {
  QV_INFO(F("tuning to channel %u\n", 7u));
  QV_DEBUG(F("lock after 2 tries, signal %d %%\n", 87));
  QV_WARN(F("bit error rate %.1e\n", 2.5e-4));
  QV_ERR(F("no programme table on channel %u\n", 7u));
}

int main() {
  Commands_Run(Tune);
  return 0;
}
