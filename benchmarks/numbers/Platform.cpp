#include "Workload.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace {

// The range is told by errno, which the caller has to clear.
template <typename Parse>
bool ReadWhole(const char* aText, size_t aLength, Parse aParse) {
  char* theEnd = nullptr;
  errno = 0;
  aParse(&theEnd);
  return errno == 0 && theEnd == aText + aLength;
}

struct Strtol {
  bool operator()(const char* aText, size_t aLength, int32_t* aValue) const {
    long theValue = 0;
    const bool thefWhole =
        ReadWhole(aText, aLength, [&](char** anEnd) { theValue = strtol(aText, anEnd, 10); });
    *aValue = static_cast<int32_t>(theValue);
    return thefWhole && *aValue == theValue;
  }
};

struct Strtoull {
  bool operator()(const char* aText, size_t aLength, uint64_t* aValue) const {
    return ReadWhole(aText, aLength, [=](char** anEnd) { *aValue = strtoull(aText, anEnd, 10); });
  }
};

struct StrtoulHex {
  bool operator()(const char* aText, size_t aLength, uint32_t* aValue) const {
    unsigned long theValue = 0;
    const bool thefWhole =
        ReadWhole(aText, aLength, [&](char** anEnd) { theValue = strtoul(aText, anEnd, 16); });
    *aValue = static_cast<uint32_t>(theValue);
    return thefWhole && *aValue == theValue;
  }
};

struct Strtod {
  bool operator()(const char* aText, size_t aLength, double* aValue) const {
    return ReadWhole(aText, aLength, [=](char** anEnd) { *aValue = strtod(aText, anEnd); });
  }
};

// sscanf tells nothing about the range.
bool Scan(const char* aText, size_t aLength, const char* aFormat, void* aValue) {
  int theLength = 0;
  return sscanf(aText, aFormat, aValue, &theLength) == 1 && static_cast<size_t>(theLength) == aLength;
}

struct ScanInt32 {
  bool operator()(const char* aText, size_t aLength, int32_t* aValue) const {
    return Scan(aText, aLength, "%" SCNd32 "%n", aValue);
  }
};

struct ScanUInt64 {
  bool operator()(const char* aText, size_t aLength, uint64_t* aValue) const {
    return Scan(aText, aLength, "%" SCNu64 "%n", aValue);
  }
};

struct ScanHex {
  bool operator()(const char* aText, size_t aLength, uint32_t* aValue) const {
    return Scan(aText, aLength, "%" SCNx32 "%n", aValue);
  }
};

struct ScanDouble {
  bool operator()(const char* aText, size_t aLength, double* aValue) const {
    return Scan(aText, aLength, "%lf%n", aValue);
  }
};

const Contender sRows[] = {
    NUMBERS_INT32_ROWS("strtol", Strtol),      NUMBERS_INT32_ROWS("sscanf", ScanInt32),
    NUMBERS_UINT64_ROWS("strtoull", Strtoull), NUMBERS_UINT64_ROWS("sscanf", ScanUInt64),
    NUMBERS_HEX_ROWS("strtoul", StrtoulHex),   NUMBERS_HEX_ROWS("sscanf", ScanHex),
    NUMBERS_DOUBLE_ROWS("strtod", Strtod),     NUMBERS_DOUBLE_ROWS("sscanf", ScanDouble)};

}  // namespace
