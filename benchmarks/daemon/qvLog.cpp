// With default settings, but for the target: only the log daemon logger is open.
#include <qvLog/qvLog.h>
#include <qvLog/qvLogger_qvLogd.h>
#include <stdlib.h>

#include "Workload.h"

// A statement is one line.
static void LogStatement(const Statement& aStatement) {
  QVLOG_INFO(DEFAULT,
             F(STATEMENT_PRINTF "\n", aStatement.mTuner, aStatement.mFrequency, aStatement.mQuality));
}

// Reads the target anew, and logs once, which connects where that is possible.
static void MoveTo(const sockaddr_in& anAddress) {
  setenv("QVRALOG", ("127.0.0.1:" + std::to_string(ntohs(anAddress.sin_port))).c_str(), 1);
  qvLog_ReloadConfig();
  LogStatement(Statement());
}

static const Contender sStatement(kStatementRow, "qvLog", [](benchmark::State& aState) {
  MoveTo(Collector::The().Address());
  TimeStatements(aState, LogStatement);
});

static const Contender sNobody(kNobodyRow, "qvLog", [](benchmark::State& aState) {
  MoveTo(ClosedPort());
  const unsigned int theLost = qvLogdLogger::sInstance->mLostLogs;
  Statement theStatement;
  for (auto _ : aState) {
    benchmark::DoNotOptimize(theStatement);
    LogStatement(theStatement);
  }
  if (qvLogdLogger::sInstance->mLostLogs - theLost != aState.iterations()) {
    aState.SkipWithError("not every message was lost");
  }
});
