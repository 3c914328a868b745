// Viewer.h - reads the inputs and prints what the filters let through.
#ifndef QVLOGCAT_VIEWER_H
#define QVLOGCAT_VIEWER_H

#include <memory>
#include <string>
#include <vector>

#include "tools/logstream/LogReader.h"
#include "tools/qvlogcat/LastLines.h"
#include "tools/qvlogcat/LogFollower.h"
#include "tools/qvlogcat/ViewerOptions.h"
#include "tools/qvlogcat/ViewerOutput.h"

class Viewer : public LineSink {
 public:
  Viewer(const ViewerOptions& aOptions, int anOutput);

  // Returns the exit code: 0, or 1 when an input could not be read or the output not be written.
  int Run();

  void BeginFile(int64 aLatest, bool afMiddle) override;
  bool TakeLine(std::string_view aLine) override;
  bool WantsMore() const override;

 private:
  void ShowStandardInput();
  void ShowLog(const std::string& aPath);
  LogFollowerResult ReadLast(LogFollower& aFollower);
  void Follow();
  void PrintLast();
  void Complain(const std::string& aPath, const char* aHint);

  const ViewerOptions& mOptions;
  ViewerOutput mOutput;
  LogReader mReader;
  LogPrinter mPrinter;
  LastLines mLast;            // of all inputs
  LastLines mInputLast;       // of the input being read
  bool mfCollecting = false;  // lines go into mInputLast
  bool mfOrphaned = false;    // lines may belong to a message whose start was not read
  std::string mLine;
  std::vector<std::unique_ptr<LogFollower>> mFollowers;
  bool mfFailed = false;
};

#endif
