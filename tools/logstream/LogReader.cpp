#include "tools/logstream/LogReader.h"

#include "tools/logstream/LogEventName.h"
#include "tools/logstream/LogLinePrefix.h"

static const size_t kModuleColumns = 10;

// The text without escapes, in aStore when there are any.
static std::string_view LogReader_S_JSONText(std::string_view aValue, std::string& aStore) {
  if (aValue.find('\\') == std::string_view::npos) {
    return aValue;
  }
  aStore.clear();
  JSONLine_AppendText(aValue, aStore);
  return aStore;
}

static char LogReader_S_JSONLevel(std::string_view aName) {
  static const struct {
    std::string_view mName;
    char mLetter;
  } kLevels[] = {{"error", 'E'}, {"warning", 'W'}, {"info", 'I'}, {"debug", 'D'}};
  for (const auto& theLevel : kLevels) {
    if (aName == theLevel.mName) {
      return theLevel.mLetter;
    }
  }
  return 0;
}

// False for a member that is not known.
bool LogReader::TakeJSONText(const JSONMember& aMember, LogRecord* aRecord) {
  if (aMember.mKey == "level") {
    aRecord->mLevel = LogReader_S_JSONLevel(aMember.mValue);
    return true;
  }
  const struct {
    std::string_view mKey;
    std::string_view* mField;
    std::string& mStore;
  } kFields[] = {{"process", &aRecord->mProcess, mProcess}, {"uuid", &aRecord->mUUID, mUUID},
                 {"thread", &aRecord->mThread, mThread},    {"module", &aRecord->mModule, mModule},
                 {"msg", &aRecord->mText, mText},           {"stamp", &aRecord->mStamp, mStamp}};
  for (const auto& theField : kFields) {
    if (aMember.mKey == theField.mKey) {
      *theField.mField = LogReader_S_JSONText(aMember.mValue, theField.mStore);
      return true;
    }
  }
  return false;
}

// False for a member with a value that it cannot have.
bool LogReader::TakeJSONMember(const JSONMember& aMember, LogRecord* aRecord, bool* afKnown) {
  if (aMember.mKind == JSONKind_Number) {
    *afKnown = aMember.mKey == "count";
    return !*afKnown || LogEventName_ParseCount(aMember.mValue, &aRecord->mCount);
  }
  if (aMember.mKind == JSONKind_Word) {
    *afKnown = aMember.mKey == "continuation" || aMember.mKey == "partial";
    aRecord->mfContinuation |= aMember.mKey == "continuation" && aMember.mValue == "true";
    aRecord->mfPartial |= aMember.mKey == "partial" && aMember.mValue == "true";
    return true;
  }
  if (aMember.mKey == "ts") {
    std::string_view theStamp = aMember.mValue;
    return mTimes.TakeISO(theStamp, &aRecord->mTime) && theStamp.empty();
  }
  if (aMember.mKey == "event") {
    return LogEventName_ToKind(aMember.mValue, &aRecord->mKind);
  }
  *afKnown = TakeJSONText(aMember, aRecord);
  return true;
}

// An object of somebody else's is text. Ours have a time, but for lines of which it was not known; those hold
// nothing that we do not know.
bool LogReader::ReadJSON(std::string_view aLine, LogRecord* aRecord) {
  JSONLine theLine(aLine);
  JSONMember theMember;
  bool theHasTime = false;
  bool theHasContent = false;
  bool theIsAllKnown = true;
  while (theLine.Next(&theMember)) {
    bool theIsKnown = true;
    if (!TakeJSONMember(theMember, aRecord, &theIsKnown)) {
      return false;
    }
    // Others write numbers under these names.
    theHasTime |= theIsKnown && theMember.mKey == "ts";
    theHasContent |= theIsKnown && (theMember.mKey == "msg" || theMember.mKey == "event");
    theIsAllKnown &= theIsKnown;
  }
  if (!theHasContent || !theLine.IsComplete() || !(theHasTime || theIsAllKnown)) {
    return false;
  }
  MakeRaw(aRecord->mStamp, aRecord);
  return true;
}

// The line as its sender wrote it, from what the form has kept of it.
void LogReader::MakeRaw(std::string_view aStamp, LogRecord* aRecord) {
  bool theHasPrefix = aRecord->mLevel != 0 && !aStamp.empty() && !aRecord->mThread.empty() &&
                      !aRecord->mModule.empty() && !aRecord->mfContinuation;
  if (!theHasPrefix) {
    aRecord->mRaw = aRecord->mText;
    return;
  }
  mRaw.assign(1, aRecord->mLevel).append(" ").append(aStamp).append("|").append(aRecord->mThread);
  mRaw.append("|").append(aRecord->mModule);
  if (aRecord->mModule.size() < kModuleColumns) {
    mRaw.append(kModuleColumns - aRecord->mModule.size(), ' ');
  }
  mRaw.append(" ").append(aRecord->mText);
  aRecord->mRaw = mRaw;
}

bool LogReader::ReadRaw(std::string_view aLine, LogRecord* aRecord) {
  LogLinePrefix thePrefix;
  if (!LogLinePrefix_Parse(aLine, &thePrefix)) {
    return false;
  }
  std::string_view theStamp = thePrefix.mStamp;
  mTimes.TakeSender(theStamp, &aRecord->mTime);
  mMessageStamp = thePrefix.mStamp;
  mMessageThread = thePrefix.mThread;
  mMessageModule = thePrefix.mModule;
  aRecord->mLevel = thePrefix.mLevel;
  aRecord->mStamp = mMessageStamp;
  aRecord->mThread = mMessageThread;
  aRecord->mModule = mMessageModule;
  mMessage = *aRecord;
  mMessage.mfContinuation = true;
  mfInRawMessage = true;
  aRecord->mText = aLine.substr(thePrefix.mLength);
  aRecord->mRaw = aLine;
  return true;
}

LogRecord LogReader::ReadText(std::string_view aLine) const {
  LogRecord theRecord;
  if (mfInRawMessage) {
    theRecord = mMessage;
  }
  theRecord.mText = aLine;
  theRecord.mRaw = aLine;
  return theRecord;
}

LogRecord LogReader::Read(std::string_view aLine) {
  LogRecord theRecord;
  if (ReadRaw(aLine, &theRecord)) {
    return theRecord;
  }
  if (!aLine.empty() && (aLine.front() == '{' ? ReadJSON(aLine, &theRecord) : ReadShort(aLine, &theRecord))) {
    mfInRawMessage = false;
    return theRecord;
  }
  return ReadText(aLine);
}
