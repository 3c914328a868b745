// Texts and characters: null, UTF-8, wide arguments, width and precision in each family.
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "qvraTools/format/qvFormat.h"
#include "support/FormatText.h"

#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-overflow"

static const char* const kNullText = nullptr;
static const wchar_t* const kNullWideText = nullptr;

// A copy of a block whose last byte is the last one that can be read: reading on ends the process.
class GuardedBlock {
 public:
  GuardedBlock(const void* aData, size_t aSize) : mPage(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    mMemory = static_cast<char*>(
        mmap(nullptr, 2 * mPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_EQ(0, mprotect(mMemory + mPage, mPage, PROT_NONE));
    mBlock = mMemory + mPage - aSize;
    memcpy(mBlock, aData, aSize);
  }
  ~GuardedBlock() { munmap(mMemory, 2 * mPage); }
  GuardedBlock(const GuardedBlock&) = delete;
  GuardedBlock& operator=(const GuardedBlock&) = delete;

  const char* Text() const { return mBlock; }
  const wchar_t* WideText() const { return reinterpret_cast<const wchar_t*>(mBlock); }

 private:
  size_t mPage;
  char* mMemory;
  char* mBlock;
};

TEST(qvFormatText, CopiesTexts) {
  ExpectFormatted("abc", "%s", "abc");
  ExpectFormatted("", "%s", "");
  ExpectFormatted("[  abc]", "[%5s]", "abc");
  ExpectFormatted("[abc  ]", "[%-5s]", "abc");
  ExpectFormatted("[abc]", "[%2s]", "abc");
  ExpectFormatted("[ab]", "[%.2s]", "abc");
  ExpectFormatted("[abc]", "[%.9s]", "abc");
  ExpectFormatted("[]", "[%.0s]", "abc");
  ExpectFormatted("[]", "[%.s]", "abc");
  ExpectFormatted("[   ab]", "[%5.2s]", "abc");
  ExpectFormatted("[ab   ]", "[%-5.2s]", "abc");
}

TEST(qvFormatText, TakesWidthAndPrecisionFromTheArguments) {
  ExpectFormatted("[  abc]", "[%*s]", 5, "abc");
  ExpectFormatted("[abc  ]", "[%*s]", -5, "abc");
  ExpectFormatted("[abc]", "[%*s]", 0, "abc");
  ExpectFormatted("[ab]", "[%.*s]", 2, "abc");
  ExpectFormatted("[abc]", "[%.*s]", -2, "abc");
  ExpectFormatted("[   ab]", "[%*.*s]", 5, 2, "abc");
  ExpectFormatted("[ab   ]", "[%-*.*s]", -5, 2, "abc");
}

TEST(qvFormatText, PadsWithBlanksWhateverTheFlags) {
  ExpectFormatted("[  abc]", "[%05s]", "abc");
  ExpectFormatted("[  abc]", "[%+ #5s]", "abc");
  ExpectFormatted("[    a]", "[%05c]", 'a');
}

TEST(qvFormatText, PrintsANullText) {
  char theBuffer[16];
  EXPECT_EQ(5, qv_snprintf(theBuffer, 16, "%s", kNullText));
  EXPECT_STREQ("(nil)", theBuffer);
  ExpectFormatted("(nil)", "%s", kNullText);
  ExpectFormatted("(nil)", "%ls", kNullWideText);
}

TEST(qvFormatText, PrintsANullTextUnderWidthAndPrecision) {
  ExpectFormatted("[   (nil)]", "[%8s]", kNullText);
  ExpectFormatted("[(nil)   ]", "[%-8s]", kNullText);
  ExpectFormatted("[(ni]", "[%.3s]", kNullText);
  ExpectFormatted("[]", "[%.0s]", kNullText);
  ExpectFormatted("[  (n]", "[%4.2ls]", kNullWideText);
}

TEST(qvFormatText, ReadsNoByteBehindThePrecision) {
  GuardedBlock theText("abc", 3);
  EXPECT_EQ("abc", NarrowText("%.3s", theText.Text()));
  EXPECT_EQ("  abc", NarrowText("%5.*s", 3, theText.Text()));
  EXPECT_EQ("", NarrowText("%.0s", theText.Text() + 3));
  EXPECT_EQ(L"abc", WideText(L"%.3s", theText.Text()));
  EXPECT_EQ(L"", WideText(L"%.0s", theText.Text() + 3));
}

TEST(qvFormatText, ReadsNoByteBehindThePrecisionInUTF8) {
  GuardedBlock theText("a\xe2\x82\xac\xc3\xa9", 6);
  EXPECT_EQ("a\xe2\x82\xac\xc3\xa9", NarrowText("%.6s", theText.Text()));
  EXPECT_EQ(L"a\u20ac\u00e9", WideText(L"%.3s", theText.Text()));
  EXPECT_EQ(L"  a\u20ac\u00e9", WideText(L"%5.3s", theText.Text()));
}

TEST(qvFormatText, ReadsNoWideCharacterBehindThePrecision) {
  GuardedBlock theText(L"a\u20ac", 2 * sizeof(wchar_t));
  EXPECT_EQ("a\xe2\x82\xac", NarrowText("%.4ls", theText.WideText()));
  EXPECT_EQ(L"a\u20ac", WideText(L"%.2ls", theText.WideText()));
  EXPECT_EQ(L"", WideText(L"%.0ls", theText.WideText() + 2));
}

TEST(qvFormatText, CountsBytesInTheNarrowFamily) {
  EXPECT_EQ("[  \xc3\xa9]", NarrowText("[%4s]", "\xc3\xa9"));
  EXPECT_EQ("[\xc3\xa9  ]", NarrowText("[%-4s]", "\xc3\xa9"));
  EXPECT_EQ("[\xc3]", NarrowText("[%.1s]", "\xc3\xa9"));
  EXPECT_EQ(3, qv_snprintf(nullptr, 0, "%s", "\xe2\x82\xac"));
}

TEST(qvFormatText, CountsCharactersInTheWideFamily) {
  EXPECT_EQ(L"[   \u00e9]", WideText(L"[%4s]", "\xc3\xa9"));
  EXPECT_EQ(L"[\u00e9   ]", WideText(L"[%-4s]", "\xc3\xa9"));
  EXPECT_EQ(L"[\u00e9]", WideText(L"[%.1s]", "\xc3\xa9\xc3\xa9"));
  EXPECT_EQ(1, qv_swprintf(nullptr, 0, L"%s", "\xe2\x82\xac"));
}

TEST(qvFormatText, CopiesUTF8InFormats) {
  EXPECT_EQ("gr\xc3\xbc\xc3\x9f 5 \xf0\x9f\x8e\xb5", NarrowText("gr\xc3\xbc\xc3\x9f %d \xf0\x9f\x8e\xb5", 5));
  EXPECT_EQ(L"gr\u00fc\u00df 5 \U0001f3b5", WideText(L"gr\u00fc\u00df %d \U0001f3b5", 5));
}

TEST(qvFormatText, PassesBytesThatAreNotUTF8) {
  std::string theBytes;
  for (int theByte = 1; theByte < 256; ++theByte) {
    theBytes += static_cast<char>(theByte);
  }
  EXPECT_EQ(theBytes, NarrowText("%s", theBytes.c_str()));
  std::string theFormat = theBytes;
  theFormat.insert(theFormat.find('%'), "%");
  EXPECT_EQ(theBytes, NarrowText(theFormat.c_str()));
}

TEST(qvFormatText, SeesADirectiveBehindBytesThatAreNotUTF8) {
  EXPECT_EQ(
      "\xe2"
      "5",
      NarrowText("\xe2%d", 5))
      << "a lead byte takes nothing";
  EXPECT_EQ(
      "\xf0\x9f"
      "5%\xc3",
      NarrowText("\xf0\x9f%d%%\xc3", 5));
  EXPECT_EQ("error 2 at 3", NarrowText("\xe2\x82%\xe2\x82"));
}

struct DecodedText {
  const char* mText;
  const wchar_t* mWide;
  const char* mWhy;
};

TEST(qvFormatText, DecodesUTF8InTheWideFamily) {
  const DecodedText kCases[] = {
      {"abc", L"abc", "ASCII"},
      {"\xc2\x80\xdf\xbf", L"\x80\x7ff", "first and last of two bytes"},
      {"\xe0\xa0\x80\xef\xbf\xbf", L"\x800\xffff", "first and last of three bytes"},
      {"\xf0\x90\x80\x80\xf7\xbf\xbf\xbf", L"\x10000\x1fffff", "first and last of four bytes"},
      {"\xf8\x88\x80\x80\x80", L"\x200000", "first of five bytes"},
      {"\xfd\xbf\xbf\xbf\xbf\xbf", L"\x7fffffff", "last of six bytes"},
      {"\x80z", L"\x80z", "a continuation byte alone stands for itself"},
      {"\xbf\xbf", L"\xbf\xbf", "each of them"},
      {"\xc3z", L"\xc3z", "a lead byte without its continuation"},
      {"\xc3", L"\xc3", "a lead byte at the end"},
      {"\xe2\x82", L"\xe2\x82", "two of three bytes"},
      {"\xe2\x82z", L"\xe2\x82z", "two of three bytes and a letter"},
      {"\xe2\xc3\xa9", L"\xe2\xe9", "a lead byte in front of a whole character"},
      {"\xc0\x80", L"\xc0\x80", "an overlong form"},
      {"\xe0\x80\x80", L"\xe0\x80\x80", "an overlong form of three bytes"},
      {"\xfe\x80\x80\x80\x80\x80\x80", L"\xfe\x80\x80\x80\x80\x80\x80", "no lead byte"},
      {"\xff", L"\xff", "no lead byte"},
  };
  for (const DecodedText& theCase : kCases) {
    EXPECT_EQ(theCase.mWide, WideText(L"%s", theCase.mText)) << theCase.mWhy;
  }
}

TEST(qvFormatText, EncodesWideTextInTheNarrowFamily) {
  EXPECT_EQ("abc", NarrowText("%ls", L"abc"));
  EXPECT_EQ("\xc2\x80\xdf\xbf", NarrowText("%ls", L"\x80\x7ff"));
  EXPECT_EQ("\xe0\xa0\x80\xef\xbf\xbf", NarrowText("%ls", L"\x800\xffff"));
  EXPECT_EQ("\xf0\x90\x80\x80\xf0\x9f\x8e\xb5", NarrowText("%ls", L"\U00010000\U0001f3b5"));
  EXPECT_EQ("\xfd\xbf\xbf\xbf\xbf\xbf", NarrowText("%ls", L"\x7fffffff"));
  EXPECT_EQ("\xed\xa0\x80", NarrowText("%ls", L"\xd800"));
}

TEST(qvFormatText, NeverWritesPartOfAWideCharacterForAPrecision) {
  const wchar_t* kText = L"a\u20ac\u00e9";
  EXPECT_EQ("", NarrowText("%.0ls", kText));
  EXPECT_EQ("a", NarrowText("%.1ls", kText));
  EXPECT_EQ("a", NarrowText("%.2ls", kText));
  EXPECT_EQ("a", NarrowText("%.3ls", kText));
  EXPECT_EQ("a\xe2\x82\xac", NarrowText("%.4ls", kText));
  EXPECT_EQ("a\xe2\x82\xac", NarrowText("%.5ls", kText));
  EXPECT_EQ("a\xe2\x82\xac\xc3\xa9", NarrowText("%.6ls", kText));
  EXPECT_EQ("[    a]", NarrowText("[%5.3ls]", kText));
  EXPECT_EQ("[  \xe2\x82\xac]", NarrowText("[%5ls]", L"\u20ac"));
  EXPECT_EQ("[\xe2\x82\xac  ]", NarrowText("[%-5ls]", L"\u20ac"));
}

TEST(qvFormatText, CutsEncodedTextAtTheEndOfTheBufferOnly) {
  char theBuffer[8] = "xxxxxxx";
  EXPECT_EQ(4, qv_snprintf(theBuffer, 3, "%ls", L"a\u20ac"));
  EXPECT_STREQ("a\xe2", theBuffer);
}

TEST(qvFormatText, CopiesWideTextInTheWideFamily) {
  EXPECT_EQ(L"a\u20ac", WideText(L"%ls", L"a\u20ac"));
  EXPECT_EQ(L"[   a\u20ac]", WideText(L"[%5ls]", L"a\u20ac"));
  EXPECT_EQ(L"[a    ]", WideText(L"[%-5.1ls]", L"a\u20ac"));
}

TEST(qvFormatText, PrintsCharacters) {
  ExpectFormatted("a", "%c", 'a');
  ExpectFormatted("[  a]", "[%3c]", 'a');
  ExpectFormatted("[a  ]", "[%-3c]", 'a');
  ExpectFormatted("[a]", "[%.0c]", 'a');
  ExpectFormatted("[a]", "[%lc]", L'a');
}

TEST(qvFormatText, PrintsOneByteForEveryCharacterNumber) {
  EXPECT_EQ("\xe9", NarrowText("%c", 0xe9));
  EXPECT_EQ("\xe9", NarrowText("%c", -23)) << "a negative char is the same byte";
  EXPECT_EQ("A", NarrowText("%c", 0x141)) << "the low byte counts";
  EXPECT_EQ(L"\u00e9", WideText(L"%c", 0xe9));
  EXPECT_EQ(L"\u00e9", WideText(L"%c", -23));
  EXPECT_EQ(L"A", WideText(L"%c", 0x141));
}

TEST(qvFormatText, PrintsZeroCharacters) {
  EXPECT_EQ(std::string("a\0b", 3), NarrowText("a%cb", 0));
  EXPECT_EQ(std::string("a\0b", 3), NarrowText("a%lcb", 0));
  EXPECT_EQ(std::wstring(L"a\0b", 3), WideText(L"a%cb", 0));
  EXPECT_EQ(std::wstring(L"a\0b", 3), WideText(L"a%lcb", 0));
}

TEST(qvFormatText, PrintsWideCharacters) {
  EXPECT_EQ("[\xe2\x82\xac]", NarrowText("[%lc]", 0x20ac));
  EXPECT_EQ("[  \xe2\x82\xac]", NarrowText("[%5lc]", 0x20ac));
  EXPECT_EQ("[\xe2\x82\xac  ]", NarrowText("[%-5lc]", 0x20ac));
  EXPECT_EQ("[\xe2\x82\xac]", NarrowText("[%.1lc]", 0x20ac)) << "never a part of it";
  EXPECT_EQ(L"[    \u20ac]", WideText(L"[%5lc]", 0x20ac));
}

TEST(qvFormatText, PrintsPointers) {
  void* kPointer = reinterpret_cast<void*>(static_cast<uintptr_t>(0xabcd));
  ExpectFormatted("0x0000abcd", "%p", kPointer);
  ExpectFormatted("[  0x0000abcd]", "[%12p]", kPointer);
  ExpectFormatted("[0x0000abcd  ]", "[%-12p]", kPointer);
  ExpectFormatted("[0x0000abcd]", "[%5p]", kPointer);
  ExpectFormatted("0xffffffff", "%p", reinterpret_cast<void*>(static_cast<uintptr_t>(0xffffffff)));
  ExpectFormatted("0x00000001", "%p", reinterpret_cast<void*>(static_cast<uintptr_t>(1)));
}

TEST(qvFormatText, PrintsAllDigitsOfTheLongestPointer) {
  void* kPointer = reinterpret_cast<void*>(UINTPTR_MAX);
  ExpectFormatted(sizeof kPointer == 4 ? "0xffffffff" : "0xffffffffffffffff", "%p", kPointer);
}

TEST(qvFormatText, PrintsANullPointer) {
  void* kNull = nullptr;
  ExpectFormatted("(nil)", "%p", kNull);
  ExpectFormatted("[   (nil)]", "[%8p]", kNull);
  ExpectFormatted("[(nil)   ]", "[%-8p]", kNull);
}

TEST(qvFormatText, HonoursOnlyWidthAndLeftAdjustmentOfPointers) {
  void* kPointer = reinterpret_cast<void*>(static_cast<uintptr_t>(0xabcd));
  void* kNull = nullptr;
  ExpectFormatted("[  0x0000abcd]", "[%+ #012p]", kPointer);
  ExpectFormatted("[0x0000abcd]", "[%.12p]", kPointer);
  ExpectFormatted("[0x0000abcd]", "[%.0p]", kPointer);
  ExpectFormatted("[   (nil)]", "[%+ #08p]", kNull);
  ExpectFormatted("[(nil)]", "[%.2p]", kNull);
}

TEST(qvFormatText, PrintsThePercentSign) { ExpectFormatted("100%", "%d%%", 100); }
