/* systemlog.c - every message of the program goes to the system's log as well, through a callback. */
#include <qvLog/qvLog.h>
#include <syslog.h>

QVLOG_WITH_MODULE_IF(STORAGE, 1);

static int PriorityOf(qvLogLevel aLevel) {
  switch (aLevel) {
    case QVLOGLEVEL_WARNING:
      return LOG_WARNING;
    case QVLOGLEVEL_INFO:
      return LOG_INFO;
    default:
      return aLevel > QVLOGLEVEL_INFO ? LOG_DEBUG : LOG_ERR;
  }
}

/* aText ends where aLength says, and nowhere else. */
static void ToSystemLog(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  (void)aCookie;
  syslog(PriorityOf(aData->mLevel), "%.*s", (int)aLength, aText);
}

int main(void) {
  openlog("systemlog", LOG_PERROR, LOG_USER);            /* on standard error too, where one can look at it */
  qvLog_SetLogFunc(QVLOGLEVEL_DEBUG, ToSystemLog, NULL); /* a threshold: information and above */

  QV_INFO(F("disk of %d GB found\n", 500));
  QV_WARN(F("%d %% used\n", 91));
  QV_ERR(F("cannot write %s\n", "recording.ts"));
  QV_DEBUG(F("not seen\n"));

  qvLog_SetLogFunc(QVLOGLEVEL_NONE, ToSystemLog, NULL); /* taken away before the log is closed */
  closelog();
  return 0;
}
