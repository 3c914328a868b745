#include <spdlog/sinks/tcp_sink.h>
#include <spdlog/spdlog.h>

#include "Workload.h"

static const Contender sStatement(kStatementRow, "spdlog, tcp sink", [](benchmark::State& aState) {
  spdlog::sinks::tcp_sink_config theConfig("127.0.0.1", ntohs(Collector::The().Address().sin_port));
  // One thread logs, so the sink without a lock would do; ours has one.
  spdlog::logger theLogger("DEFAULT", std::make_shared<spdlog::sinks::tcp_sink_mt>(theConfig));
  theLogger.set_pattern("%L %H:%M:%S:%e|%t|%-10n %v");
  TimeStatements(aState, [&](const Statement& aStatement) {
    theLogger.info(STATEMENT_BRACES, aStatement.mTuner, aStatement.mFrequency, aStatement.mQuality);
  });
});
