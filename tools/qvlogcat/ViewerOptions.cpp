#include "tools/qvlogcat/ViewerOptions.h"

#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "tools/logstream/Clock.h"
#include "tools/qvlogcat/DefaultFile.h"

enum LongOption { LongOption_Color = 256, LongOption_Settings, LongOption_Version };

static const struct option kLongOptions[] = {{"input", required_argument, nullptr, 'i'},
                                             {"follow", no_argument, nullptr, 'f'},
                                             {"lines", required_argument, nullptr, 'n'},
                                             {"since", required_argument, nullptr, 'S'},
                                             {"until", required_argument, nullptr, 'U'},
                                             {"identifier", required_argument, nullptr, 't'},
                                             {"priority", required_argument, nullptr, 'p'},
                                             {"grep", required_argument, nullptr, 'g'},
                                             {"silent", no_argument, nullptr, 's'},
                                             {"output", required_argument, nullptr, 'o'},
                                             {"color", required_argument, nullptr, LongOption_Color},
                                             {"settings", required_argument, nullptr, LongOption_Settings},
                                             {"help", no_argument, nullptr, 'h'},
                                             {"version", no_argument, nullptr, LongOption_Version},
                                             {nullptr, 0, nullptr, 0}};
// The minus: operands come in their place among the options, as kOperand.
static const int kOperand = 1;
static const char kShortOptions[] = "-:i:fn:S:U:t:p:g:so:h";

static const char kHelp[] =
    "Usage: qvlogcat [OPTION]... [FILE]... [MODULE:LEVEL]...\n"
    "Shows what qvlogd has written, the renamed older files first. Without FILE, the file that the\n"
    "settings qvlogd.ini name, or else standard input; - is standard input too. An argument with ':' and\n"
    "without '/' is a filter: it shows the lines of MODULE (with wildcards) of a LEVEL and more severe\n"
    "ones, E W I D, or S for none. Without filters the variable QVLOG_TAGS holds them.\n\n"
    "  -i, --input=FILE             show FILE, whatever its name looks like; repeatable\n"
    "  -f, --follow                 go on with what is added, across rotations\n"
    "  -n, --lines=N                of what is there, show the last N lines that the filters let through\n"
    "  -S, --since=TIME             2026-11-21 14:03:07, 14:03, @SECONDS or -15m and later\n"
    "  -U, --until=TIME             the same and earlier\n"
    "  -t, --identifier=PROCESS     lines of the process, with wildcards, or NAME-ID; repeatable\n"
    "  -p, --priority=LEVEL         E W I D or error, warning, info, debug and more severe lines\n"
    "  -g, --grep=REGEX             lines whose text the regular expression finds\n"
    "  -s, --silent                 the same as a last filter *:S: show what filters name, nothing else\n"
    "  -o, --output=FORM            short (default), short-iso, cat, raw, json\n"
    "      --color=WHEN             colours: auto (default), always, never\n"
    "      --settings=FOLDER        read qvlogd.ini and _qvlogd.ini there\n"
    "  -h, --help                   print this and end\n"
    "      --version                print the version and end\n";

// What the command line holds besides what goes into the options at once.
struct ViewerArguments {
  ViewerOptions* mOptions;
  int64 mNow;  // microseconds since 1970
  std::string mSettings;
  std::string mColor = "auto";
  bool mfSilent = false;
  bool mfHasSpecs = false;
};

static ViewerOptionsResult ViewerOptions_S_Bad(const std::string& aText) {
  fprintf(stderr, "qvlogcat: %s\n", aText.c_str());
  return ViewerOptionsResult_Bad;
}

static bool ViewerOptions_S_ParseCount(const char* aText, uint64* aCount) {
  char* theEnd;
  errno = 0;
  unsigned long long theCount = strtoull(aText, &theEnd, 10);
  *aCount = theCount;
  return *aText >= '0' && *aText <= '9' && *theEnd == '\0' && errno == 0;
}

static bool ViewerOptions_S_ParseTime(const char* aText, int64 aNow, LogFilter* aFilter,
                                      void (LogFilter::*aSetter)(int64)) {
  int64 theTime;
  if (!LogFilter_ParseTime(aText, aNow, &theTime)) {
    return false;
  }
  (aFilter->*aSetter)(theTime);
  return true;
}

// Null when the option was taken, else what its value should have been.
static const char* ViewerOptions_S_Apply(int anOption, const char* aValue, ViewerArguments* anArguments) {
  static const char kTime[] = "a time, as in 2026-11-21 14:03:07, 14:03, @SECONDS or -15m";
  ViewerOptions* theOptions = anArguments->mOptions;
  LogFilter* theFilter = &theOptions->mFilter;
  switch (anOption) {
    case 'i':
      theOptions->mInputs.push_back(aValue);
      return *aValue != '\0' ? nullptr : "a file name";
    case 'f':
      theOptions->mfFollow = true;
      return nullptr;
    case 'n':
      theOptions->mfLast = true;
      return ViewerOptions_S_ParseCount(aValue, &theOptions->mLast) ? nullptr : "a number of lines";
    case 'S':
      return ViewerOptions_S_ParseTime(aValue, anArguments->mNow, theFilter, &LogFilter::SetSince) ? nullptr
                                                                                                   : kTime;
    case 'U':
      return ViewerOptions_S_ParseTime(aValue, anArguments->mNow, theFilter, &LogFilter::SetUntil) ? nullptr
                                                                                                   : kTime;
    case 't':
      return theFilter->AddProcess(aValue) ? nullptr : "the name of a process";
    case 'p':
      return theFilter->SetPriority(aValue) ? nullptr : "one of E W I D, error, warning, info, debug";
    case 'g':
      return theFilter->SetPattern(aValue) ? nullptr : "a regular expression";
    case 's':
      anArguments->mfSilent = true;
      return nullptr;
    case 'o':
      return LogForm_FromName(aValue, &theOptions->mForm) ? nullptr : "short, short-iso, cat, raw or json";
    case LongOption_Color:
      anArguments->mColor = aValue;
      return LogPrinter_WantsColor(aValue, STDOUT_FILENO, &theOptions->mfColor) ? nullptr
                                                                                : "auto, always or never";
    default:
      anArguments->mSettings = aValue;
      return *aValue != '\0' ? nullptr : "a folder";
  }
}

// The name of the option with this value, as help shows it.
static std::string ViewerOptions_S_Name(int anOption) {
  for (const struct option& theOption : kLongOptions) {
    if (theOption.val == anOption && theOption.name != nullptr) {
      return std::string("--") + theOption.name;
    }
  }
  return std::string("-") + static_cast<char>(anOption);
}

// getopt_long has met an option that it does not know, or that lacks its value or has one too many.
static ViewerOptionsResult ViewerOptions_S_BadOption(int anAnswer, const char* anArgument) {
  bool theIsLong = strncmp(anArgument, "--", 2) == 0;
  std::string theName = theIsLong ? anArgument : std::string("-") + static_cast<char>(optopt);
  if (anAnswer == ':') {
    return ViewerOptions_S_Bad("option '" + theName + "' needs a value");
  }
  bool theHasValue = theIsLong && optopt != 0;
  return ViewerOptions_S_Bad(theHasValue ? "option '" + theName + "' takes no value"
                                         : "unknown or ambiguous option '" + theName + "'");
}

static bool ViewerOptions_S_IsSpec(const char* anArgument) {
  return strchr(anArgument, ':') != nullptr && strchr(anArgument, '/') == nullptr;
}

// A file or a filter.
static ViewerOptionsResult ViewerOptions_S_ReadOperand(const char* anOperand, ViewerArguments* aTaken) {
  if (!ViewerOptions_S_IsSpec(anOperand)) {
    aTaken->mOptions->mInputs.push_back(anOperand);
    return ViewerOptionsResult_Run;
  }
  aTaken->mfHasSpecs = true;
  if (!aTaken->mOptions->mFilter.AddSpec(anOperand)) {
    return ViewerOptions_S_Bad(std::string("filter '") + anOperand + "' is not MODULE:LEVEL");
  }
  return ViewerOptionsResult_Run;
}

static ViewerOptionsResult ViewerOptions_S_ReadOption(int anOption, ViewerArguments* aTaken) {
  if (anOption == 'h') {
    fputs(kHelp, stdout);
    return ViewerOptionsResult_Done;
  }
  if (anOption == LongOption_Version) {
    puts("qvlogcat " QVLOG_VERSION);
    return ViewerOptionsResult_Done;
  }
  if (anOption == kOperand) {
    return ViewerOptions_S_ReadOperand(optarg, aTaken);
  }
  const char* theExpected = ViewerOptions_S_Apply(anOption, optarg, aTaken);
  if (theExpected != nullptr) {
    return ViewerOptions_S_Bad(ViewerOptions_S_Name(anOption) + ": '" + optarg + "' is not " + theExpected);
  }
  return ViewerOptionsResult_Run;
}

static ViewerOptionsResult ViewerOptions_S_ReadCommandLine(int anArgumentCount, char** anArguments,
                                                           ViewerArguments* aTaken) {
  opterr = 0;
  ViewerOptionsResult theResult = ViewerOptionsResult_Run;
  int theOption;
  while (theResult == ViewerOptionsResult_Run &&
         (theOption = getopt_long(anArgumentCount, anArguments, kShortOptions, kLongOptions, nullptr)) !=
             -1) {
    bool theIsBad = theOption == '?' || theOption == ':';
    theResult = theIsBad ? ViewerOptions_S_BadOption(theOption, anArguments[optind - 1])
                         : ViewerOptions_S_ReadOption(theOption, aTaken);
  }
  // What stands behind "--".
  for (int i = optind; i < anArgumentCount && theResult == ViewerOptionsResult_Run; ++i) {
    theResult = ViewerOptions_S_ReadOperand(anArguments[i], aTaken);
  }
  return theResult;
}

// The filters of the environment, and the silent last one.
static ViewerOptionsResult ViewerOptions_S_CompleteFilter(const ViewerArguments& aTaken) {
  LogFilter& theFilter = aTaken.mOptions->mFilter;
  const char* theTags = getenv("QVLOG_TAGS");
  if (!aTaken.mfHasSpecs && theTags != nullptr && !theFilter.AddSpecs(theTags)) {
    return ViewerOptions_S_Bad(std::string("QVLOG_TAGS: '") + theTags + "' is not MODULE:LEVEL ...");
  }
  if (aTaken.mfSilent) {
    theFilter.AddSpec("*:S");
  }
  return ViewerOptionsResult_Run;
}

ViewerOptionsResult ViewerOptions_Read(int anArgumentCount, char** anArguments, ViewerOptions* aOptions) {
  ViewerArguments theTaken;
  theTaken.mOptions = aOptions;
  theTaken.mNow = Clock_Microseconds();
  ViewerOptionsResult theResult = ViewerOptions_S_ReadCommandLine(anArgumentCount, anArguments, &theTaken);
  if (theResult == ViewerOptionsResult_Run) {
    theResult = ViewerOptions_S_CompleteFilter(theTaken);
  }
  if (theResult != ViewerOptionsResult_Run) {
    return theResult;
  }
  if (!theTaken.mSettings.empty() && access(theTaken.mSettings.c_str(), X_OK) != 0) {
    return ViewerOptions_S_Bad("--settings: " + theTaken.mSettings + ": " + strerror(errno));
  }
  if (aOptions->mInputs.empty()) {
    std::string theFile = DefaultFile_Find(theTaken.mSettings);
    aOptions->mInputs.push_back(theFile.empty() ? "-" : theFile);
  }
  LogPrinter_WantsColor(theTaken.mColor.c_str(), STDOUT_FILENO, &aOptions->mfColor);
  aOptions->mfTerminal = isatty(STDOUT_FILENO) == 1;
  return ViewerOptionsResult_Run;
}
