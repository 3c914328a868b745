// LineCutter.h - cuts bytes that come in pieces into lines.
#ifndef QVLOGCAT_LINECUTTER_H
#define QVLOGCAT_LINECUTTER_H

#include <string>
#include <string_view>

#include "qvOS/qvTypes.h"

// Takes the lines of one file after the other.
class LineSink {
 public:
  virtual ~LineSink() = default;
  // Another file, or the same from its start again. aLatest: no line is younger (microseconds since 1970;
  // INT64_MAX: not known). afMiddle: there are lines in front of the first one that comes.
  virtual void BeginFile(int64 aLatest, bool afMiddle) = 0;
  // A line without its line end; false when no more are wanted.
  virtual bool TakeLine(std::string_view aLine) = 0;
  virtual bool WantsMore() const = 0;
};

class LineCutter {
 public:
  // Longer lines are cut into pieces of this length, in bytes. The collector's longest message takes six
  // bytes for one in json.
  static constexpr size_t kMaxLineLength = 16777216;

  // Hands the whole lines over and keeps the rest; false when the sink wants no more.
  bool Feed(std::string_view aBytes, LineSink& aSink);
  // Hands over the rest as a line, if there is one.
  bool Flush(LineSink& aSink);
  void Forget();

 private:
  std::string mRest;
  bool mfWasCut = false;  // the piece before was not a whole line
};

#endif
