/* At compile-time level 0 no statement leaves a trace: nothing of the library is linked. */
#include "log_more_statements.h"

/* A weak reference does not bring the library in, but it tells whether something else did. */
#pragma weak qvLog_Term

int main(void) {
  (void)Print;
  (void)Evaluate;
  LogOften();
  printf("%s\n", qvLog_Term != NULL ? "the library is linked" : "the library is not linked");
  printf("%d evaluated\n", sEvaluated);
  return 0;
}
