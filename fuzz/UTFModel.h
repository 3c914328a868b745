// UTFModel.h - what each encoding says about a text, byte by byte and character by character, by the
// descriptions of the encodings. It shares nothing with the library.
#ifndef FUZZ_UTFMODEL_H
#define FUZZ_UTFMODEL_H

#include <stddef.h>
#include <stdint.h>

#include <string>

const size_t kInvalid = static_cast<size_t>(-1);
const size_t kIncomplete = static_cast<size_t>(-2);

// The original form of UTF-8: 1 to 6 bytes, for characters of up to 31 bits.
std::string EncodeUTF8(uint32_t aChar);

// The length of the character at a position, 0 at the end, or one of the two above.
size_t DecodeUTF8(const std::string& aText, size_t aPosition, uint32_t* aChar);

// The characters up to the first that is none; *aLength is where they end.
std::wstring DecodeAllUTF8(const std::string& aText, size_t* aLength);

// The length of the sequence at a position and its character; 0 for bytes that are none. Long forms of 2 and
// 3 bytes are sequences too, forms of 5 and 6 are not.
size_t ReadSequence(const std::string& aText, size_t aPosition, uint32_t* aChar);

std::string FromLatin(const std::string& aText);
std::string ToLatin(const std::string& aText);

// From UTF-16; *aResult gets how it ends: 1 for a whole text, 2 for one that ends in a high surrogate, 3 for
// one that has half a pair and may not.
std::string FromUTF16(const std::string& aText, bool afBigEndian, bool afStrict, int* aResult);
std::string FromUTF16(const std::string& aText, bool afBigEndian);

// The characters of a text as units, of which some may be surrogates.
std::string Units(const std::string& aText, bool afBigEndian);

// *afValid is cleared when the text is no UTF-8.
std::string ToModified(const std::string& aText, bool* afValid);
std::string FromModified(const std::string& aText);

// Whether a UTF-8 text has three-byte forms of surrogates.
bool HasSurrogates(const std::string& aText);

#endif
