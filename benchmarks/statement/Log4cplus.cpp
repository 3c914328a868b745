#include <log4cplus/log4cplus.h>

#include <memory>

#include "Workload.h"

static log4cplus::Logger& TheLogger() {
  static log4cplus::Initializer sInitializer;
  static log4cplus::Logger sLogger = log4cplus::Logger::getInstance("TUNER");
  return sLogger;
}

// The macro for a format is slower than the stream.
#define STATEMENT(LOGGER)                                                                                  \
  LOG4CPLUS_INFO(LOGGER, "Tuner " << aTuner.mNumber << " locked to " << aTuner.mFrequency << " kHz after " \
                                  << aTuner.mDelay << " ms")

static const Contender sOffByLevel(kOffByLevel, "log4cplus", [](benchmark::State& aState) {
  TheLogger().setLogLevel(log4cplus::ERROR_LOG_LEVEL);
  log4cplus::Logger theLogger = TheLogger();
  Repeat(aState, [&](const Tuner& aTuner) { STATEMENT_TEN_TIMES(STATEMENT(theLogger)); });
});

namespace {
struct File {
  static void Open(const char* aPath) {
    log4cplus::SharedAppenderPtr theAppender(new log4cplus::FileAppender(aPath, std::ios::trunc, true));
    theAppender->setLayout(std::make_unique<log4cplus::PatternLayout>("%-5p %D{%H:%M:%S:%q}|%t|%-10c %m%n"));
    TheLogger().setLogLevel(log4cplus::INFO_LOG_LEVEL);
    TheLogger().setAdditivity(false);
    TheLogger().addAppender(theAppender);
    sLogger = std::make_unique<log4cplus::Logger>(TheLogger());
  }
  static void Write(const Tuner& aTuner) { STATEMENT(*sLogger); }
  static void Close() { TheLogger().removeAllAppenders(); }

  static inline std::unique_ptr<log4cplus::Logger> sLogger;
};
}  // namespace
static const FileRows<File> sFileRows("log4cplus");
