#include "faults/NumberedLog.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#define QVLOGLEVEL 0xFFFFFFFF
#include "qvLog/qvLog.h"

namespace {

constexpr size_t kFailuresKept = 20;
constexpr unsigned int kForms = 6;
constexpr size_t kDumpLine = 16;  // bytes

// One module with a name of its own, one without any, and the default.
const qvLogModule kModules[] = {0, 170, 7};

std::string Text(const char* aFormat, ...) __attribute__((format(printf, 1, 2)));
std::string Text(const char* aFormat, ...) {
  char theText[256];
  va_list theArgs;
  va_start(theArgs, aFormat);
  vsnprintf(theText, sizeof(theText), aFormat, theArgs);
  va_end(theArgs);
  return theText;
}

// FNV-1a.
unsigned int Checksum(std::string_view aText) {
  unsigned int theSum = 2166136261u;
  for (char theChar : aText) {
    theSum = (theSum ^ static_cast<unsigned char>(theChar)) * 16777619u;
  }
  return theSum;
}

std::string WithChecksum(const std::string& aText) { return aText + Text(" #%08x", Checksum(aText)); }

// "w3 n17 F" and a text whose length follows from the number.
std::string Line(int aWriter, unsigned int aNumber, const char* aForm) {
  std::string theLine = Text("w%d n%u %s ", aWriter, aNumber, aForm);
  unsigned int theLength = (aNumber * 7 + static_cast<unsigned int>(aWriter)) % 90;
  for (unsigned int i = 0; i < theLength; ++i) {
    theLine += static_cast<char>('a' + (aNumber + i * 3) % 26);
  }
  return WithChecksum(theLine);
}

void AppendWithList(const char* aFormat, ...) __attribute__((format(printf, 1, 2)));
void AppendWithList(const char* aFormat, ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvLog_Append_VF(aFormat, theArgs);
  va_end(theArgs);
}

// One row for each form of a message: what is appended, and the lines that must come out.
void Append(unsigned int aForm, const std::string& aLine, const std::string& aSecond) {
  switch (aForm) {
    case 0:
      qvLog_Append_F("%s\n", aLine.c_str());
      break;
    case 1:
      AppendWithList("%s\n", aLine.c_str());
      break;
    case 2:
      qvLog_Append_FN("%s", aLine.c_str());
      break;
    case 3:
      qvLog_Append_FML("%s\n%s\n%s\nthis is dropped", aLine.c_str(), aSecond.c_str(), aLine.c_str());
      break;
    case 4:
      qvLog_Append_F("%s ", aLine.c_str());
      qvLog_Append_B(aSecond.data(), aSecond.size());
      break;
    default:
      qvLog_Append_U(std::wstring(aLine.begin(), aLine.end()).c_str(), aLine.size());
      qvLog_Append_U(L"\u00e4", 1);
      qvLog_Append_F("\n");
      break;
  }
}

std::string DumpLine(std::string_view aBytes) {
  std::string theLine = "   ";
  for (size_t i = 0; i < kDumpLine; ++i) {
    theLine += i < aBytes.size() ? Text("%02X ", static_cast<unsigned char>(aBytes[i])) : "   ";
  }
  return theLine + "- " + std::string(aBytes);
}

struct Expected {
  bool mfPrefix;
  std::string mText;
};

std::vector<Expected> ExpectedAfterFirst(unsigned int aForm, const std::string& aLine,
                                         const std::string& aSecond) {
  if (aForm == 3) {
    return {{true, aSecond}, {true, aLine}};
  }
  std::vector<Expected> theLines;
  for (size_t i = 0; aForm == 4 && i < aSecond.size(); i += kDumpLine) {
    theLines.push_back({false, DumpLine(std::string_view(aSecond).substr(i, kDumpLine))});
  }
  return theLines;
}

std::string ExpectedFirst(unsigned int aForm, const std::string& aLine, const std::string& aSecond) {
  if (aForm == 4) {
    return aLine + " Buffer pointer=P length=" + std::to_string(aSecond.size());
  }
  return aForm == 5 ? aLine + "\\u00e4" : aLine;
}

// The second line of a message, or what is dumped.
std::string Second(int aWriter, unsigned int aNumber) { return Line(aWriter, aNumber, "second"); }

// The address in a dump's header is not known.
void HidePointer(std::string* aLine) {
  size_t theStart = aLine->find("pointer=0x");
  if (theStart != std::string::npos) {
    theStart += strlen("pointer=");
    size_t theEnd = aLine->find(' ', theStart);
    aLine->replace(theStart, theEnd - theStart, "P");
  }
}

// Takes a prefix off the line; the text of the thread in it, "" when there is none.
std::string TakePrefix(std::string* aLine) {
  static const char kShape[] = "L 00:00:00:000|xxxxxxxx|mmmmmmmmmm ";
  const size_t kLength = sizeof(kShape) - 1;
  if (aLine->size() < kLength) {
    return "";
  }
  for (size_t i = 0; i < kLength; ++i) {
    char theChar = (*aLine)[i];
    bool theFits = kShape[i] == 'L'   ? theChar == 'E'
                   : kShape[i] == '0' ? theChar >= '0' && theChar <= '9'
                   : kShape[i] == 'x' ? strchr("0123456789abcdef", theChar) != nullptr
                   : kShape[i] == 'm' ? theChar >= ' '
                                      : theChar == kShape[i];
    if (!theFits) {
      return "";
    }
  }
  std::string theThread = aLine->substr(15, 8);
  aLine->erase(0, kLength);
  return theThread;
}

std::string TakeLine(std::string_view* aText) {
  size_t theEnd = aText->find('\n');
  std::string theLine(aText->substr(0, theEnd));
  aText->remove_prefix(theEnd == std::string_view::npos ? aText->size() : theEnd + 1);
  return theLine;
}

}  // namespace

bool LogNumbered(int aWriter, unsigned int aNumber) {
  const unsigned int theForm = aNumber % kForms;
  const std::string theLine = Line(aWriter, aNumber, "first");
  const std::string theSecond = Second(aWriter, aNumber);
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, kModules[aNumber % 3]);
  if (theData == nullptr) {
    return false;
  }
  Append(theForm, theLine, theSecond);
  qvLog_End(theData);
  return true;
}

std::string NamedLine(const std::string& aName) { return WithChecksum("named " + aName); }

bool LogNamed(const std::string& aName) {
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, 0);
  if (theData == nullptr) {
    return false;
  }
  qvLog_Append_F("%s\n", NamedLine(aName).c_str());
  qvLog_End(theData);
  return true;
}

void NumberedLogChecker::Failed(const std::string& aWhat) {
  ++mFailureCount;
  if (mFailures.size() < kFailuresKept) {
    mFailures.push_back(aWhat);
  }
}

void NumberedLogChecker::CheckLines(std::string_view aText) {
  if (!aText.empty() && aText.back() != '\n') {
    Failed("ends inside a line");
  }
  while (!aText.empty()) {
    std::string theLine = TakeLine(&aText);
    if (theLine == "NAME: box (log started)") {
      ++mStartCount;
      continue;
    }
    const std::string theWhole = theLine;
    mThread = TakePrefix(&theLine);
    if (mThread.empty() || !CheckNumbered(theLine, &aText)) {
      Failed("damaged: " + theWhole);
    }
  }
}

void NumberedLogChecker::CheckMessage(std::string_view aText) {
  std::string_view theRest = aText;
  mThread.clear();
  const std::string theLine = TakeLine(&theRest);
  if (!CheckNumbered(theLine, &theRest) || !theRest.empty()) {
    Failed("damaged message: " + std::string(aText));
  }
}

// The message that begins with this line; takes its other lines from the rest.
bool NumberedLogChecker::CheckNumbered(const std::string& aFirstLine, std::string_view* aRest) {
  int theWriter = 0;
  unsigned int theNumber = 0;
  if (aFirstLine.compare(0, 6, "named ") == 0) {
    std::string theName = aFirstLine.substr(6, aFirstLine.rfind(" #") - 6);
    ++mNames[theName];
    return aFirstLine == NamedLine(theName);
  }
  if (sscanf(aFirstLine.c_str(), "w%d n%u ", &theWriter, &theNumber) != 2) {
    return false;
  }
  ++mMessageCount;
  const unsigned int theForm = theNumber % kForms;
  const std::string theLine = Line(theWriter, theNumber, "first");
  const std::string theSecond = Second(theWriter, theNumber);
  std::string theActual = aFirstLine;
  HidePointer(&theActual);
  if (theActual != ExpectedFirst(theForm, theLine, theSecond)) {
    return false;
  }
  CheckThread(theWriter, mThread);
  for (const Expected& theExpected : ExpectedAfterFirst(theForm, theLine, theSecond)) {
    theActual = TakeLine(aRest);
    std::string theThread = theExpected.mfPrefix ? TakePrefix(&theActual) : "";
    if (theActual != theExpected.mText || theThread.empty() == theExpected.mfPrefix) {
      Failed("damaged later line: " + theActual);
    }
  }
  CheckNumber(theWriter, theNumber);
  return true;
}

void NumberedLogChecker::CheckThread(int aWriter, const std::string& aThread) {
  if (aThread.empty()) {
    return;
  }
  std::string& theKnown = mThreads[aWriter];
  if (theKnown.empty()) {
    theKnown = aThread;
  }
  if (theKnown != aThread) {
    Failed("writer " + std::to_string(aWriter) + " in thread " + aThread + " instead of " + theKnown);
  }
}

void NumberedLogChecker::CheckNumber(int aWriter, unsigned int aNumber) {
  unsigned int& theNext = mNext[aWriter];
  if (aNumber != theNext) {
    Failed("writer " + std::to_string(aWriter) + ": message " + std::to_string(aNumber) + " instead of " +
           std::to_string(theNext));
  }
  theNext = aNumber + 1;
}

void NumberedLogChecker::CheckWriterIsComplete(int aWriter, unsigned int aCount) {
  if (mNext[aWriter] != aCount) {
    Failed("writer " + std::to_string(aWriter) + " ends before message " + std::to_string(mNext[aWriter]) +
           " of " + std::to_string(aCount));
  }
}
