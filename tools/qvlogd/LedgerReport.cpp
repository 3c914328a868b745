#include "tools/qvlogd/LedgerReport.h"

#include <inttypes.h>
#include <stdio.h>

#include "tools/logstream/LogEscape.h"

static std::string LedgerReport_S_Name(const LedgerEntry& aEntry) {
  if (aEntry.mProcess.empty() && aEntry.mUUID.empty()) {
    return "(no header)";
  }
  std::string theName;
  LogEscape_AppendField(aEntry.mProcess, theName);
  theName.push_back('-');
  LogEscape_AppendField(aEntry.mUUID.substr(0, 8), theName);
  return theName;
}

static std::string LedgerReport_S_Count(uint64 aCount, const char* aSingular, const char* aPlural) {
  return std::to_string(aCount) + " " + (aCount == 1 ? aSingular : aPlural);
}

static void LedgerReport_S_AppendRow(const std::string& aName, const LedgerSums& aSums, const char* aNote,
                                     std::string* aText) {
  char theNumbers[128];
  snprintf(theNumbers, sizeof(theNumbers), " %12" PRIu64 " %12" PRIu64 " %12" PRIu64 " %12" PRIu64,
           aSums.mLines, aSums.mLost, aSums.mHeldBack, aSums.mConnections);
  aText->append(aName).append(aName.size() < 24 ? 24 - aName.size() : 0, ' ').append(theNumbers);
  if (*aNote != '\0') {
    aText->append("  ").append(aNote);
  }
  aText->push_back('\n');
}

static const char* LedgerReport_S_Note(const LedgerEntry& aEntry) {
  bool theHasReconnected = aEntry.mSums.mConnections > 1 && !aEntry.mUUID.empty();
  if (aEntry.mfRestarted) {
    return theHasReconnected ? "restarted, reconnected" : "restarted";
  }
  return theHasReconnected ? "reconnected" : "";
}

std::string LedgerReport_Text(Ledger& aLedger, const DeliveryCounts& aCounts) {
  std::string theText = "PROCESS                         LINES         LOST    HELD BACK  CONNECTIONS\n";
  std::vector<LedgerEntry*> theEntries = aLedger.Entries();
  for (const LedgerEntry* theEntry : theEntries) {
    LedgerReport_S_AppendRow(LedgerReport_S_Name(*theEntry), theEntry->mSums, LedgerReport_S_Note(*theEntry),
                             &theText);
  }
  if (aLedger.ForgottenCount() > 0) {
    LedgerReport_S_AppendRow(LedgerReport_S_Count(aLedger.ForgottenCount(), "earlier", "earlier"),
                             aLedger.Forgotten(), "", &theText);
  }
  size_t theCount = theEntries.size() + aLedger.ForgottenCount();
  LedgerReport_S_AppendRow(LedgerReport_S_Count(theCount, "process", "processes"), aLedger.Total(), "",
                           &theText);
  theText.append("dropped by the output: " + std::to_string(aCounts.mOutputDropped) + "\n");
  if (aCounts.mfForward) {
    theText.append("forwarded: " + std::to_string(aCounts.mForwardSent) +
                   ", dropped: " + std::to_string(aCounts.mForwardDropped) + "\n");
  }
  return theText;
}

static std::string LedgerReport_S_SumsJSON(const LedgerSums& aSums) {
  return "\"lines\":" + std::to_string(aSums.mLines) + ",\"lost\":" + std::to_string(aSums.mLost) +
         ",\"held_back\":" + std::to_string(aSums.mHeldBack) +
         ",\"connections\":" + std::to_string(aSums.mConnections);
}

static std::string LedgerReport_S_EntryJSON(const LedgerEntry& aEntry) {
  std::string theText = "{\"process\":\"";
  LogEscape_AppendJSON(aEntry.mProcess, theText);
  theText.append("\",\"uuid\":\"");
  LogEscape_AppendJSON(aEntry.mUUID, theText);
  theText.append("\"," + LedgerReport_S_SumsJSON(aEntry.mSums));
  theText.append(aEntry.mOpenConnections > 0 ? ",\"connected\":true" : ",\"connected\":false");
  theText.append(aEntry.mfRestarted ? ",\"restarted\":true}" : ",\"restarted\":false}");
  return theText;
}

std::string LedgerReport_JSON(Ledger& aLedger, const DeliveryCounts& aCounts) {
  std::string theText = "{\"processes\":[";
  std::vector<LedgerEntry*> theEntries = aLedger.Entries();
  for (const LedgerEntry* theEntry : theEntries) {
    theText.append(theEntry != theEntries.front() ? "," : "").append(LedgerReport_S_EntryJSON(*theEntry));
  }
  theText.append("],\"earlier\":{\"processes\":" + std::to_string(aLedger.ForgottenCount()) + "," +
                 LedgerReport_S_SumsJSON(aLedger.Forgotten()) + "},\"total\":{\"processes\":" +
                 std::to_string(theEntries.size() + aLedger.ForgottenCount()) + "," +
                 LedgerReport_S_SumsJSON(aLedger.Total()) +
                 "},\"output\":{\"dropped\":" + std::to_string(aCounts.mOutputDropped) + "}");
  if (aCounts.mfForward) {
    theText.append(",\"forward\":{\"sent\":" + std::to_string(aCounts.mForwardSent) +
                   ",\"dropped\":" + std::to_string(aCounts.mForwardDropped) + "}");
  }
  return theText + "}\n";
}
