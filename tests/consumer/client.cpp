// client.cpp - logs one line from C++17 into a callback that prints it, and tells which version it was
// compiled for and runs with. The compile-time level is its builder's.
#include <qv/CString.h>
#include <qvLog/qvLog.h>
#include <qvLog/qvLogVersion.h>
#include <stdio.h>

QVLOG_WITH_MODULE_IF(TUNER, 1)

static void Print(void*, const qvLogData* aData, const char* aText, size_t aLength) {
  printf("%u %.*s", static_cast<unsigned>(aData->mLevel), static_cast<int>(aLength), aText);
}

int main() {
  if (qvLogVersion_GetNumber() != QVLOG_VERSION_NUMBER)
    return 1;
  printf("%s %s\n", QVLOG_VERSION_TEXT, qvLogVersion_GetText());
  qvLog_SetLogFunc(5, Print, nullptr);
  QV_WARN(F("%s\n", qvCString::Format("channel %d", 7).c_str()));
  return 0;
}
