// GuardedBytes.h - bytes behind which nothing can be read.
#ifndef TESTS_SUPPORT_GUARDEDBYTES_H
#define TESTS_SUPPORT_GUARDEDBYTES_H

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

// The bytes end where a page ends that is followed by one that cannot be read, so that whoever reads further
// ends the process, in every build. Where they begin depends on how many they are.
class GuardedBytes {
 public:
  explicit GuardedBytes(const std::string& aBytes) {
    size_t thePage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    mSize = (aBytes.size() / thePage + 2) * thePage;
    mPages =
        static_cast<char*>(mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mBytes = mPages + mSize - thePage - aBytes.size();
    memcpy(mBytes, aBytes.data(), aBytes.size());
    mprotect(mPages + mSize - thePage, thePage, PROT_NONE);
  }
  ~GuardedBytes() { munmap(mPages, mSize); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  char* Data() const { return mBytes; }

 private:
  char* mPages;
  size_t mSize;
  char* mBytes;
};

#endif
