// UTFModel.h - what each encoding says about a text, byte by byte and character by character, by the
// descriptions of the encodings. It shares nothing with the library: tests and fuzz targets compare the two.
#ifndef TESTS_SUPPORT_UTFMODEL_H
#define TESTS_SUPPORT_UTFMODEL_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <string_view>

const size_t kInvalid = static_cast<size_t>(-1);
const size_t kIncomplete = static_cast<size_t>(-2);

// The original form of UTF-8: 1 to 6 bytes, for characters of up to 31 bits.
void AppendUTF8(uint32_t aChar, std::string& aText);
std::string EncodeUTF8(uint32_t aChar);

// The length of the character at a position, 0 at the end, or one of the two above.
size_t DecodeUTF8(std::string_view aText, size_t aPosition, uint32_t* aChar);

// The characters up to the first that is none; *aLength is where they end.
std::wstring DecodeAllUTF8(std::string_view aText, size_t* aLength);

// The length of the sequence at a position and its character; 0 for bytes that are none. Long forms of 2 and
// 3 bytes are sequences too, forms of 5 and 6 are not.
size_t ReadSequence(std::string_view aText, size_t aPosition, uint32_t* aChar);

std::string FromLatin(std::string_view aText);
std::string ToLatin(std::string_view aText);

// From UTF-16; *aResult gets how it ends: 1 for a whole text, 2 for one that ends in a high surrogate, 3 for
// one that has half a pair and may not.
std::string FromUTF16(std::string_view aText, bool afBigEndian, bool afStrict, int* aResult);
std::string FromUTF16(std::string_view aText, bool afBigEndian);

// The characters of a text as units, of which some may be surrogates.
std::string Units(std::string_view aText, bool afBigEndian);

// *afValid is cleared when the text is no UTF-8.
std::string ToModified(std::string_view aText, bool* afValid);
std::string FromModified(std::string_view aText);

// Whether a UTF-8 text has three-byte forms of surrogates.
bool HasSurrogates(std::string_view aText);

#endif
