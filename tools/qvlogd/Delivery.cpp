#include "tools/qvlogd/Delivery.h"

#include <unistd.h>

static LogOutputOptions Delivery_S_OutputOptions(const Options& aOptions) {
  LogOutputOptions theOptions = aOptions.mOutput;
  if (theOptions.mPattern.empty()) {
    LogPrinter_WantsColor(aOptions.mColor.c_str(), STDOUT_FILENO, &theOptions.mfColor);
  } else {
    theOptions.mfColor = aOptions.mColor == "always";
  }
  return theOptions;
}

Delivery::Delivery(const Options& aOptions) : mOutput(Delivery_S_OutputOptions(aOptions)) {
  if (aOptions.mfForward) {
    mForwarder = std::make_unique<LogForwarder>(aOptions.mForward);
  }
}

bool Delivery::Open(std::string* aError) { return mOutput.Open(aError); }

void Delivery::Take(const LogRecord& aRecord) {
  mOutput.Take(aRecord);
  if (mForwarder != nullptr) {
    mForwarder->Take(aRecord);
  }
}

void Delivery::Flush() {
  mOutput.Flush();
  if (mForwarder != nullptr) {
    mForwarder->Flush();
  }
}

void Delivery::Reopen() { mOutput.Reopen(); }

void Delivery::Close() {
  mOutput.Close();
  if (mForwarder != nullptr) {
    mForwarder->Close();
  }
}

bool Delivery::HasEnded() const { return mOutput.HasEnded(); }

DeliveryCounts Delivery::Counts() const {
  DeliveryCounts theCounts;
  theCounts.mOutputDropped = mOutput.Dropped();
  if (mForwarder != nullptr) {
    theCounts.mfForward = true;
    theCounts.mForwardSent = mForwarder->Sent();
    theCounts.mForwardDropped = mForwarder->Dropped();
  }
  return theCounts;
}
