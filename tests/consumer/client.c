/* client.c - logs one line from C99 into a callback that prints it. */
#define QVLOGLEVEL QVLOGLEVEL_ALL
#include <qvLog/qvLog.h>
#include <stdio.h>

static void Print(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  (void)aCookie;
  printf("%u %.*s", (unsigned)aData->mLevel, (int)aLength, aText);
}

int main(void) {
  qvLog_SetLogFunc(5, Print, NULL);
  QVLOG_WARN(TUNER, F("channel %d\n", 7));
  return 0;
}
