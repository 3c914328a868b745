// Gives the functions that read and write text the worst text they can get: deep wildcards, very long lines,
// very many settings, huge widths, nothing but marks. No call may take longer than two seconds, nor more
// memory than four times its result.
#include <stdlib.h>
#include <string.h>

#include "faults/WorstInput.h"
#include "qvLog/qvLog.h"
#include "qvLog/qvLogger.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvCStringParser.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvStringSubstitution.h"
#include "qvraTools/qvTime.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvWString.h"
#include "support/ScratchFolder.h"

namespace {

constexpr size_t kMebibyte = 1 << 20;

std::string Repeat(const std::string& aText, size_t aCount) {
  std::string theText;
  theText.reserve(aText.size() * aCount);
  for (size_t i = 0; i < aCount; ++i) {
    theText += aText;
  }
  return theText;
}

size_t TakeText(char* aText) {
  const size_t theSize = strlen(aText) + 1;
  qvFree(aText);
  return theSize;
}

// ------------------------------------------------------------------------------------ wildcards, tokens

void TryWildcards(Experiment* anExperiment) {
  const std::string theText(64 * 1024, 'a');
  for (const char* thePart : {"*a", "*?a", "*[a-y]", "*\\a"}) {
    const std::string thePattern = Repeat(thePart, 30) + "b";
    CheckWorstCall(anExperiment, "30 times " + std::string(thePart) + " against 64 KiB", [&] {
      return static_cast<size_t>(qvCStringParser_Match(thePattern.c_str(), theText.c_str()));
    });
  }
  const std::string theLongParts = Repeat("*" + std::string(100, 'a'), 30) + "b";
  CheckWorstCall(anExperiment, "30 stars with 100 bytes each against 64 KiB", [&] {
    return static_cast<size_t>(qvCStringParser_Match(theLongParts.c_str(), theText.c_str()));
  });
}

size_t TakeTokens(qvCStringParser_TokenList* aList) {
  const size_t theSize = aList->mTokenCount * sizeof(qvCStringParser_Token);
  qvCStringParser_Delete(aList);
  return theSize;
}

void TryTokens(Experiment* anExperiment) {
  const std::string theCommas(kMebibyte, ',');
  const std::string theQuotes = Repeat("\"'", kMebibyte / 2);
  const std::string theBlanks(kMebibyte, ' ');
  char theCharsToEscape[] = "\"'\\";
  CheckWorstCall(anExperiment, "tokenizing 1 MiB of delimiters", [&] {
    return TakeTokens(qvCStringParser_Tokenize(theCommas.data(), 0, theCommas.size(), ",", 1));
  });
  CheckWorstCall(anExperiment, "a list of 1 MiB of delimiters", [&] {
    return TakeTokens(qvCStringParser_TokenizeQuotedList(theCommas.data(), 0, theCommas.size()));
  });
  CheckWorstCall(anExperiment, "splitting 1 MiB of quotes", [&] {
    return TakeTokens(qvCStringParser_TokenizeQuoted(theQuotes.data(), 0, theQuotes.size(), ",", 1));
  });
  // The empty tokens are there first and then go.
  CheckWorstCall(anExperiment, "a parameter list of 1 MiB of blanks", [&] {
    TakeTokens(qvCStringParser_TokenizeParameterList(theBlanks.data(), 0, theBlanks.size()));
    return theBlanks.size() * sizeof(qvCStringParser_Token);
  });
  CheckWorstCall(anExperiment, "escaping 1 MiB of quotes", [&] {
    return TakeText(qvCStringParser_EscapeAndSurround(theQuotes.data(), theQuotes.size(), theCharsToEscape,
                                                      '\\', '"', '"'));
  });
}

// ----------------------------------------------------------------------------------------- substitution

char* ReplaceByLongText(char* aName, void*) {
  return qvStrdup(strcmp(aName, "x") == 0 ? "<long text>" : "%x%");
}

void TrySubstitution(Experiment* anExperiment) {
  const std::string theMarks(kMebibyte, '%');
  const std::string theUnknown = Repeat("%a%", kMebibyte / 3);
  const std::string theKnown = Repeat("%x%", kMebibyte / 3);
  const std::string theStarts = Repeat("${", kMebibyte / 2);
  const std::string theMarkers = Repeat("${}", kMebibyte / 3);
  for (const int theRecursive : {0, 1}) {
    const std::string theEnd = theRecursive ? ", recursively" : "";
    // A result of half the marks is made from a copy of all of them.
    CheckWorstCall(anExperiment, "substituting in 1 MiB of marks" + theEnd, [&] {
      TakeText(qvStringSubstitution_Substitute(theMarks.c_str(), '%', theRecursive, NULL, NULL));
      return theMarks.size();
    });
    CheckWorstCall(anExperiment, "substituting 1 MiB of unknown names" + theEnd, [&] {
      TakeText(qvStringSubstitution_Substitute(theUnknown.c_str(), '%', theRecursive, NULL, NULL));
      return theUnknown.size();
    });
    CheckWorstCall(anExperiment, "substituting 1 MiB of known names" + theEnd, [&] {
      return TakeText(
          qvStringSubstitution_Substitute(theKnown.c_str(), '%', theRecursive, ReplaceByLongText, NULL));
    });
    CheckWorstCall(anExperiment, "substituting 1 MiB of nested names" + theEnd, [&] {
      return TakeText(
          qvStringSubstitution_Substitute(theUnknown.c_str(), '%', theRecursive, ReplaceByLongText, NULL));
    });
    CheckWorstCall(anExperiment, "substituting in 1 MiB of start markers" + theEnd, [&] {
      return TakeText(
          qvStringSubstitution_SubstituteEx(theStarts.c_str(), "${", "}", theRecursive, NULL, NULL));
    });
    CheckWorstCall(anExperiment, "substituting in 1 MiB of empty markers" + theEnd, [&] {
      TakeText(qvStringSubstitution_SubstituteEx(theMarkers.c_str(), "${", "}", theRecursive, NULL, NULL));
      return theMarkers.size();
    });
  }
}

// ------------------------------------------------------------------------------------------- formatting

template <typename... Values>
void TryFormat(Experiment* anExperiment, const char* aFormat, Values... aValues) {
  CheckWorstCall(anExperiment, std::string(aFormat) + " into 16 bytes", [&] {
    char theBuffer[16];
    return static_cast<size_t>(qv_snprintf(theBuffer, sizeof(theBuffer), aFormat, aValues...)) == INT32_MAX
               ? sizeof(theBuffer)
               : 0;
  });
}

void TryFormats(Experiment* anExperiment) {
  TryFormat(anExperiment, "%2147483647d", 1);
  TryFormat(anExperiment, "%-2147483647d", 1);
  TryFormat(anExperiment, "%02147483647x", 1);
  TryFormat(anExperiment, "%.2147483647d", 1);
  TryFormat(anExperiment, "%2147483647s", "text");
  TryFormat(anExperiment, "%2147483647c", 'c');
  TryFormat(anExperiment, "%2147483647f", 1e308);
  TryFormat(anExperiment, "%.2147483645f", 0.1);
  TryFormat(anExperiment, "%.2147483641e", 0.1);
  TryFormat(anExperiment, "%#.2147483645g", 0.1);
  const std::string theText(kMebibyte, 'x');
  CheckWorstCall(anExperiment, "%s of 1 MiB", [&] { return TakeText(qv_mnprintf("%s", theText.c_str())); });
  const std::string theDirectives = Repeat("%%", kMebibyte / 2);
  CheckWorstCall(anExperiment, "a format of 1 MiB of directives",
                 [&] { return TakeText(qv_mnprintf(theDirectives.c_str(), 0)); });
}

// ---------------------------------------------------------------------------------------------- logging

// Counts what is written.
class CountingLogger : public qvLogger {
 public:
  CountingLogger() : qvLogger("Counting", true) {
    SetOptions(OPT_NO_CONFIG);
    ChangeLevel(static_cast<qvLogLevel>(QVLOGLEVEL_ALL));
  }
  bool BeginLog(qvLogDataEx* aRecord) override {
    GenerateBeginLine(aRecord);
    return true;
  }
  void Append_S(qvLogDataEx*, const char*, size_t aLength) override { mCount += aLength; }

  size_t mCount = 0;
};

void TryMessage(Experiment* anExperiment, const std::string& aName, size_t aSize,
                const std::function<void()>& anAppend) {
  CheckWorstCall(anExperiment, "logging " + aName, [&] {
    CountingLogger theLogger;
    qvLogData* theRecord = qvLog_Begin(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT);
    anAppend();
    qvLog_End(theRecord);
    // What is written leaves the process as it comes, so what may be kept is what was given.
    return theLogger.mCount > 0 ? aSize : 0;
  });
}

void TryMessages(Experiment* anExperiment) {
  // The daemon logger stays away from the network.
  setenv("QVRALOG", "null", 1);
  const std::string theLine(kMebibyte, 'x');
  const std::string theLineEnds(kMebibyte, '\n');
  const std::wstring theWide(kMebibyte, L'\u20AC');
  const size_t theSize = theLine.size();
  TryMessage(anExperiment, "a line of 1 MiB", theSize, [&] { qvLog_Append_F("%s\n", theLine.c_str()); });
  TryMessage(anExperiment, "lines of 1 MiB, one", theSize,
             [&] { qvLog_Append_FML("%s\n", theLine.c_str()); });
  TryMessage(anExperiment, "lines of 1 MiB, all empty", theSize,
             [&] { qvLog_Append_FML("%s", theLineEnds.c_str()); });
  TryMessage(anExperiment, "a dump of 1 MiB", theSize, [&] { qvLog_Append_B(theLine.data(), theSize); });
  TryMessage(anExperiment, "wide text of 1 MiB", theSize,
             [&] { qvLog_Append_U(theWide.c_str(), theWide.size()); });
}

// --------------------------------------------------------------------------------------------- settings

std::string ManyKeys(size_t aCount, size_t aKeysPerSection) {
  std::string theText;
  for (size_t i = 0; i < aCount; ++i) {
    theText += i % aKeysPerSection == 0 ? "[section" + std::to_string(i) + "]\n" : "";
    theText += "key" + std::to_string(i) + "=value\n";
  }
  return theText;
}

qvDictionary* Load(const std::string& aText) {
  qvDictionary* theDictionary = qvDictionary_New(0);
  qvINIFile_LoadINIFileFromBuffer(aText.data(), aText.size(), theDictionary);
  return theDictionary;
}

// Six blocks of the heap, the smallest there are, are granted to a setting.
size_t SizeOf(size_t aCount) { return aCount * 6 * 32; }

// Each key and each section is found in one step; naming a key by its number walks through all of them.
void TryKeys(Experiment* anExperiment, size_t aCount, size_t aKeysPerSection) {
  const std::string theText = ManyKeys(aCount, aKeysPerSection);
  const std::string theName =
      std::to_string(aCount) + " keys in " + std::to_string(aCount / aKeysPerSection) + " sections";
  CheckWorstCall(anExperiment, "loading " + theName, [&] {
    Load(theText);
    return SizeOf(aCount);
  });
  ScratchFolder theFolder;
  qvDictionary* theDictionary = Load(theText);
  const std::string theLastSection = "section" + std::to_string(aCount - aKeysPerSection);
  CheckWorstCall(anExperiment, "saving " + theName, [&] {
    qvINIFile_SaveINIFile(theFolder.File("settings.ini").c_str(), theDictionary);
    return theText.size();
  });
  CheckWorstCall(anExperiment, "reading one of " + theName, [&] {
    int theFound;
    qvINIFile_ReadKeyAsString(theDictionary, theLastSection.c_str(), "none", "", &theFound);
    return sizeof(theFound);
  });
  CheckWorstCall(anExperiment, "naming the last of " + theName, [&] {
    return strlen(qvINIFile_GetKeyName(theDictionary, theLastSection.c_str(), aKeysPerSection - 1));
  });
  CheckWorstCall(anExperiment, "deleting a section of " + theName, [&] {
    qvINIFile_DeleteSection(theDictionary, theLastSection.c_str());
    return SizeOf(aKeysPerSection);
  });
  qvDictionary_Delete(theDictionary);
}

// ------------------------------------------------------------------------------------------ conversions

void TryNumbers(Experiment* anExperiment) {
  const std::string theDigits(kMebibyte, '9');
  const std::string theBlanks(kMebibyte, ' ');
  for (const std::string* theText : {&theDigits, &theBlanks}) {
    const std::string theName = theText == &theDigits ? "1 MiB of digits" : "1 MiB of blanks";
    CheckWorstCall(anExperiment, theName + " as integers", [&] {
      qvint64_t theInt64;
      qvLongLong theLongLong;
      uint32 theUInt32;
      qvConvert_strtoint64(theText->c_str(), &theInt64);
      qvConvert_strtoLongLong(theText->c_str(), &theLongLong);
      qvConvert_strntouint32(theText->data(), theText->size(), &theUInt32);
      return theText->size();  // of which the last makes a copy
    });
    CheckWorstCall(anExperiment, theName + " as fractions", [&] {
      double theDouble;
      qvConvert_strtod(theText->c_str(), &theDouble);
      qvConvert_strtodouble(theText->c_str(), &theDouble);
      qvConvert_strfractiontodouble(theText->c_str(), &theDouble);
      return theText->size();
    });
    CheckWorstCall(anExperiment, theName + " as dates and times", [&] {
      int32 theDate[9];
      uint32 theSecond = 0;
      uint32 theMilliSecond = 0;
      qvtm theTime;
      qvConvert_dlnadatestrtodate(theText->c_str(), theDate);
      qvConvert_dlnatimestrtouint32(theText->c_str(), &theSecond, &theMilliSecond);
      qvConvert_dlnadurationstrtouint32(theText->c_str(), &theSecond, &theMilliSecond);
      qvConvert_dlnanptstrtouint32(theText->c_str(), &theSecond, &theMilliSecond);
      qvTime_ParseRFC1123Date(theText->c_str(), &theTime);
      return theText->size();
    });
  }
}

void TryTexts(Experiment* anExperiment) {
  const std::string theLatin(kMebibyte, '\xE9');
  const std::string theUTF8 = Repeat("\xF0\x9F\x98\x80", kMebibyte / 4);
  CheckWorstCall(anExperiment, "1 MiB of ISO-8859-1 to UTF-8",
                 [&] { return TakeText(qvUTF_ISO88591ToUTF8(theLatin.data(), theLatin.size())); });
  CheckWorstCall(anExperiment, "1 MiB of UTF-16 to UTF-8",
                 [&] { return TakeText(qvUTF_UTF16BEToUTF8(theLatin.data(), theLatin.size())); });
  CheckWorstCall(anExperiment, "1 MiB of UTF-8 to wide text", [&] {
    wchar_t* theWide = qvWString_NewFromUTF8(theUTF8.c_str());
    const size_t theSize = qvWString_Length(theWide) * sizeof(wchar_t);
    qvWString_Free(theWide);
    return theSize;
  });
  CheckWorstCall(anExperiment, "1 MiB as hexadecimal text", [&] {
    char* theHex = NULL;
    qvConvert_buffertohexstr(reinterpret_cast<const uint8*>(theLatin.data()), theLatin.size(), 4, 1, &theHex);
    return TakeText(theHex);
  });
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("worst_inputs", aCount, anArguments);
  TryWildcards(&theExperiment);
  TryTokens(&theExperiment);
  TrySubstitution(&theExperiment);
  TryFormats(&theExperiment);
  TryMessages(&theExperiment);
  TryKeys(&theExperiment, 5000, 5000);
  TryKeys(&theExperiment, 5000, 1);
  TryKeys(&theExperiment, 50000, 50000);
  TryKeys(&theExperiment, 50000, 1);
  TryNumbers(&theExperiment);
  TryTexts(&theExperiment);
  return theExperiment.Finish();
}
