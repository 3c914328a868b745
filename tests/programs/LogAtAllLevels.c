/* Everything is compiled in; at run time first everything passes, then errors only. */
#define QVLOGLEVEL QVLOGLEVEL_ALL
#include "log_statements.h"

int main(void) {
  qvLog_SetLogFunc(65535, Print, NULL);
  LogEverything(QVLOGLEVEL_INFO);
  printf("%d evaluated\n", sEvaluated);
  sEvaluated = 0;
  qvLog_SetLogFunc(2, Print, NULL);
  LogEverything(QVLOGLEVEL_INFO);
  printf("%d evaluated\n", sEvaluated);
  return 0;
}
