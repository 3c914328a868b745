#include "support/LogEcho.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include "qvLog/qvLog.h"

namespace {

// "\001level module line file\002text\003", written in one piece.
constexpr char kStart = '\001';
constexpr char kText = '\002';
constexpr char kEnd = '\003';

void Echo(void*, const qvLogData* aData, const char* aText, size_t aLength) {
  std::string theEcho = kStart + std::to_string(aData->mLevel) + ' ' + std::to_string(aData->mModule) + ' ' +
                        std::to_string(aData->mLine) + ' ' + (aData->mFile != nullptr ? aData->mFile : "");
  theEcho += kText;
  theEcho.append(aText != nullptr ? aText : "", aLength);
  theEcho += kEnd;
  fwrite(theEcho.data(), 1, theEcho.size(), stderr);
}

EchoedRecord ParseEcho(const std::string& anEcho) {
  EchoedRecord theRecord;
  int theFileOffset = 0;
  int theFields = sscanf(anEcho.c_str(), "%d %d %d %n", &theRecord.mLevel, &theRecord.mModule,
                         &theRecord.mLine, &theFileOffset);
  EXPECT_EQ(3, theFields) << anEcho;
  size_t theText = anEcho.find(kText);
  theRecord.mFile =
      anEcho.substr(static_cast<size_t>(theFileOffset), theText - static_cast<size_t>(theFileOffset));
  theRecord.mText = anEcho.substr(theText + 1);
  return theRecord;
}

}  // namespace

void EchoLogRecords() { qvLog_SetLogFunc(65535, Echo, nullptr); }

std::vector<EchoedRecord> EchoedRecords(const std::string& aStandardError) {
  std::vector<EchoedRecord> theRecords;
  size_t theStart = aStandardError.find(kStart);
  while (theStart != std::string::npos) {
    size_t theEnd = aStandardError.find(kEnd, theStart);
    if (theEnd == std::string::npos) {
      ADD_FAILURE() << "a message without its end";
      break;
    }
    theRecords.push_back(ParseEcho(aStandardError.substr(theStart + 1, theEnd - theStart - 1)));
    theStart = aStandardError.find(kStart, theEnd);
  }
  return theRecords;
}

std::string EchoedText(const std::string& aStandardError) {
  std::string theText;
  for (const EchoedRecord& theRecord : EchoedRecords(aStandardError)) {
    theText += theRecord.mText;
  }
  return theText;
}
