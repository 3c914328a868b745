#include "support/ChangingText.h"

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

ChangingText* sCurrent = nullptr;

}  // namespace

// The first byte is the last one of a readable page, the others stand in a page that cannot be read yet. So
// the first fault comes when the first pass has left the first byte behind, and the second fault, on the page
// that this one closes, when a second pass begins.
ChangingText::ChangingText(const std::string& aText, char aFirstByteOfSecondPass)
    : mPageSize(static_cast<size_t>(sysconf(_SC_PAGESIZE))), mFirstByteOfSecondPass(aFirstByteOfSecondPass) {
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
  if (sCurrent->mfSecondPass) {
    mprotect(sCurrent->mPages, 2 * sCurrent->mPageSize, PROT_READ | PROT_WRITE);
    *sCurrent->mText = sCurrent->mFirstByteOfSecondPass;
    // Another fault is none of ours, so it ends the process.
    signal(SIGSEGV, SIG_DFL);
    return;
  }
  sCurrent->mfSecondPass = true;
  mprotect(sCurrent->mPages + sCurrent->mPageSize, sCurrent->mPageSize, PROT_READ);
  mprotect(sCurrent->mPages, sCurrent->mPageSize, PROT_NONE);
}
