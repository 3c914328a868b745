#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>

#include <functional>
#include <memory>
#include <mutex>

#include "Workload.h"

static std::shared_ptr<spdlog::logger> sLogger;

#define STATEMENT sLogger->info(STATEMENT_BRACES, aTuner.mNumber, aTuner.mFrequency, aTuner.mDelay)

static void MakeLogger(spdlog::sink_ptr aSink) { sLogger = std::make_shared<spdlog::logger>("TUNER", aSink); }

static const Contender sOffByLevel(kOffByLevel, "spdlog", [](benchmark::State& aState) {
  MakeLogger(std::make_shared<spdlog::sinks::null_sink_mt>());
  sLogger->set_level(spdlog::level::err);
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT_TEN_TIMES(STATEMENT); });
});

namespace {
struct File {
  static void Open(const char* aPath) {
    MakeLogger(std::make_shared<spdlog::sinks::basic_file_sink_mt>(aPath, true));
    sLogger->set_pattern("%L %H:%M:%S:%e|%8t|%-10n %v");
    sLogger->flush_on(spdlog::level::trace);
  }
  static void Write(const Tuner& aTuner) { STATEMENT; }
  static void Close() { sLogger.reset(); }
};

// What later versions have as callback_sink_mt.
class CallbackSink : public spdlog::sinks::base_sink<std::mutex> {
 public:
  using Callback = std::function<void(const spdlog::details::log_msg&)>;
  explicit CallbackSink(Callback aCallback) : mCallback(std::move(aCallback)) {}

 protected:
  void sink_it_(const spdlog::details::log_msg& aMessage) override { mCallback(aMessage); }
  void flush_() override {}

 private:
  Callback mCallback;
};
}  // namespace
static const FileRows<File> sFileRows("spdlog");

static void Receive(const spdlog::details::log_msg& aMessage) {
  LastText::Keep(aMessage.payload.data(), aMessage.payload.size());
}

static const Contender sIntoCallback(kIntoCallback, "spdlog", [](benchmark::State& aState) {
  MakeLogger(std::make_shared<CallbackSink>(Receive));
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT; });
  LastText::Check(aState);
});
