/* Does nothing, so that its start alone is measured, up to main: without arguments it ends there, without
 * what is done at an exit; with one it says that it is in main and waits to be looked at. Linked to one
 * library or to none. */
#include <unistd.h>

int main(int aCount, char** anArguments) {
  (void)anArguments;
  if (aCount > 1) {
    (void)!write(STDOUT_FILENO, "\n", 1);
    pause();
  }
  _exit(0);
}
