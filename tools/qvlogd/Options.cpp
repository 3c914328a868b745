#include "tools/qvlogd/Options.h"

#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "tools/logstream/LogFilter.h"
#include "tools/qvlogd/OptionSettings.h"
#include "tools/qvlogd/OptionTable.h"

static const int kLongOptionBase = 256;  // getopt_long's value of the table's first entry

// One use of an option.
struct OptionUse {
  const OptionEntry* mEntry;
  std::string mName;  // as the user wrote it, or where it comes from
  std::string mValue;
};

static OptionsResult Options_S_Bad(const std::string& aText) {
  fprintf(stderr, "qvlogd: %s\n", aText.c_str());
  return OptionsResult_Bad;
}

static void Options_S_PrintHelp() {
  printf(
      "Usage: qvlogd [OPTION]... [MODULE[:LEVEL]]...\n"
      "Collects the log lines of processes on this machine (protocol qvLogd-1.0).\n"
      "A filter shows the lines of MODULE (with wildcards) of a LEVEL and more severe ones: E W I D,\n"
      "or S for none. Without filters the variable QVLOG_TAGS holds them.\n\n");
  for (size_t i = 0; i < kOptionTable_Count; ++i) {
    const OptionEntry& theEntry = kOptionTable[i];
    std::string theUse = theEntry.mLetter != 0 ? std::string("-") + theEntry.mLetter + ", " : "    ";
    theUse.append("--").append(theEntry.mName);
    if (theEntry.mArgument != OptionArgument_None) {
      bool theIsOptional = theEntry.mArgument == OptionArgument_Optional;
      theUse.append(theIsOptional ? "[=" : "=").append(theEntry.mArgumentName);
      theUse.append(theIsOptional ? "]" : "");
    }
    printf("  %-29s %s\n", theUse.c_str(), theEntry.mHelp);
  }
  printf(
      "\nEvery long option down to --max-held is also a key of the settings qvlogd.ini: \"rate = 500/s\".\n"
      "Signals: HUP opens the files anew, USR1 prints the ledger, TERM and INT end.\n");
}

// What getopt_long needs to know of the table.
struct OptionGrammar {
  std::vector<struct option> mLong;
  std::string mShort = ":";  // missing arguments are told apart from unknown options

  OptionGrammar() {
    for (size_t i = 0; i < kOptionTable_Count; ++i) {
      const OptionEntry& theEntry = kOptionTable[i];
      int theValue = kLongOptionBase + static_cast<int>(i);
      mLong.push_back({theEntry.mName, static_cast<int>(theEntry.mArgument), nullptr, theValue});
      if (theEntry.mLetter != 0) {
        mShort.append(1, theEntry.mLetter).append(theEntry.mArgument == OptionArgument_Required ? ":" : "");
      }
    }
    mLong.push_back({nullptr, 0, nullptr, 0});
  }
};

static const OptionEntry* Options_S_EntryOf(int aValue) {
  if (aValue >= kLongOptionBase) {
    return &kOptionTable[aValue - kLongOptionBase];
  }
  for (size_t i = 0; i < kOptionTable_Count; ++i) {
    if (kOptionTable[i].mLetter == aValue) {
      return &kOptionTable[i];
    }
  }
  return nullptr;
}

// What getopt_long stumbled over, in the user's words.
static std::string Options_S_OffendingOption(char** anArguments) {
  if (optopt != 0 && optopt < kLongOptionBase) {
    return std::string("-") + static_cast<char>(optopt);
  }
  return anArguments[optind - 1];
}

static OptionsResult Options_S_ReadCommandLine(int anArgumentCount, char** anArguments,
                                               std::vector<OptionUse>* aUses) {
  OptionGrammar theGrammar;
  opterr = 0;
  int theValue;
  while ((theValue = getopt_long(anArgumentCount, anArguments, theGrammar.mShort.c_str(),
                                 theGrammar.mLong.data(), nullptr)) != -1) {
    if (theValue == ':') {
      return Options_S_Bad("option '" + Options_S_OffendingOption(anArguments) + "' needs a value");
    }
    if (theValue == '?') {
      std::string theOption = Options_S_OffendingOption(anArguments);
      bool theHasValue = optopt >= kLongOptionBase;
      return Options_S_Bad(theHasValue ? "option '" + theOption + "' takes no value"
                                       : "unknown or ambiguous option '" + theOption + "'");
    }
    const OptionEntry* theEntry = Options_S_EntryOf(theValue);
    aUses->push_back({theEntry, std::string("--") + theEntry->mName, optarg != nullptr ? optarg : "yes"});
  }
  return OptionsResult_Run;
}

static const OptionUse* Options_S_FindUse(const std::vector<OptionUse>& aUses, const char* aName) {
  for (const OptionUse& theUse : aUses) {
    if (strcmp(theUse.mEntry->mName, aName) == 0) {
      return &theUse;
    }
  }
  return nullptr;
}

static std::vector<std::string> Options_S_SplitWords(const std::string& aText) {
  std::vector<std::string> theWords;
  size_t theStart;
  size_t theEnd = 0;
  while ((theStart = aText.find_first_not_of(' ', theEnd)) != std::string::npos) {
    theEnd = std::min(aText.find(' ', theStart), aText.size());
    theWords.push_back(aText.substr(theStart, theEnd - theStart));
  }
  return theWords;
}

// Puts the settings that the command line does not override before its options.
static OptionsResult Options_S_AddSettings(std::vector<OptionUse>* aUses) {
  const OptionUse* theFolder = Options_S_FindUse(*aUses, "settings");
  std::vector<OptionSetting> theSettings;
  std::string theError;
  if (!OptionSettings_Read(theFolder != nullptr ? theFolder->mValue : "", &theSettings, &theError)) {
    return Options_S_Bad((theFolder != nullptr ? "--settings: " : "qvlogd.ini: ") + theError);
  }
  std::vector<OptionUse> theUses;
  for (const OptionSetting& theSetting : theSettings) {
    const OptionEntry* theEntry = OptionTable_Find(theSetting.mKey.c_str());
    if (theEntry == nullptr || !theEntry->mfKey) {
      return Options_S_Bad("qvlogd.ini: unknown key '" + theSetting.mKey + "'");
    }
    if (Options_S_FindUse(*aUses, theEntry->mName) != nullptr) {
      continue;
    }
    std::string theName = std::string("qvlogd.ini: ") + theEntry->mName;
    if (!theEntry->mfRepeatable) {
      theUses.push_back({theEntry, theName, theSetting.mValue});
      continue;
    }
    for (const std::string& theWord : Options_S_SplitWords(theSetting.mValue)) {
      theUses.push_back({theEntry, theName, theWord});
    }
  }
  aUses->insert(aUses->begin(), theUses.begin(), theUses.end());
  return OptionsResult_Run;
}

static OptionsResult Options_S_Apply(const std::vector<OptionUse>& aUses, Options* aOptions) {
  for (const OptionUse& theUse : aUses) {
    if (theUse.mEntry->mApply != nullptr && !theUse.mEntry->mApply(theUse.mValue.c_str(), aOptions)) {
      return Options_S_Bad(theUse.mName + ": '" + theUse.mValue + "' is not " + theUse.mEntry->mExpected);
    }
  }
  return OptionsResult_Run;
}

// The specs of the command line, or those of the environment.
static OptionsResult Options_S_ReadSpecs(int anArgumentCount, char** anArguments, Options* aOptions) {
  aOptions->mSpecs.assign(anArguments + optind, anArguments + anArgumentCount);
  const char* theTags = getenv("QVLOG_TAGS");
  bool theAreTags = aOptions->mSpecs.empty() && theTags != nullptr;
  if (theAreTags) {
    aOptions->mSpecs = Options_S_SplitWords(theTags);
  }
  LogFilter theFilter;
  for (const std::string& theSpec : aOptions->mSpecs) {
    if (!theFilter.AddSpec(theSpec.c_str())) {
      return Options_S_Bad((theAreTags ? "QVLOG_TAGS: '" : "filter '") + theSpec + "' is not MODULE:LEVEL");
    }
  }
  return OptionsResult_Run;
}

OptionsResult Options_Read(int anArgumentCount, char** anArguments, Options* aOptions) {
  std::vector<OptionUse> theUses;
  OptionsResult theResult = Options_S_ReadCommandLine(anArgumentCount, anArguments, &theUses);
  if (theResult != OptionsResult_Run) {
    return theResult;
  }
  if (Options_S_FindUse(theUses, "help") != nullptr) {
    Options_S_PrintHelp();
    return OptionsResult_Done;
  }
  if (Options_S_FindUse(theUses, "version") != nullptr) {
    puts("qvlogd " QVLOG_VERSION);
    return OptionsResult_Done;
  }
  theResult = Options_S_AddSettings(&theUses);
  if (theResult == OptionsResult_Run) {
    theResult = Options_S_Apply(theUses, aOptions);
  }
  if (theResult == OptionsResult_Run) {
    theResult = Options_S_ReadSpecs(anArgumentCount, anArguments, aOptions);
  }
  return theResult;
}
