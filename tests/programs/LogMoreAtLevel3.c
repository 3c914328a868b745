/* Errors and warnings are compiled in; everything passes at run time. */
#define QVLOGLEVEL 3
#include "log_more_statements.h"

int main(void) {
  qvLog_SetLogFunc(65535, Print, NULL);
  LogOften();
  printf("%d evaluated\n", sEvaluated);
  return 0;
}
