// Options.h - what the collector is told: by its command line and by its settings "qvlogd.ini".
//
// Each long option but --help, --version, --settings and --check is also a key of the settings' first
// section; the command line wins. A key that may be repeated on the command line holds several values with
// blanks between them; an option without a value is yes or no there.
#ifndef QVLOGD_OPTIONS_H
#define QVLOGD_OPTIONS_H

#include <string>
#include <vector>

#include "tools/logstream/LogStreamParser.h"
#include "tools/qvlogd/LogForwarder.h"
#include "tools/qvlogd/LogOutput.h"

enum StatsForm { StatsForm_None, StatsForm_Text, StatsForm_JSON };

struct Options {
  std::vector<std::string> mListen;  // ADDR:PORT; empty: the default address, or inherited sockets alone
  bool mfAllowRemote = false;

  LogOutputOptions mOutput;  // without mfColor, which depends on where the output goes
  std::string mColor = "auto";
  std::vector<std::string> mSpecs;  // filter specs in order
  bool mfSilent = false;            // a last spec "*:S"
  unsigned int mRate = 0;           // lines a second and process; 0: no limit

  bool mfForward = false;
  LogForwarderOptions mForward;

  LogStreamLimits mLimits;
  size_t mMaxConnections = 4096;
  size_t mMaxTurn = 262144;    // bytes read of one connection before the others have their turn
  size_t mMaxHeld = 16777216;  // bytes of unfinished messages of all connections together
  uint32 mPartialTime = 2000;  // milliseconds that a line may wait for its end
  uint32 mStopTime = 2000;     // milliseconds for reading what is in the sockets when told to stop
  StatsForm mStats = StatsForm_None;

  std::string mCheck;  // the file to check, "-" for standard input; empty: collect
};

enum OptionsResult {
  OptionsResult_Run,
  OptionsResult_Done,  // --help or --version has been printed
  OptionsResult_Bad    // one line on standard error says what is wrong
};

OptionsResult Options_Read(int anArgumentCount, char** anArguments, Options* aOptions);

#endif
