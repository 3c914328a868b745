// ChangingText.h - a text that changes between two passes over it.
#ifndef TESTS_SUPPORT_CHANGINGTEXT_H
#define TESTS_SUPPORT_CHANGINGTEXT_H

#include <signal.h>
#include <stddef.h>

#include <string>

// For checks that find the second pass of a function in contradiction to its first: whoever reads the text
// from front to back and then begins again finds another first byte. Only one such text at a time; it takes
// SIGSEGV over while it lives.
class ChangingText {
 public:
  // aText has at least 2 bytes; a terminator follows them.
  ChangingText(const std::string& aText, char aChangedFirstByte);
  ~ChangingText();
  ChangingText(const ChangingText&) = delete;
  ChangingText& operator=(const ChangingText&) = delete;

  const char* Text() const { return mText; }

 private:
  static void OnFault(int aSignal);

  size_t mPageSize;
  char* mPages;
  char* mText;
  char mChangedFirstByte;
  bool mfAtFirstByte = true;
  struct sigaction mOldAction;
};

#endif
