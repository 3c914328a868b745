// OptionValue.h - reads the values that options and settings have.
//
// Each function returns false for text that is not wholly such a value, or one out of range, and then leaves
// the destination alone.
#ifndef QVLOGD_OPTIONVALUE_H
#define QVLOGD_OPTIONVALUE_H

#include "qvOS/qvTypes.h"

// A decimal number.
bool OptionValue_ParseNumber(const char* aText, uint64 aMinimum, uint64 aMaximum, uint64* aNumber);
// Bytes: a number, with K, M or G behind it for the powers of 1024.
bool OptionValue_ParseSize(const char* aText, uint64 aMinimum, uint64 aMaximum, uint64* aBytes);
// Milliseconds from a number with ms, s, m, h or d behind it; seconds without. 32 bits hold 49 days.
bool OptionValue_ParseDuration(const char* aText, uint32* aMilliseconds);
// Lines a second from "N/s" or "N"; 0 is no limit.
bool OptionValue_ParseRate(const char* aText, unsigned int* aLinesPerSecond);
// "yes", "true", "on", "1" or "no", "false", "off", "0", in any case.
bool OptionValue_ParseFlag(const char* aText, bool* afFlag);

#endif
