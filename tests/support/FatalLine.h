// FatalLine.h - picks the fatal-error message out of what a process said on a stream.
#ifndef TESTS_SUPPORT_FATALLINE_H
#define TESTS_SUPPORT_FATALLINE_H

#include <string>

// The first line that begins with "qvFatalError: ", without its line end; empty when there is none. A line
// that the end of the text cuts off does not count.
std::string FatalLine(const std::string& aStreamText);

// How many such lines there are.
int FatalLineCount(const std::string& aStreamText);

#endif
