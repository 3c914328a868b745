#ifndef _BENCHMARKS_UTF_WORKLOAD_H
#define _BENCHMARKS_UTF_WORKLOAD_H

#include "Contender.h"

#include <cstddef>
#include <string>

/*
  How fast does text change its encoding? Texts are random words of one kind, always the same; the size of a
  row is that of the text in UTF-8. No text has characters above U+FFFF.
*/
enum class Text {
  ASCII,
  Latin,  // words in which every fifth letter or so is one of the upper half of ISO-8859-1
  Mixed,  // words in ASCII, accented Latin, Greek and Cyrillic letters, and some of ideographs
  CJK     // ideographs and their punctuation alone
};

// A text in every encoding. Every form is aligned for its units and has a terminator behind it.
struct Sample {
  std::string mUTF8;
  std::wstring mWide;
  std::u16string mUTF16;  // in the order of this machine
  std::string mUTF16Big;  // as bytes, most significant first
  std::string mUTF16Little;
  std::string mISO;  // empty when the text has characters that ISO-8859-1 has not
};

// Where a conversion leaves its result.
class Result {
 public:
  // The caller's buffer, for functions that write into one; it holds a million characters in any encoding.
  char* Room() const { return mRoom; }
  wchar_t* WideRoom() const { return reinterpret_cast<wchar_t*>(mRoom); }
  static const size_t kRoom = 8u << 20;  // bytes

  // What was written into the room, or into a block of the conversion's own that is about to be freed.
  void Show(const void* aBytes, size_t aLength);

  // Whether the next Show has to hold on to the bytes.
  void Remember() { mRemembered = true; }
  const std::string& Remembered() const { return mBytes; }

 private:
  char* mRoom = SharedRoom();
  bool mRemembered = false;
  std::string mBytes;

  static char* SharedRoom();
};

using Convert = void (*)(const Sample&, Result&);

// Runs a conversion once for a look at what it gives, then for the time it takes.
void Run(benchmark::State& aState, Text aText, Convert aConvert, std::string (*anExpected)(const Sample&));

// The bytes that each conversion has to give.
std::string UTF8Of(const Sample& aSample);
std::string WideOf(const Sample& aSample);
std::string ISOOf(const Sample& aSample);
std::string NothingOf(const Sample& aSample);

template <Text kText, Convert kConvert, std::string (*kExpected)(const Sample&)>
void RunText(benchmark::State& aState) {
  Run(aState, kText, kConvert, kExpected);
}

// A conversion by one contender, of one kind of text in three sizes.
class TextRow {
 public:
  TextRow(const char* aRow, const char* aName, Contender::Work aWork)
      : mRows{{aRow, 64, aName, aWork}, {aRow, 4096, aName, aWork}, {aRow, 1 << 20, aName, aWork}} {}

 private:
  Contender mRows[3];
};

// The rows of a conversion, for one contender.
#define UTF_ROWS(ROW, NAME, CONVERT, EXPECTED)                          \
  {ROW ", ASCII", NAME, RunText<Text::ASCII, CONVERT, EXPECTED>},       \
      {ROW ", mixed", NAME, RunText<Text::Mixed, CONVERT, EXPECTED>}, { \
    ROW ", CJK", NAME, RunText<Text::CJK, CONVERT, EXPECTED>            \
  }

#define ISO_ROWS(ROW, NAME, CONVERT, EXPECTED)                      \
  {ROW ", ASCII", NAME, RunText<Text::ASCII, CONVERT, EXPECTED>}, { \
    ROW ", mixed", NAME, RunText<Text::Latin, CONVERT, EXPECTED>    \
  }

#define ROW_UTF8_TO_WIDE "UTF-8 to wide"
#define ROW_WIDE_TO_UTF8 "wide to UTF-8"
#define ROW_VALIDATE     "validate UTF-8"
#define ROW_LITTLE       "UTF-16LE to UTF-8"
#define ROW_BIG          "UTF-16BE to UTF-8"
#define ROW_ISO_TO_UTF8  "ISO-8859-1 to UTF-8"
#define ROW_UTF8_TO_ISO  "UTF-8 to ISO-8859-1"

#endif
