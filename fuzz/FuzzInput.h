// FuzzInput.h - takes the bytes of a fuzz input apart, and ends the run when a promise is broken.
#ifndef FUZZ_FUZZINPUT_H
#define FUZZ_FUZZINPUT_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <string_view>

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

// The bytes of a text in a block of just that size: the sanitizer reports a read behind its end. Terminated,
// if asked for.
class ExactCopy {
 public:
  explicit ExactCopy(std::string_view aText, bool afTerminated = false)
      : mSize(aText.size() + (afTerminated ? 1 : 0)), mBytes(new char[mSize]) {
    memcpy(mBytes.get(), aText.data(), aText.size());
    if (afTerminated) {
      mBytes[aText.size()] = '\0';
    }
  }

  char* Data() const { return mBytes.get(); }

 private:
  size_t mSize;
  std::unique_ptr<char[]> mBytes;
};

// Ends the run as a finding.
#define FUZZ_REQUIRE(aCondition)                                                  \
  do {                                                                            \
    if (!(aCondition)) {                                                          \
      dprintf(2, "%s:%d: broken promise: %s\n", __FILE__, __LINE__, #aCondition); \
      __builtin_trap();                                                           \
    }                                                                             \
  } while (0)

#endif
