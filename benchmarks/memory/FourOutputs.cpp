// A program with four outputs: a file, the log daemon, a callback and a logger of its own. It logs for a
// while and prints what the library holds then, in bytes:
//   data  the library's writable segment, whole
//   heap  pages of the heap that were not there before the first call
// Then it waits, so that the system's view of it can be read. With an argument it does not log at all.
#include <link.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "qvLog/qvLog.h"
#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_qvLogd.h"

#define kMessages 1000

namespace {

long PageSize() { return sysconf(_SC_PAGESIZE); }

char* PageOf(void* anAddress) {
  return reinterpret_cast<char*>(reinterpret_cast<size_t>(anAddress) & ~static_cast<size_t>(PageSize() - 1));
}

long SegmentOfLibrary(long aTotal, struct dl_phdr_info* anInfo) {
  for (int theIndex = 0; theIndex < anInfo->dlpi_phnum; ++theIndex) {
    const ElfW(Phdr)& theSegment = anInfo->dlpi_phdr[theIndex];
    if (theSegment.p_type == PT_LOAD && (theSegment.p_flags & PF_W) != 0) {
      char* theStart = reinterpret_cast<char*>(anInfo->dlpi_addr + theSegment.p_vaddr);
      aTotal += PageOf(theStart + theSegment.p_memsz + PageSize() - 1) - PageOf(theStart);
    }
  }
  return aTotal;
}

int AddLibrary(struct dl_phdr_info* anInfo, size_t, void* aTotal) {
  if (strstr(anInfo->dlpi_name, "libqvLog") != nullptr) {
    *static_cast<long*>(aTotal) = SegmentOfLibrary(*static_cast<long*>(aTotal), anInfo);
  }
  return 0;
}

// Whether there is a page in memory: 1, 0, or -1 where nothing is mapped.
int PageInMemory(char* aPage) {
  unsigned char theState = 0;
  return mincore(aPage, static_cast<size_t>(PageSize()), &theState) == 0 ? theState & 1 : -1;
}

// Bytes of the heap that have pages behind them, with what may lie right below it.
long HeapInMemory() {
  void* theBlock = malloc(1);
  char* theStart = PageOf(theBlock);
  free(theBlock);
  while (PageInMemory(theStart - PageSize()) >= 0) {
    theStart -= PageSize();
  }
  long thePages = 0;
  for (char* thePage = theStart; thePage < static_cast<char*>(sbrk(0)); thePage += PageSize()) {
    thePages += PageInMemory(thePage) == 1;
  }
  return thePages * PageSize();
}

class OwnLogger : public qvLogger {
 public:
  OwnLogger() : qvLogger("own", true) { ChangeLevel(QVLOGLEVEL_DEBUG + 1); }
  bool BeginLog(qvLogDataEx*) override { return true; }
  void Append_S(qvLogDataEx*, const char*, size_t aLength) override { mBytes += aLength; }
  size_t mBytes = 0;
};

size_t sCallbackBytes = 0;

void CountBytes(void*, const qvLogData*, const char*, size_t aLength) { sCallbackBytes += aLength; }

size_t LogToFourOutputs() {
  qvLogger_File_Init();
  qvLogger_qvLogd_Init();
  qvLog_SetLogFunc(QVLOGLEVEL_DEBUG + 1, CountBytes, nullptr);
  qvLogger::LockFramework();
  OwnLogger* theOwn = new OwnLogger;
  qvLogger::UnlockFramework();
  for (int theMessage = 0; theMessage < kMessages; ++theMessage) {
    QVXLOG_ALWAYS(QVLOGLEVEL_INFO, QVLOG_M_TUNER, F("message %d of %s\n", theMessage, "a program at work"));
  }
  return qvFileLogger::sInstance->IsOK() && qvLogdLogger::sInstance->IsConnected() ? theOwn->mBytes : 0;
}

}  // namespace

int main(int aCount, char**) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  long theBefore = HeapInMemory();
  if (aCount == 1 && (LogToFourOutputs() == 0 || sCallbackBytes == 0)) {
    fputs("an output got nothing\n", stderr);
    return 1;
  }
  long theData = 0;
  dl_iterate_phdr(AddLibrary, &theData);
  printf("%ld %ld\n", theData, HeapInMemory() - theBefore);
  pause();
  return 0;
}
