/* Commands.h - how scripts/demo drives the programs of the media box: each reads one command a line.
 *   scene    the program logs at all four levels
 *   reload   the module switches of its settings file are read again
 *   quit     the program ends */
#ifndef EXAMPLES_MEDIABOX_COMMANDS_H
#define EXAMPLES_MEDIABOX_COMMANDS_H

#ifdef __cplusplus
extern "C" {
#endif

/* Reads commands until "quit" or the end of standard input. Prints "ok" on standard output after each. */
void Commands_Run(void (*aScene)(void));

#ifdef __cplusplus
}
#endif

#endif
