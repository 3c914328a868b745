// Whatever a record holds, its line in the text forms has no control character but tabs and its line end, and
// is valid UTF-8; its JSON is one valid object that gives valid text back unchanged; and raw gives back the
// bytes.
#include "tools/logstream/LogPrinter.h"

#include "FuzzInput.h"
#include "tools/logstream/LogEscape.h"

// --- Naive readers of UTF-8 and JSON, to judge by

// Takes one character off the text; false when it does not begin with a valid one.
static bool TakeCharacter(std::string_view& aText, uint32_t* aCharacter) {
  if (aText.empty()) {
    return false;
  }
  unsigned int theLead = static_cast<unsigned char>(aText[0]);
  size_t theLength = theLead < 0x80       ? 1
                     : theLead >> 5 == 6  ? 2
                     : theLead >> 4 == 14 ? 3
                     : theLead >> 3 == 30 ? 4
                                          : 0;
  if (theLength == 0 || aText.size() < theLength) {
    return false;
  }
  uint32_t theCharacter = theLength == 1 ? theLead : theLead & (0xFFu >> (theLength + 1));
  for (size_t i = 1; i < theLength; ++i) {
    unsigned int theByte = static_cast<unsigned char>(aText[i]);
    if (theByte >> 6 != 2) {
      return false;
    }
    theCharacter = (theCharacter << 6) | (theByte & 0x3F);
  }
  static const uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (theCharacter < kSmallest[theLength] || theCharacter > 0x10FFFF || theCharacter >> 11 == 0x1B) {
    return false;
  }
  aText.remove_prefix(theLength);
  *aCharacter = theCharacter;
  return true;
}

static bool IsUTF8(std::string_view aText) {
  uint32_t theCharacter;
  while (!aText.empty()) {
    if (!TakeCharacter(aText, &theCharacter)) {
      return false;
    }
  }
  return true;
}

// Whether it is UTF-8 without control characters but the tab, unless afTab is not set.
static bool IsHarmless(std::string_view aText, bool afTab) {
  uint32_t theCharacter;
  while (!aText.empty()) {
    if (!TakeCharacter(aText, &theCharacter)) {
      return false;
    }
    bool theIsControl = theCharacter < 0x20 || (theCharacter >= 0x7F && theCharacter < 0xA0);
    if (theIsControl && !(theCharacter == '\t' && afTab)) {
      return false;
    }
  }
  return true;
}

static char Take(std::string_view& aText) {
  FUZZ_REQUIRE(!aText.empty());
  char theChar = aText[0];
  aText.remove_prefix(1);
  return theChar;
}

static void AppendEscaped(std::string_view& aText, std::string& aOut) {
  static const char kNames[] = "\"\\/bfnrt";
  static const char kBytes[] = "\"\\/\b\f\n\r\t";
  char theName = Take(aText);
  if (theName != 'u') {
    const char* theFound = strchr(kNames, theName);
    FUZZ_REQUIRE(theName != 0 && theFound != nullptr);
    aOut += kBytes[theFound - kNames];
    return;
  }
  FUZZ_REQUIRE(aText.size() >= 4);
  std::string theDigits(aText.substr(0, 4));
  FUZZ_REQUIRE(theDigits.find_first_not_of("0123456789abcdef") == std::string::npos);
  unsigned long theCharacter = strtoul(theDigits.c_str(), nullptr, 16);
  FUZZ_REQUIRE(theCharacter < 0x800);  // nothing else needs an escape
  aText.remove_prefix(4);
  if (theCharacter < 0x80) {
    aOut += static_cast<char>(theCharacter);
  } else {
    aOut += static_cast<char>(0xC0 | (theCharacter >> 6));
    aOut += static_cast<char>(0x80 | (theCharacter & 0x3F));
  }
}

static std::string TakeString(std::string_view& aText) {
  FUZZ_REQUIRE(Take(aText) == '"');
  std::string theOut;
  for (;;) {
    char theChar = Take(aText);
    if (theChar == '"') {
      return theOut;
    }
    FUZZ_REQUIRE(static_cast<unsigned char>(theChar) >= 0x20);
    if (theChar == '\\') {
      AppendEscaped(aText, theOut);
    } else {
      theOut += theChar;
    }
  }
}

// The text of the member of that name in an object of strings, whole numbers and truths; "" when it lacks.
static std::string Member(std::string_view anObject, const std::string& aName) {
  std::string theFound;
  FUZZ_REQUIRE(Take(anObject) == '{');
  for (;;) {
    std::string theName = TakeString(anObject);
    FUZZ_REQUIRE(Take(anObject) == ':');
    std::string theValue;
    if (!anObject.empty() && anObject[0] == '"') {
      theValue = TakeString(anObject);
    } else {
      theValue = std::string(anObject.substr(0, anObject.find_first_of(",}")));
      anObject.remove_prefix(theValue.size());
      FUZZ_REQUIRE(theValue == "true" ||
                   (!theValue.empty() && theValue.find_first_not_of("0123456789") == std::string::npos));
    }
    theFound = theName == aName ? theValue : theFound;
    char theNext = Take(anObject);
    if (theNext == '}') {
      FUZZ_REQUIRE(anObject.empty());
      return theFound;
    }
    FUZZ_REQUIRE(theNext == ',');
  }
}

// --- What is required

static std::string Printed(LogForm aForm, const LogRecord& aRecord, bool afTerminal) {
  LogPrinter thePrinter(aForm, false, afTerminal);
  std::string theOut = "before";
  thePrinter.Print(aRecord, theOut);
  FUZZ_REQUIRE(theOut.compare(0, 6, "before") == 0);
  return theOut.substr(6);
}

static void CheckTextForms(const LogRecord& aRecord) {
  const bool theIsLine = aRecord.mKind == LogRecordKind_Line;
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_Cat, LogForm_Raw}) {
    std::string theLine = Printed(theForm, aRecord, true);
    if (!theIsLine && (theForm == LogForm_Cat || theForm == LogForm_Raw)) {
      FUZZ_REQUIRE(theLine.empty());
      continue;
    }
    FUZZ_REQUIRE(!theLine.empty() && theLine.back() == '\n');
    theLine.pop_back();
    FUZZ_REQUIRE(IsHarmless(theLine, true));
  }
  if (theIsLine) {
    FUZZ_REQUIRE(Printed(LogForm_Raw, aRecord, false) == std::string(aRecord.mRaw) + "\n");
  }
}

static void CheckJSON(const LogRecord& aRecord) {
  std::string theLine = Printed(LogForm_JSON, aRecord, false);
  FUZZ_REQUIRE(!theLine.empty() && theLine.back() == '\n');
  theLine.pop_back();
  FUZZ_REQUIRE(IsHarmless(theLine, false));
  std::string theText = Member(theLine, "msg");
  FUZZ_REQUIRE(aRecord.mKind != LogRecordKind_Line || !IsUTF8(aRecord.mText) || theText == aRecord.mText);
  FUZZ_REQUIRE(!IsUTF8(aRecord.mProcess) || Member(theLine, "process") == aRecord.mProcess);
}

static void CheckField(std::string_view aText) {
  std::string theField;
  LogEscape_AppendField(aText, theField);
  FUZZ_REQUIRE(IsHarmless(theField, false) && theField.find(' ') == std::string::npos);
  std::string theRead;
  FUZZ_REQUIRE(LogEscape_ReadField(theField, &theRead) && theRead == aText);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  static const char kLevels[] = {0, 'E', 'W', 'I', 'D'};
  LogRecord theRecord;
  theRecord.mKind = static_cast<LogRecordKind>(theInput.Byte() % 8);
  if (theRecord.mKind > LogRecordKind_Suppressed) {
    theRecord.mKind = LogRecordKind_Line;
  }
  uint8_t theBits = theInput.Byte();
  theRecord.mLevel = kLevels[theBits % sizeof(kLevels)];
  theRecord.mfContinuation = (theBits & 0x40) != 0;
  theRecord.mfPartial = (theBits & 0x80) != 0;
  theRecord.mTime = static_cast<int64>(theInput.Number());
  theRecord.mCount = theInput.Number();
  const std::string theProcess = theInput.Text(), theUUID = theInput.Text(), theStamp = theInput.Text();
  const std::string theThread = theInput.Text(), theModule = theInput.Text(), theText = theInput.Rest();
  theRecord.mProcess = theProcess;
  theRecord.mUUID = theUUID;
  theRecord.mStamp = theStamp;
  theRecord.mThread = theThread;
  theRecord.mModule = theModule;
  theRecord.mText = theText;
  theRecord.mRaw = theText;
  CheckTextForms(theRecord);
  CheckJSON(theRecord);
  CheckField(theProcess);
  CheckField(theText);
  return 0;
}
