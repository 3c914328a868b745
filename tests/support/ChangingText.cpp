#include "support/ChangingText.h"

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

ChangingText* sCurrent = nullptr;

}  // namespace

// The first byte is the last one of a page, the others stand in the next page, and only one of the two can be
// read. So each fault says that a reader has gone from the one to the other, and a fault on the way back that
// another reading begins.
ChangingText::ChangingText(const std::string& aText, char aChangedFirstByte)
    : mPageSize(static_cast<size_t>(sysconf(_SC_PAGESIZE))), mChangedFirstByte(aChangedFirstByte) {
  mPages = static_cast<char*>(
      mmap(nullptr, 2 * mPageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  mText = mPages + mPageSize - 1;
  memcpy(mText, aText.c_str(), aText.size() + 1);
  mprotect(mPages + mPageSize, mPageSize, PROT_NONE);
  sCurrent = this;
  struct sigaction theAction = {};
  theAction.sa_handler = OnFault;
  sigaction(SIGSEGV, &theAction, &mOldAction);
}

ChangingText::~ChangingText() {
  sigaction(SIGSEGV, &mOldAction, nullptr);
  sCurrent = nullptr;
  munmap(mPages, 2 * mPageSize);
}

void ChangingText::OnFault(int /* aSignal */) {
  size_t thePageSize = sCurrent->mPageSize;
  char* theFirstPage = sCurrent->mPages;
  if (sCurrent->mfAtFirstByte) {
    sCurrent->mfAtFirstByte = false;
    mprotect(theFirstPage, thePageSize, PROT_NONE);
    mprotect(theFirstPage + thePageSize, thePageSize, PROT_READ);
    return;
  }
  mprotect(theFirstPage, 2 * thePageSize, PROT_READ | PROT_WRITE);
  *sCurrent->mText = sCurrent->mChangedFirstByte;
  // Another fault is none of ours, so it ends the process.
  signal(SIGSEGV, SIG_DFL);
}
