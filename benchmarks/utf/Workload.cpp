#include "Workload.h"

#include <malloc.h>

#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

const size_t kSizeOfAll = 256 << 10;  // bytes of text that are converted in turn

using Words = std::vector<std::u16string>;

const Words& WordsOf(Text aText) {
  static const Words sASCII = {u"tuner",     u"locked", u"to",      u"transponder", u"frequency",
                               u"(11954000", u"kHz),",  u"signal",  u"level",       u"72%;",
                               u"waiting",   u"for",    u"tables",  u"0x1F,",       u"retry",
                               u"in",        u"250ms",  u"section", u"version",     u"done"};
  static const Words sLatin = {u"für",  u"gerät", u"große", u"été",   u"où",        u"système", u"señal",
                               u"año",  u"não",   u"está",  u"fjärr", u"år",        u"på",      u"über",
                               u"menü", u"tuner", u"kanal", u"wählt", u"récepteur", u"écran"};
  static const Words sMixed = {u"tuner",    u"signal", u"OK",    u"frequency", u"for",
                               u"gerät",    u"été",    u"señal", u"σήμα",      u"κανάλι",
                               u"сигнал",   u"канал",  u"для",   u"частота",   u"时间",
                               u"信号强度", u"250ms;", u"größe", u"0x1F",      u"チャンネル"};
  static const Words sCJK = {u"时间",     u"信号强度",   u"频道", u"正在搜索，", u"节目指南",
                             u"受信中。", u"チャンネル", u"録画", u"予約",       u"한국어",
                             u"음량",     u"언어",       u"设置", u"更新"};
  switch (aText) {
    case Text::ASCII:
      return sASCII;
    case Text::Latin:
      return sLatin;
    case Text::Mixed:
      return sMixed;
    case Text::CJK:
      break;
  }
  return sCJK;
}

std::string EncodeUTF8(char16_t aChar) {
  std::string theBytes;
  if (aChar < 0x80) {
    return std::string(1, static_cast<char>(aChar));
  }
  if (aChar < 0x800) {
    theBytes += static_cast<char>(0xC0 | aChar >> 6);
  } else {
    theBytes += static_cast<char>(0xE0 | aChar >> 12);
    theBytes += static_cast<char>(0x80 | (aChar >> 6 & 0x3F));
  }
  return theBytes + static_cast<char>(0x80 | (aChar & 0x3F));
}

// Words until the size is reached; what is left behind the last whole character is filled with full stops.
std::u16string MakeText(Text aText, size_t aSize, std::mt19937& theRandom) {
  const Words& theWords = WordsOf(aText);
  std::u16string theText;
  size_t theSize = 0;
  for (;;) {
    std::u16string theWord = theWords[theRandom() % theWords.size()];
    if (aText != Text::CJK) {
      theWord += u' ';
    }
    for (char16_t theChar : theWord) {
      size_t theLength = EncodeUTF8(theChar).size();
      if (theSize + theLength > aSize) {
        return theText + std::u16string(aSize - theSize, u'.');
      }
      theText += theChar;
      theSize += theLength;
    }
  }
}

Sample MakeSample(Text aText, size_t aSize, std::mt19937& theRandom) {
  Sample theSample;
  theSample.mUTF16 = MakeText(aText, aSize, theRandom);
  bool theISO = true;
  for (char16_t theChar : theSample.mUTF16) {
    char theHigh = static_cast<char>(theChar >> 8);
    char theLow = static_cast<char>(theChar & 0xFF);
    theSample.mUTF8 += EncodeUTF8(theChar);
    theSample.mWide += static_cast<wchar_t>(theChar);
    theSample.mUTF16Big += {theHigh, theLow};
    theSample.mUTF16Little += {theLow, theHigh};
    theSample.mISO += theLow;
    theISO = theISO && theHigh == 0;
  }
  if (!theISO) {
    theSample.mISO.clear();
  }
  return theSample;
}

using Samples = std::vector<Sample>;

const Samples& SamplesOf(Text aText, size_t aSize) {
  static std::map<std::pair<Text, size_t>, Samples> sSamples;
  Samples& theSamples = sSamples[{aText, aSize}];
  std::mt19937 theRandom(static_cast<unsigned>(aSize));
  while (theSamples.empty() || theSamples.size() * aSize < kSizeOfAll) {
    theSamples.push_back(MakeSample(aText, aSize, theRandom));
  }
  return theSamples;
}

}  // namespace

char* Result::SharedRoom() {
  static std::vector<char> sRoom(kRoom);
  return sRoom.data();
}

void Result::Show(const void* aBytes, size_t aLength) {
  benchmark::DoNotOptimize(aBytes);
  benchmark::ClobberMemory();
  if (mRemembered) {
    mBytes.assign(static_cast<const char*>(aBytes), aLength);
    mRemembered = false;
  }
}

void Run(benchmark::State& aState, Text aText, Convert aConvert, std::string (*anExpected)(const Sample&)) {
  // Large blocks stay with the process: a contender is not to pay for the pages that another one has given
  // back.
  mallopt(M_MMAP_THRESHOLD, 64 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
  const Samples& theSamples = SamplesOf(aText, static_cast<size_t>(aState.range(0)));
  Result theResult;
  for (const Sample& theSample : theSamples) {
    theResult.Remember();
    aConvert(theSample, theResult);
    if (theResult.Remembered() != anExpected(theSample)) {
      aState.SkipWithError("the result is wrong");
      return;
    }
  }
  size_t theNumber = 0;
  for (auto _ : aState) {
    aConvert(theSamples[theNumber], theResult);
    theNumber = theNumber + 1 < theSamples.size() ? theNumber + 1 : 0;
  }
}

std::string UTF8Of(const Sample& aSample) { return aSample.mUTF8; }

std::string WideOf(const Sample& aSample) {
  return std::string(reinterpret_cast<const char*>(aSample.mWide.data()),
                     aSample.mWide.size() * sizeof(wchar_t));
}

std::string ISOOf(const Sample& aSample) { return aSample.mISO; }

std::string NothingOf(const Sample&) { return std::string(); }
