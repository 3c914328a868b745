// qvlogd - collects the log lines of the processes of a machine; see docs/man/qvlogd.8.

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "qvLog/qvLog.h"
#include "tools/qvlogd/Collector.h"
#include "tools/qvlogd/DescriptorSupply.h"
#include "tools/qvlogd/LedgerReport.h"
#include "tools/qvlogd/StreamCheck.h"

static const int kExitBadOption = 2;
static const char kDefaultAddress[] = "127.0.0.1:12222";
static const size_t kLedgerEntries = 4096;  // senders without a connection are forgotten beyond

static int Main_S_Fail(const std::string& aError) {
  fprintf(stderr, "qvlogd: %s\n", aError.c_str());
  return kExitBadOption;
}

// What was printed has to arrive: a script must not take an empty file for the answer.
static int Main_S_EndPrinting(int anExitCode) {
  return fflush(stdout) == 0 ? anExitCode : Main_S_Fail(std::string("standard output: ") + strerror(errno));
}

static bool Main_S_Listen(const Options& aOptions, Listeners* aListeners, std::string* aError) {
  if (!Listener_Inherit(aOptions.mfAllowRemote, aListeners, aError)) {
    return false;
  }
  std::vector<std::string> theAddresses = aOptions.mListen;
  if (theAddresses.empty() && aListeners->empty()) {
    theAddresses.push_back(kDefaultAddress);
  }
  for (const std::string& theAddress : theAddresses) {
    if (!Listener_Open(theAddress, aOptions.mfAllowRemote, aListeners, aError)) {
      return false;
    }
  }
  return true;
}

static void Main_S_Report(const Options& aOptions, Ledger& aLedger, const Delivery& aDelivery) {
  DeliveryCounts theCounts = aDelivery.Counts();
  std::string theText = aOptions.mStats == StatsForm_JSON ? LedgerReport_JSON(aLedger, theCounts)
                                                          : LedgerReport_Text(aLedger, theCounts);
  fwrite(theText.data(), 1, theText.size(), stderr);
}

static size_t Main_S_RoomFor(size_t aConnections) {
  size_t theRoom = DescriptorSupply_Reserve(aConnections);
  if (theRoom < aConnections) {
    fprintf(stderr, "qvlogd: descriptors for %zu connections only\n", theRoom);
  }
  return theRoom;
}

// Everything from the first socket to the ledger.
static int Main_S_Collect(Options& aOptions) {
  Signals theSignals;  // before the threads of the outputs
  Listeners theListeners;
  Delivery theDelivery(aOptions);
  std::string theError;
  aOptions.mMaxConnections = Main_S_RoomFor(aOptions.mMaxConnections);
  if (!Main_S_Listen(aOptions, &theListeners, &theError) || !theDelivery.Open(&theError)) {
    return Main_S_Fail(theError);
  }
  std::string theAnnouncement;
  for (const auto& theListener : theListeners) {
    theAnnouncement += "qvlogd: listening on " + theListener->Name() + "\n";
  }
  ServiceNotifier theNotifier;
  Ledger theLedger(kLedgerEntries, aOptions.mRate);
  auto theReport = [&] { Main_S_Report(aOptions, theLedger, theDelivery); };
  Collector theCollector(aOptions, theLedger, theDelivery, theSignals, std::move(theListeners), theReport);
  fputs(theAnnouncement.c_str(), stderr);
  theCollector.Run(theNotifier);
  theDelivery.Close();
  if (aOptions.mStats != StatsForm_None) {
    theReport();
  }
  return 0;
}

int main(int argc, char** argv) {
  // The library is here for its settings and conversions. Its own loggers would connect to this very program
  // and write a settings file of their own at exit.
  qvLog_NeverLog();
  DescriptorSupply_FillStandardStreams();
  Options theOptions;
  switch (Options_Read(argc, argv, &theOptions)) {
    case OptionsResult_Done:
      return Main_S_EndPrinting(0);
    case OptionsResult_Bad:
      return kExitBadOption;
    case OptionsResult_Run:
      break;
  }
  if (!theOptions.mCheck.empty()) {
    return Main_S_EndPrinting(StreamCheck_Run(theOptions.mCheck, theOptions.mLimits));
  }
  return Main_S_Collect(theOptions);
}
