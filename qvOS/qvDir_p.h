/* qvDir_p.h - the part of qvDir that a test has to reach. */
#ifndef QVOS_QVDIR_P_H
#define QVOS_QVDIR_P_H

/* aPath as an absolute name, without asking the file system what it is: behind the working directory when it
 * is relative, whose last component goes for each leading "../"; leading "./" are dropped. A new text, or
 * null when the working directory is unknown. */
char* qvDir_MakeAbsoluteName(const char* aPath);

#endif
