// NoLogDaemon.h - settings of a program whose messages must not reach a log daemon that runs on this machine.
//
// Test programs that stay in the build folder have them beside them. They also leave the process-wide gate to
// the loggers of the test.
#ifndef TESTS_SUPPORT_NOLOGDAEMON_H
#define TESTS_SUPPORT_NOLOGDAEMON_H

constexpr char kNoLogDaemon[] = "[qvlogd]\nlevel=off\n";

#endif
