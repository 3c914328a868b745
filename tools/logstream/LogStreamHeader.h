// LogStreamHeader.h - recognises, line by line, the connection header and loss reports of qvLogd-1.0.
//
// A stream begins with the first or the second of these; n is the same number everywhere:
//
//   (empty line)                                     (empty line)
//   PROTOCOL: qvLogd-1.0                             LOST: n
//   UUID: 01234567-89ab-cdef-0123-456789abcdef       (empty line)
//   LOST: n                                          PROTOCOL: qvLogd-1.0
//   NAME: player(log started, n logs previously lost)     ... and so on
#ifndef LOGSTREAM_LOGSTREAMHEADER_H
#define LOGSTREAM_LOGSTREAMHEADER_H

#include <string>
#include <string_view>

#include "qvOS/qvTypes.h"

// Whether a line is exactly "LOST: " and a decimal number as "%u" writes one for 32 bits.
bool LogStreamHeader_ParseLost(std::string_view aLine, uint32* aCount);

class LogStreamHeader {
 public:
  enum Result {
    Result_More,      // the lines so far may become a header
    Result_Complete,  // this line completes it
    Result_None       // the stream has no header
  };

  // aMaxLength: bytes of a header, from its empty line to its last line end; a longer one is none.
  explicit LogStreamHeader(size_t aMaxLength);

  // The stream's next line, without its line end. After another result than More nothing more is taken.
  Result Take(std::string_view aLine);

  const std::string& Process() const { return mProcess; }  // these three after Complete
  const std::string& UUID() const { return mUUID; }
  uint32 Lost() const { return mLost; }
  const char* Fault() const { return mFault; }  // after None: what is wrong with the line, as text

 private:
  enum Step {
    Step_Start,
    Step_ReportOrProtocol,
    Step_AfterReport,
    Step_Protocol,
    Step_UUID,
    Step_Lost,
    Step_Name
  };

  Result Next(bool afFits, Step aNext, const char* aFault);
  Result TakeLost(std::string_view aLine);
  Result TakeName(std::string_view aLine);

  size_t mMaxLength;
  size_t mLength;
  Step mStep;
  bool mfHasReport;
  uint32 mLost;
  std::string mProcess;
  std::string mUUID;
  const char* mFault;
};

#endif
