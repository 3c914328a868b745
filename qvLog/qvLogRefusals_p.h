// qvLogRefusals_p.h - messages that no logger takes, remembered so that the next one needs no lock.
//
// Only the library's own loggers are taken at their word: they decide by thresholds and module switches,
// which stay as they are until they are told otherwise. A new threshold, a reload and every other end of a
// framework lock forget everything: under that lock the chain changes, and a client may write to the fields
// of a logger.
#ifndef QVLOG_QVLOGREFUSALS_P_H
#define QVLOG_QVLOGREFUSALS_P_H

#include "qvLog/qvLogger.h"

// For each module 65536 less the lowest level that is known to be refused, as are all above it; 0: nothing is
// known.
extern uint16 _qvLog_gRefusals[QVLOG_MAX_MODULES];

// Whether every logger is known to refuse such messages. Any thread may ask. A stale answer costs at most one
// message that was logged while the settings changed.
static inline bool qvLogRefusals_Have(qvLogLevel aLevel, qvLogModule aModule) {
  return aModule < QVLOG_MAX_MODULES &&
         static_cast<uint16>(~aLevel) < __atomic_load_n(&_qvLog_gRefusals[aModule], __ATOMIC_RELAXED);
}

// Every logger of the chain has refused a message by its threshold or its module switch. Remembers it, if the
// loggers are such that they will refuse the next one too. The caller holds the log lock.
void qvLogRefusals_Add(qvLogLevel aLevel, qvLogModule aModule);

void qvLogRefusals_Forget();

#endif
