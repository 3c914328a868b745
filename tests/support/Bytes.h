// Bytes.h - texts with zero bytes inside, texts without a byte to spare, and texts that a function gave away.
#ifndef TESTS_SUPPORT_BYTES_H
#define TESTS_SUPPORT_BYTES_H

#include <string>
#include <vector>

#include "qvraTools/qvMalloc.h"

// All bytes of a literal, zero bytes included, without its terminator.
template <size_t N>
std::string Bytes(const char (&aLiteral)[N]) {
  return std::string(aLiteral, N - 1);
}

// The bytes in a block of their own and of just their size, unterminated, so that the address sanitizer sees
// a read past them. data() of the empty text is null.
inline std::vector<char> Exactly(const std::string& aBytes) {
  return std::vector<char>(aBytes.begin(), aBytes.end());
}

// Copies a text that has to be released with qvFree, and releases it; "(null)" for null.
inline std::string TakeText(char* aText) {
  std::string theText = aText != nullptr ? aText : "(null)";
  qvFree(aText);
  return theText;
}

// The same for a text with zero bytes inside: its first aLength bytes.
inline std::string TakeText(char* aText, size_t aLength) {
  std::string theText(aText, aLength);
  qvFree(aText);
  return theText;
}

#endif
