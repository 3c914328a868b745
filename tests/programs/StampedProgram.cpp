// Bears a revision stamp, as a build puts it into a program, and prints the revision and the branch that it
// reads from itself.
#include <stdio.h>

#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

asm(".pushsection .qvra.version,\"\",%progbits\n"
    ".ascii \"1234\\nmain\\nbuilt by hand\\n\"\n"
    ".popsection\n");

int main() {
  char* thePath = qvPath_GetApplicationFullPath();
  char* theBranch = NULL;
  int theRevision = qvPath_GetBinaryRevision(thePath, &theBranch);
  printf("%d %s\n", theRevision, theBranch != NULL ? theBranch : "<null>");
  qvFree(theBranch);
  qvFree(thePath);
  return 0;
}
