// client.cpp - logs one line from C++ into a callback that prints it.
#define QVLOGLEVEL QVLOGLEVEL_ALL
#include <qv/CString.h>
#include <qvLog/qvLog.h>
#include <stdio.h>

QVLOG_WITH_MODULE_IF(TUNER, 1)

static void Print(void*, const qvLogData* aData, const char* aText, size_t aLength) {
  printf("%u %.*s", static_cast<unsigned>(aData->mLevel), static_cast<int>(aLength), aText);
}

int main() {
  qvLog_SetLogFunc(5, Print, nullptr);
  QV_WARN(F("%s\n", qvCString::Format("channel %d", 7).c_str()));
  return 0;
}
