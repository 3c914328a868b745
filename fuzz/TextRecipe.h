// TextRecipe.h - texts that are long enough for every block and piece, from short inputs.
#ifndef FUZZ_TEXTRECIPE_H
#define FUZZ_TEXTRECIPE_H

#include <stddef.h>

#include <string>

// Makes a text of the bytes of an input. An input that begins with the byte 1 says which runs of characters
// the text consists of and what comes in between; any other one is the text. Of a long text
// made so the end is cut off.
std::string MakeText(const std::string& anInput, size_t aMaxLength);

#endif
