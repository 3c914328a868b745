/* floods.c - log statements that hold themselves back, from C. */
#include <qvLog/qvLogMore.h>
#include <stdio.h>

QVLOG_WITH_MODULE_IF(TUNER, 1);

static void Print(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  (void)aCookie;
  (void)aData;
  fwrite(aText, 1, aLength, stdout);
}

static void MeasureSignal(int aFrame, int aSignal) {
  QV_INFO_ONCE(F("frame %d: this tuner measures by itself\n", aFrame));
  QV_DEBUG_EVERY(4, F("frame %d: signal %d %%\n", aFrame, aSignal));
  QV_WARN_IF(aSignal < 20, F("frame %d: signal is down to %d %%\n", aFrame, aSignal));
  QV_ERR_EVERY_MS(60000, F("frame %d: this is said once a minute\n", aFrame));
}

int main(void) {
  static const int kSignals[] = {74, 71, 68, 40, 17, 12, 33, 60, 72, 75};
  qvLog_SetLogFunc(65535, Print, NULL);
  for (int i = 0; i < (int)(sizeof(kSignals) / sizeof(kSignals[0])); ++i) {
    MeasureSignal(i, kSignals[i]);
  }
  return 0;
}
