// OwnedText.h - takes a text that the caller has to release, so that a test can compare it in one line.
#ifndef TESTS_SUPPORT_OWNEDTEXT_H
#define TESTS_SUPPORT_OWNEDTEXT_H

#include <string>

#include "qvraTools/qvMalloc.h"

// What a null text becomes; no function gives this text.
#define kOwnedText_Null "<null>"

// Copies aText and releases it with qvFree.
inline std::string TakeText(char* aText) {
  std::string theText = aText != nullptr ? aText : kOwnedText_Null;
  qvFree(aText);
  return theText;
}

#endif
