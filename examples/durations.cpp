// durations.cpp - messages at the start and at the end of an activity, with the time that it took.
#include <qvLog/LogDuration.h>
#include <qvOS/qvThread.h>
#include <stdio.h>

static void Print(void*, const qvLogData*, const char* aText, size_t aLength) {
  fwrite(aText, 1, aLength, stdout);
}

static void LoadChannels(const char* aList) {
  QVLOG_LOAD(CHANNELS, F("list %s", aList));
  for (int i = 1; i <= 2; ++i) {
    QVLOG_DURATION(CHANNELS, F("page %d", i));  // logs its end only
    qvThread_Sleep(5);
  }
}

int main() {
  qvLog_SetLogFunc(QVLOGLEVEL_DEBUG, Print, NULL);  // a threshold: information and above
  LoadChannels("cable.m3u");
  return 0;
}
