// LedgerReport.h - the ledger as people and as programs read it.
//
//   PROCESS                       LINES         LOST    HELD BACK  CONNECTIONS
//   player-1a2b3c4d                1000            3            0            2  reconnected
//   player-9f8e7d6c                  20            0            0            1  restarted
//   2 processes                    1020            3            0            3
//   dropped by the output: 0
//   forwarded: 1020, dropped: 0                                           (with --forward)
//
// As JSON it is one object on one line: {"processes":[{"process":"player","uuid":"1a2b3c4d-...","lines":1000,
// "lost":3,"held_back":0,"connections":2,"connected":false,"restarted":false},...],"earlier":{"processes":0,
// "lines":0,...},"total":{"processes":2,"lines":1020,"lost":3,"held_back":0,"connections":3},
// "output":{"dropped":0},"forward":{"sent":1020,"dropped":0}}. "earlier" sums up the entries that were
// dropped for room.
#ifndef QVLOGD_LEDGERREPORT_H
#define QVLOGD_LEDGERREPORT_H

#include <string>

#include "tools/qvlogd/Delivery.h"
#include "tools/qvlogd/Ledger.h"

std::string LedgerReport_Text(Ledger& aLedger, const DeliveryCounts& aCounts);
std::string LedgerReport_JSON(Ledger& aLedger, const DeliveryCounts& aCounts);

#endif
