// FuzzInput.h - takes the bytes of a fuzz input apart, and ends the run when a promise is broken.
#ifndef FUZZ_FUZZINPUT_H
#define FUZZ_FUZZINPUT_H

#include <sanitizer/asan_interface.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <string_view>

// Ends the run as a finding.
#define FUZZ_REQUIRE(aCondition)                                                  \
  do {                                                                            \
    if (!(aCondition)) {                                                          \
      dprintf(2, "%s:%d: broken promise: %s\n", __FILE__, __LINE__, #aCondition); \
      __builtin_trap();                                                           \
    }                                                                             \
  } while (0)

class FuzzInput {
 public:
  FuzzInput(const uint8_t* aBytes, size_t aLength) : mBytes(aBytes), mLength(aLength) {}

  size_t BytesLeft() const { return mLength; }

  // The next byte, or 0 when none is left.
  uint8_t Byte() {
    if (mLength == 0) {
      return 0;
    }
    --mLength;
    return *mBytes++;
  }

  // The next bytes as a number; missing ones are 0.
  uint64_t Number() {
    uint64_t theNumber = 0;
    for (int i = 0; i < 8; ++i) {
      theNumber = (theNumber << 8) | Byte();
    }
    return theNumber;
  }

  // The bytes up to the next zero byte, which is skipped.
  std::string Text() {
    const void* theEnd = mLength > 0 ? memchr(mBytes, 0, mLength) : nullptr;
    size_t theLength =
        theEnd != nullptr ? static_cast<size_t>(static_cast<const uint8_t*>(theEnd) - mBytes) : mLength;
    std::string theText = Bytes(theLength);
    Byte();
    return theText;
  }

  // The next bytes, as many of them as there are.
  std::string Bytes(size_t aLength) {
    size_t theLength = aLength < mLength ? aLength : mLength;
    std::string theText(reinterpret_cast<const char*>(mBytes), theLength);
    mBytes += theLength;
    mLength -= theLength;
    return theText;
  }

  // What is left.
  std::string Rest() { return Bytes(mLength); }

 private:
  const uint8_t* mBytes;
  size_t mLength;
};

// So many bytes, of which just they may be touched, and only as long as this lives: the sanitizer reports
// everything else. They are quicker than a block of the heap, and the one that was made last has to go first.
class ExactBytes {
 public:
  explicit ExactBytes(size_t aSize) : mSize(aSize), mBytes(sArena + sUsed) {
    static const bool sForbidden = Forbid(sArena, sizeof(sArena));
    FUZZ_REQUIRE(sForbidden && aSize <= sizeof(sArena) - sUsed - kGap);
    sUsed += Taken();
    ASAN_UNPOISON_MEMORY_REGION(mBytes, mSize);
  }
  ExactBytes(const ExactBytes&) = delete;
  ExactBytes& operator=(const ExactBytes&) = delete;
  ~ExactBytes() {
    Forbid(mBytes, mSize);
    sUsed -= Taken();
    FUZZ_REQUIRE(mBytes == sArena + sUsed);
  }

  char* Data() const { return mBytes; }
  size_t Size() const { return mSize; }

 private:
  static constexpr size_t kGap = 32;  // bytes

  // What follows is as far away as it has to be, where the heap would put it too.
  size_t Taken() const { return (mSize + kGap + 15) / 16 * 16; }

  static bool Forbid(char* aBytes, size_t aSize) {
    ASAN_POISON_MEMORY_REGION(aBytes, aSize);
    return true;
  }

  alignas(16) static inline char sArena[256 * 1024];
  static inline size_t sUsed = kGap / 16 * 16;

  size_t mSize;
  char* mBytes;
};

// The bytes of a text. Terminated, if asked for.
class ExactCopy : public ExactBytes {
 public:
  explicit ExactCopy(std::string_view aText, bool afTerminated = false)
      : ExactBytes(aText.size() + (afTerminated ? 1 : 0)) {
    memcpy(Data(), aText.data(), aText.size());
    if (afTerminated) {
      Data()[aText.size()] = '\0';
    }
  }
};

#endif
