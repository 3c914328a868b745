// ViewerOptions.h - what the viewer is told by its command line and environment.
#ifndef QVLOGCAT_VIEWEROPTIONS_H
#define QVLOGCAT_VIEWEROPTIONS_H

#include <string>
#include <vector>

#include "tools/logstream/LogFilter.h"
#include "tools/logstream/LogPrinter.h"

struct ViewerOptions {
  std::vector<std::string> mInputs;  // file names or patterns, "-": standard input; at least one
  bool mfFollow = false;
  bool mfLast = false;  // only the last mLast lines of what is there
  uint64 mLast = 0;
  LogFilter mFilter;
  LogForm mForm = LogForm_Short;
  bool mfColor = false;
  bool mfTerminal = false;  // standard output is one
};

enum ViewerOptionsResult {
  ViewerOptionsResult_Run,
  ViewerOptionsResult_Done,  // --help or --version has been printed
  ViewerOptionsResult_Bad    // one line on standard error says what is wrong
};

ViewerOptionsResult ViewerOptions_Read(int anArgumentCount, char** anArguments, ViewerOptions* aOptions);

#endif
