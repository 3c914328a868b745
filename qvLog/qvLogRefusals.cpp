#include "qvLog/qvLogRefusals_p.h"

#include "qvLog/qvLoggerPieces_p.h"

#define kqvLogRefusals_Levels 65536

uint16 _qvLog_gRefusals[QVLOG_MAX_MODULES];

// Without a logger nothing is remembered, because the framework may have to be initialised.
static bool qvLogRefusals_S_LoggersStayAsTheyAre() {
  for (const qvLogger* theLogger = qvLogger::sHead; theLogger != NULL; theLogger = theLogger->mNext) {
    if (!qvLogger_S_IsOwn(theLogger)) {
      return false;
    }
  }
  return qvLogger::sHead != NULL;
}

void qvLogRefusals_Add(qvLogLevel aLevel, qvLogModule aModule) {
  if (aModule < QVLOG_MAX_MODULES && aLevel > 0 && qvLogRefusals_S_LoggersStayAsTheyAre()) {
    // What was known before covered less, or the message would not have come here.
    __atomic_store_n(&_qvLog_gRefusals[aModule], static_cast<uint16>(kqvLogRefusals_Levels - aLevel),
                     __ATOMIC_RELAXED);
  }
}

void qvLogRefusals_Forget() {
  for (uint16& theRefusals : _qvLog_gRefusals) {
    __atomic_store_n(&theRefusals, 0, __ATOMIC_RELAXED);
  }
}
