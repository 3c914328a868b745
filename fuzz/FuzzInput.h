// FuzzInput.h - takes the bytes of a fuzz input apart.
#ifndef FUZZ_FUZZINPUT_H
#define FUZZ_FUZZINPUT_H

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>

class FuzzInput {
 public:
  FuzzInput(const uint8_t* aBytes, size_t aLength) : mBytes(aBytes), mLength(aLength) {}

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
    std::string theText(reinterpret_cast<const char*>(mBytes), theLength);
    size_t theStep = theEnd != nullptr ? theLength + 1 : theLength;
    mBytes += theStep;
    mLength -= theStep;
    return theText;
  }

  // What is left.
  std::string Rest() {
    std::string theText(reinterpret_cast<const char*>(mBytes), mLength);
    mLength = 0;
    return theText;
  }

 private:
  const uint8_t* mBytes;
  size_t mLength;
};

// Ends the run as a finding.
#define FUZZ_REQUIRE(aCondition) \
  do {                           \
    if (!(aCondition)) {         \
      __builtin_trap();          \
    }                            \
  } while (0)

#endif
