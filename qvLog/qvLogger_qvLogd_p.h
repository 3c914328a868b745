// qvLogger_qvLogd_p.h - what the sources of the log daemon logger share.
#ifndef QVLOG_QVLOGGER_QVLOGD_P_H
#define QVLOG_QVLOGGER_QVLOGD_P_H

// The settings are read for every resolution, and by a reload for the populated file.
#define kqvLogdLogger_DefaultTarget "%QVRALOG%"

#endif
