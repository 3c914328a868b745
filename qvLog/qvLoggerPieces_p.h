// qvLoggerPieces_p.h - the pieces in which a line reaches a logger's sink.
#ifndef QVLOG_QVLOGGERPIECES_P_H
#define QVLOG_QVLOGGERPIECES_P_H

#include "qvLog/qvLogger.h"

// Whether the logger is one of the library's own and no object of a class derived from them: nobody has
// replaced any of its operations, so nobody sees whether a prefix comes in one piece.
bool qvLogger_S_IsOwn(const qvLogger* aLogger);

// While one lives, each piece of a line that is handed to a sink is sure to be followed by another one of the
// same line. A logger may keep it until then. The caller holds the log lock.
class qvLoggerMorePieces {
 public:
  qvLoggerMorePieces() { ++sDepth; }
  ~qvLoggerMorePieces() { --sDepth; }
  qvLoggerMorePieces(const qvLoggerMorePieces&) = delete;
  qvLoggerMorePieces& operator=(const qvLoggerMorePieces&) = delete;

  static bool Follow() { return sDepth != 0; }

 private:
  static unsigned int sDepth;
};

#endif
