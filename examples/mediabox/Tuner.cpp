// Tuner.cpp - a C++ module that names its log module once and then logs without naming it.
#include <qvLog/qvLog.h>

#include "Mediabox.h"

QVLOG_WITH_MODULE_IF(TUNER, 1)

void Tuner_Tune(unsigned aChannel) {
  QV_INFO(F("tuning to channel %u\n", aChannel));
  QV_DEBUG(F("lock after 2 tries, signal %d %%\n", 87));
  QV_WARN(F("bit error rate %.1e\n", 2.5e-4));
  QV_ERR(F("no programme table on channel %u\n", aChannel));
}
