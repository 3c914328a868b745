// TextModel.h - what becomes of bytes that are to be shown, and which of them are UTF-8: the plain way, one
// character after the other.
#ifndef FUZZ_TEXTMODEL_H
#define FUZZ_TEXTMODEL_H

#include <stdint.h>

#include <string>
#include <string_view>

// Takes one character off the text; false when it does not begin with a valid one.
bool TextModel_TakeCharacter(std::string_view& aText, uint32_t* aCharacter);
void TextModel_AppendCharacter(uint32_t aCharacter, std::string& aText);

bool TextModel_IsUTF8(std::string_view aText);
// Whether it is UTF-8 without control characters but the tab, unless afTab is not set.
bool TextModel_IsHarmless(std::string_view aText, bool afTab);

// The text with control characters but the tab, and what is not UTF-8, as \xNN.
std::string TextModel_Shown(std::string_view aText);
// The same as one word, which cannot be empty.
std::string TextModel_Word(std::string_view aText);
// What the word stands for; false for what is no such word.
bool TextModel_ReadWord(std::string_view aWord, std::string* aText);
// The text with U+FFFD for each byte that is not UTF-8.
std::string TextModel_Valid(std::string_view aText);

#endif
