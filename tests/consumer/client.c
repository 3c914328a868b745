/* client.c - logs one line from C99 into a callback that prints it, and tells which version it was compiled
 * for and runs with. The compile-time level is its builder's. */
#include <qvLog/qvLog.h>
#include <qvLog/qvLogVersion.h>
#include <stdio.h>

static void Print(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  (void)aCookie;
  printf("%u %.*s", (unsigned)aData->mLevel, (int)aLength, aText);
}

int main(void) {
  printf("%s %s\n", QVLOG_VERSION_TEXT, qvLogVersion_GetText());
  qvLog_SetLogFunc(5, Print, NULL);
  QVLOG_WARN(TUNER, F("channel %d\n", 7));
  return 0;
}
