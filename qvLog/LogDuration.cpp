#include "qvLog/LogDuration.h"

#include <stdarg.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"

#define kqvLogDuration_TextSize 256 /* bytes, with the terminator */

namespace {

struct DurationWords {
  char mStart[11];
  char mEnd[10];
};

// Indexed by kqvLogDuration_*.
const DurationWords kWords[] = {
    {"Starting", "Started"}, {"Stopping", "Stopped"},     {"Loading", "Loaded"},   {"Unloading", "Unloaded"},
    {"Running", "Done"},     {"Performing", "Performed"}, {"Entering", "Leaving"},
};
constexpr int kWordCount = sizeof(kWords) / sizeof(kWords[0]);

}  // namespace

static const DurationWords& qvLogDuration_S_Words(int aType) {
  return kWords[aType >= 0 && aType < kWordCount ? aType : kqvLogDuration_Start];
}

qvLogDuration::qvLogDuration(qvLogLevel aLevel, qvLogModule aModule, int aType, const char* aText)
    : mLogLevel(aLevel), mLogModule(aModule), mLogType(aType), mText(aText), mfStarted(false), mChrono() {
  if (!qvLog_WillLog(aLevel, aModule)) {
    return;
  }
  if (aType != kqvLogDuration_Duration) {
    QVXLOG_ALWAYS(aLevel, aModule, F("%s: %s\n", qvLogDuration_S_Words(aType).mStart, aText));
  }
  qvChrono_S_Init(&mChrono);
  qvChrono_Start(&mChrono, NULL);
  mfStarted = true;
}

qvLogDuration::~qvLogDuration() {
  if (qvLog_WillLog(mLogLevel, mLogModule) && mfStarted) {
    uint32 theSeconds = 0;
    uint32 theMilliSeconds = 0;
    qvChrono_GetTime_S_MS(&mChrono, &theSeconds, &theMilliSeconds);
    // KEEP LogDurationKept.OnlyTheEndHasABlankBeforeTheColon
    QVXLOG_ALWAYS(mLogLevel, mLogModule,
                  FML("%s : %s (%lu.%03lu seconds)\n", qvLogDuration_S_Words(mLogType).mEnd, mText,
                      static_cast<unsigned long>(theSeconds), static_cast<unsigned long>(theMilliSeconds)));
  }
  qvFree(const_cast<char*>(mText));
}

char* qvLogDuration::qvLogDuration_F(const char* aFormat, ...) {
  char theText[kqvLogDuration_TextSize];
  va_list theArgs;
  va_start(theArgs, aFormat);
  int theLength = qv_vsnprintf(theText, sizeof(theText), aFormat, theArgs);
  va_end(theArgs);
  return qvStrdup(theLength >= 0 ? theText : "????");
}
