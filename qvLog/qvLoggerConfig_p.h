// qvLoggerConfig_p.h - the options of section "options", which hold for all loggers of the process.
#ifndef QVLOG_QVLOGGERCONFIG_P_H
#define QVLOG_QVLOGGERCONFIG_P_H

#include "qvLog/qvLogger.h"

// 0: every module without a setting is inactive, whatever the module table says.
extern int _gfDefaultIsToLog;
// Defaults that are read are written into the configuration file.
extern bool _gfAutoPopulate;
// Time stamps carry the date.
extern uint16 _gfDateActivate;

// Reads the options above through aLogger and allocates the shared formatting buffer of the record.
void qvLoggerConfig_ReadProcessOptions(qvLogger* aLogger);

#endif
