// Delivery.h - all outputs of the collector as one: the file or standard output, and the forwarding.
#ifndef QVLOGD_DELIVERY_H
#define QVLOGD_DELIVERY_H

#include <memory>
#include <string>

#include "tools/qvlogd/LogForwarder.h"
#include "tools/qvlogd/LogOutput.h"
#include "tools/qvlogd/Options.h"

struct DeliveryCounts {
  uint64 mOutputDropped = 0;  // lines
  bool mfForward = false;
  uint64 mForwardSent = 0;     // messages
  uint64 mForwardDropped = 0;  // messages
};

class Delivery : public LogRecordSink {
 public:
  explicit Delivery(const Options& aOptions);

  bool Open(std::string* aError);  // one line of text in aError on failure
  void Take(const LogRecord& aRecord) override;
  void Flush();  // at the end of each turn of the loop
  void Reopen();
  void Close();  // writes and sends, for a bounded time, what is queued; nothing may follow
  // Nobody will ever read what is delivered from here on.
  bool HasEnded() const;
  DeliveryCounts Counts() const;

 private:
  LogOutput mOutput;
  std::unique_ptr<LogForwarder> mForwarder;
};

#endif
