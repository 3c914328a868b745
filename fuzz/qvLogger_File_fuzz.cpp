// Settings and two messages through the file logger: the messages that the settings let pass are written
// where and as they say, and populating leaves what was set alone.
#include "qvLog/qvLogger_File.h"

#include <stdlib.h>
#include <time.h>

#include <memory>

#include "FuzzInput.h"
#include "LogModel.h"
#include "MemoryFiles.h"
#include "qvLog/qvLog.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

namespace {

// Beyond this a buffer only costs time.
const int kMaxBuffer = 65536;

// Populating costs more than everything else, so it is left out unless the settings ask for it, or the input
// does.
const char kNoPopulating[] = "[options]\npopulate=0\n[default]\n";

struct Message {
  uint8_t mKind;
  qvLogLevel mLevel;
  qvLogModule mModule;
  std::string mText;
  std::shared_ptr<ExactCopy> mBytes;  // the same, where a dump finds it
};

std::string Directory() {
  char* theDirectory = qvPath_GetApplicationPath(0);
  std::string theResult = theDirectory;
  qvFree(theDirectory);
  return theResult;
}

const std::string& ReadOnlyPath() {
  static const std::string& sPath =
      *new std::string(Directory() + "qvLog." + qvLogger::CurrentProcessName() + ".ini");
  return sPath;
}

const std::string& ReadWritePath() {
  static const std::string& sPath =
      *new std::string(Directory() + "_qvLog." + qvLogger::CurrentProcessName() + ".ini");
  return sPath;
}

// ----------------------------------------------------------------------------------------- what happens

// The streams of the process lead into a text as long as this lives.
class CapturedStreams {
 public:
  CapturedStreams() : mStandardOutput(stdout), mStandardError(stderr) {
    stdout = Open();
    stderr = Open();
    MemoryFiles_GiveStream(Open());
  }
  ~CapturedStreams() {
    fclose(stdout);
    fclose(stderr);
    stdout = mStandardOutput;
    stderr = mStandardError;
    MemoryFiles_DropStream();
  }

  const std::string& Text() const { return mText; }

 private:
  FILE* Open() {
    cookie_io_functions_t theFunctions = {nullptr, Write, nullptr, nullptr};
    return fopencookie(&mText, "w", theFunctions);
  }

  static ssize_t Write(void* aCookie, const char* aBytes, size_t aLength) {
    static_cast<std::string*>(aCookie)->append(aBytes, aLength);
    return static_cast<ssize_t>(aLength);
  }

  FILE* mStandardOutput;
  FILE* mStandardError;
  std::string mText;
};

std::wstring Widened(const std::string& aText) {
  std::wstring theWide;
  for (char theChar : aText) {
    uint8_t theByte = static_cast<uint8_t>(theChar);
    theWide += static_cast<wchar_t>(theByte < 0xF0 ? theByte : theByte << (theByte & 7) * 3);
  }
  return theWide;
}

// False when no logger wants the message.
bool Log(const Message& aMessage) {
  qvLogData* theRecord = qvLog_Begin(aMessage.mLevel, aMessage.mModule);
  if (theRecord == nullptr) {
    return false;
  }
  const char* theText = aMessage.mText.c_str();
  switch (aMessage.mKind % 6) {
    case 0:
      qvLog_Append_F("%s", theText);
      break;
    case 1:
      qvLog_Append_F("%s\n", theText);
      break;
    case 2:
      qvLog_Append_FML("%s", theText);
      break;
    case 3:
      qvLog_Append_FN("%s", theText);
      break;
    case 4:
      qvLog_Append_B(aMessage.mBytes->Data(), aMessage.mText.size());
      break;
    default:
      qvLog_Append_U(Widened(aMessage.mText).c_str(), aMessage.mText.size());
  }
  qvLog_End(theRecord);
  return true;
}

// ------------------------------------------------------------------------------------ what is expected

std::string ModuleName(qvLogModule aModule, const char* aNumberFormat, int* afActive) {
  const char* theName = qvLogger::ModuleNameAndDefaultValue(aModule, afActive);
  char theNumber[16];
  snprintf(theNumber, sizeof(theNumber), aNumberFormat, static_cast<unsigned>(aModule));
  return theName != nullptr ? theName : theNumber;
}

bool Passes(const LogSettings& aSettings, const Message& aMessage) {
  int theActive = 1;
  std::string theKey = "log_" + ModuleName(aMessage.mModule, "%u", &theActive);
  for (char& theChar : theKey) {
    theChar = static_cast<char>(tolower(theChar));
  }
  bool theActiveFlag = aMessage.mModule >= 512 || aSettings.Number("file/" + theKey, theActive) > 0;
  return theActiveFlag && aMessage.mLevel < aSettings.Level("file/level", "Off");
}

void Expect(const Message& aMessage, LogModel* aModel) {
  int theIgnored;
  std::string theText = aMessage.mText.c_str();
  aModel->BeginMessage(aMessage.mLevel, qvLogger::CurrentThreadName(),
                       ModuleName(aMessage.mModule, "%010u", &theIgnored));
  switch (aMessage.mKind % 6) {
    case 0:
    case 1:
      aModel->AppendFormatted(theText, aMessage.mKind % 6 == 1);
      break;
    case 2:
      aModel->AppendLines(theText);
      break;
    case 3:
      aModel->AppendFormatted(theText, false);
      aModel->AppendFormatted("", true);
      break;
    case 4:
      aModel->AppendDump(aMessage.mText, aMessage.mBytes->Data());
      break;
    default:
      aModel->AppendWide(Widened(aMessage.mText));
  }
}

void ReplaceAll(std::string* aText, const char* aPattern, const std::string& aValue) {
  for (size_t thePos = 0; (thePos = aText->find(aPattern, thePos)) != std::string::npos;
       thePos += aValue.size()) {
    aText->replace(thePos, strlen(aPattern), aValue);
  }
}

std::string FileNameAt(std::string aPattern, time_t aTime) {
  struct tm theTime;
  localtime_r(&aTime, &theTime);
  static const char* const kForms[6][2] = {{"%y", "%Y"}, {"%m", "%m"}, {"%d", "%d"},
                                           {"%H", "%H"}, {"%M", "%M"}, {"%S", "%S"}};
  for (const auto& theForm : kForms) {
    char theNumber[16];
    strftime(theNumber, sizeof(theNumber), theForm[1], &theTime);
    ReplaceAll(&aPattern, theForm[0], theNumber);
  }
  ReplaceAll(&aPattern, "%n", qvLogger::CurrentProcessName());
  return aPattern;
}

void CheckOpened(const LogSettings& aSettings, time_t aStart) {
  std::string thePattern = aSettings.Text("file/file", "stderr");
  bool theFound = false;
  // The second may have changed in between.
  for (time_t theTime = aStart; theTime <= aStart + 2 && !theFound; ++theTime) {
    std::string theName = FileNameAt(thePattern, theTime);
    if (theName == "stderr" || theName == "stdout") {
      theFound = MemoryFiles_OpenedPath().empty();
    } else {
      char* thePath = qvPath_Normalize(theName.c_str(), 0, kqvPathNormalizeMode_Native, nullptr);
      theFound = MemoryFiles_OpenedPath() == thePath;
      bool theAppendFlag = aSettings.Number("file/append", 0) == 1;
      FUZZ_REQUIRE(MemoryFiles_OpenedMode()[0] == (theAppendFlag ? 'a' : 'w'));
      qvFree(thePath);
    }
  }
  FUZZ_REQUIRE(theFound);
}

// Everything that is read has been written, where it was missing, and nothing else has changed.
void CheckPopulated(const LogSettings& aSettings, const std::string& aBefore) {
  const std::string& theAfter = *MemoryFiles_Get(ReadWritePath());
  if (aSettings.Number("options/populate", 1) == 0) {
    FUZZ_REQUIRE(theAfter == aBefore);
    return;
  }
  if (!aSettings.ReadWrite().SurvivesSaving()) {
    return;
  }
  LogSettings theSettings(*MemoryFiles_Get(ReadOnlyPath()), theAfter);
  for (const char* theName : {"options/date", "file/level", "file/file"}) {
    FUZZ_REQUIRE(!theSettings.Text(theName, "").empty());
  }
  for (const char* theName : {"options/max_len_logger", "file/append"}) {
    FUZZ_REQUIRE(theSettings.Number(theName, -1) != -1);
  }
  for (const SettingsModel::Entry& theEntry : aSettings.ReadWrite().Entries()) {
    const std::string* theValue = theSettings.ReadWrite().Find(theEntry.first);
    bool theMissingFlag = theEntry.second.empty() || aSettings.Number(theEntry.first, -1) == -1;
    FUZZ_REQUIRE(theValue != nullptr);
    FUZZ_REQUIRE(theMissingFlag || *theValue == theEntry.second);
  }
}

// ----------------------------------------------------------------------------------------- the two runs

void CheckMessages(const LogSettings& aSettings, const Message (&aMessages)[2]) {
  int theCapacity = aSettings.Number("options/max_len_logger", 1024);
  LogModel theModel(static_cast<size_t>(theCapacity < 1024 ? 1024 : theCapacity),
                    aSettings.Text("options/date", "off") != "off");
  time_t theStart = time(nullptr);
  CapturedStreams theStreams;
  // Starts the framework whatever the gate is: qvLog_Term leaves it where the last settings had it.
  qvLog_ReloadConfig();
  bool theStarted = false;
  for (const Message& theMessage : aMessages) {
    bool thePasses = Passes(aSettings, theMessage);
    FUZZ_REQUIRE(Log(theMessage) == thePasses);
    if (thePasses) {
      if (!theStarted) {
        theModel.Start(qvLogger::CurrentProcessName());
        CheckOpened(aSettings, theStart);
        theStarted = true;
      }
      Expect(theMessage, &theModel);
    }
  }
  qvLog_Term();
  fflush(stdout);
  fflush(stderr);
  FUZZ_REQUIRE(theModel.Matches(theStreams.Text()));
}

Message TakeMessage(FuzzInput* anInput) {
  Message theMessage;
  theMessage.mKind = anInput->Byte();
  uint8_t theLevel = anInput->Byte();
  theMessage.mLevel = static_cast<qvLogLevel>(theLevel < 250 ? theLevel % 8 : theLevel << 8 | 0xFF);
  theMessage.mModule = static_cast<qvLogModule>(anInput->Byte() * 3);
  return theMessage;
}

}  // namespace

// In the place of the library's function: the daemon logger reads settings of its own, and stays away from
// the network.
extern "C" void __wrap_qvLogger_qvLogd_Init(void) {}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  // The time of a log line is that of the process's zone; the system's file of it need not be read again and
  // again.
  static const int sEnvironment = setenv("TZ", "UTC", 1);
  FUZZ_REQUIRE(sEnvironment == 0);
  FuzzInput theInput(aBytes, aLength);
  Message theMessages[2] = {TakeMessage(&theInput), TakeMessage(&theInput)};
  bool thePopulateFlag = theInput.Byte() % 8 == 7;
  std::string theReadOnly = thePopulateFlag ? "" : kNoPopulating;
  theReadOnly += theInput.Text();
  theReadOnly.resize(SettingsModel::LoadablePart(theReadOnly).size());
  std::string theReadWrite(SettingsModel::LoadablePart(theInput.Text()));
  theMessages[0].mText = theInput.Text();
  theMessages[1].mText = theInput.Rest();
  for (Message& theMessage : theMessages) {
    theMessage.mBytes = std::make_shared<ExactCopy>(theMessage.mText);
  }
  LogSettings theSettings(theReadOnly, theReadWrite);
  if (theSettings.Number("options/max_len_logger", 0) > kMaxBuffer) {
    return 0;
  }
  MemoryFiles_Clear();
  MemoryFiles_Set(ReadOnlyPath(), theReadOnly);
  MemoryFiles_Set(ReadWritePath(), theReadWrite);
  CheckMessages(theSettings, theMessages);
  CheckPopulated(theSettings, theReadWrite);
  return 0;
}
