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

// Members that are not known are skipped, so that a later collector may say more.
bool LogReader::TakeJSONMember(const JSONMember& aMember, LogRecord* aRecord) {
  if (aMember.mKind == JSONKind_Number) {
    return aMember.mKey != "count" || LogEventName_ParseCount(aMember.mValue, &aRecord->mCount);
  }
  if (aMember.mKind == JSONKind_Word) {
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
  if (aMember.mKey == "level") {
    aRecord->mLevel = LogReader_S_JSONLevel(aMember.mValue);
  } else if (aMember.mKey == "process") {
    aRecord->mProcess = LogReader_S_JSONText(aMember.mValue, mProcess);
  } else if (aMember.mKey == "uuid") {
    aRecord->mUUID = LogReader_S_JSONText(aMember.mValue, mUUID);
  } else if (aMember.mKey == "thread") {
    aRecord->mThread = LogReader_S_JSONText(aMember.mValue, mThread);
  } else if (aMember.mKey == "module") {
    aRecord->mModule = LogReader_S_JSONText(aMember.mValue, mModule);
  } else if (aMember.mKey == "stamp") {
    aRecord->mStamp = LogReader_S_JSONText(aMember.mValue, mStamp);
  } else if (aMember.mKey == "msg") {
    aRecord->mText = LogReader_S_JSONText(aMember.mValue, mText);
  }
  return true;
}

// An object of somebody else's is text: ours begin with the time.
bool LogReader::ReadJSON(std::string_view aLine, LogRecord* aRecord) {
  JSONLine theLine(aLine);
  JSONMember theMember;
  bool theIsFirst = true;
  while (theLine.Next(&theMember)) {
    if ((theIsFirst && theMember.mKey != "ts") || !TakeJSONMember(theMember, aRecord)) {
      return false;
    }
    theIsFirst = false;
  }
  if (theIsFirst || !theLine.IsComplete()) {
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
