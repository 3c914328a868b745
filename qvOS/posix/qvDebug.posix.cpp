#include "qvOS/qvDebug.h"

#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "qvLog/qvLog.h"
#include "qvOS/qvDebug_p.h"
#include "qvraTools/format/qvFormat.h"

#define kqvDebug_MaxFrames       64
#define kqvDebug_MaxFramesToText 1024
#define kqvDebug_LineSize        1000 /* bytes, with the terminator */
#define kqvDebug_FewestFrames    6    /* of a stack that is whole   */
#define kqvDebug_StackWords      256

#define kqvDebug_FileName     "/tmp/backtrace_%d.txt"
#define kqvDebug_FileNameSize 64
#define kqvDebug_FileMode     0666 /* less the process's umask */
#define kqvDebug_NoFile       (-1)

// An upward call, one of two in the tree: this layer stands below the log framework, but a crash has to be
// found in the log.
#define QVDEBUG_LOG(Func) QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT, Func)

// Not on the stack, which may be what is damaged.
static void* sFrames[kqvDebug_MaxFrames];
static void* sStackWords[kqvDebug_StackWords];

// Everybody may write in /tmp, and our name there can be guessed. So an old file is removed and not written
// over, and what appears under the name in between is not opened (O_EXCL): no link that somebody planted, to
// whatever file, is followed. Plain system calls, because a stream allocates.
static int qvDebug_S_CreateFile(void) {
  char theName[kqvDebug_FileNameSize];
  qv_snprintf(theName, sizeof(theName), kqvDebug_FileName, static_cast<int>(getpid()));
  unlink(theName);
  return open(theName, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kqvDebug_FileMode);
}

static void qvDebug_S_WriteToFile(int aFile, const char* aText) {
  size_t theLeft = aFile != kqvDebug_NoFile ? strlen(aText) : 0;
  while (theLeft > 0) {
    ssize_t theWritten = write(aFile, aText, theLeft);
    if (theWritten < 0 && errno == EINTR) {
      continue;
    }
    if (theWritten <= 0) {
      return;
    }
    aText += theWritten;
    theLeft -= static_cast<size_t>(theWritten);
  }
}

void qvDebug_S_PutSymbol(int aFile, int anIndex, const char* aSymbol) {
  char theLine[kqvDebug_LineSize];
  int theLength = qv_snprintf(theLine, sizeof(theLine), "%02d: %s\n", anIndex, aSymbol);
  if (theLength >= 0 && theLength < kqvDebug_LineSize) {
    qvDebug_S_WriteToFile(aFile, theLine);
  } else {
    // Too long for the line buffer: whole, but without its number.
    qvDebug_S_WriteToFile(aFile, aSymbol);
    qvDebug_S_WriteToFile(aFile, "\n");
  }
  QVDEBUG_LOG(F("%02d: %s\n", anIndex, aSymbol));
  printf("%02d: %s\n", anIndex, aSymbol);
}

void qvDebug_S_PutAddress(int anIndex, const void* anAddress) {
  // KEEP qvDebugKept.AnUnresolvedAddressHasItsPrefixTwice
  // %p writes "0x" itself, so the line reads "[0x0x...]"; it is the required text.
  char theLine[kqvDebug_LineSize];
  qv_snprintf(theLine, sizeof(theLine), "%02d: [0x%p]\n", anIndex, anAddress);
  QVDEBUG_LOG(F("%s", theLine));
  fputs(theLine, stdout);
}

static void qvDebug_S_PutFrames(int aFile, int aCount) {
  char** theSymbols = backtrace_symbols(sFrames, aCount);
  int thePid = static_cast<int>(getpid());
  QVDEBUG_LOG(F("Backtracing this thread (pid=%d, depth=%d):\n", thePid, aCount));
  printf("Backtracing this thread (pid=%d, depth=%d):\n", thePid, aCount);
  for (int i = 0; i < aCount; ++i) {
    if (theSymbols != NULL) {
      qvDebug_S_PutSymbol(aFile, i, theSymbols[i]);
    } else {
      qvDebug_S_PutAddress(i, sFrames[i]);
    }
  }
  free(theSymbols);
}

// Copies aSize bytes that may lie beyond the end of the stack. The kernel reads them for us, so a page that
// is not there ends the copy and not the process; what is left is zeros then. A plain system call, because
// the sanitizers' write complains about exactly such bytes.
void qvDebug_S_CopyStack(const void* aFrom, void* aTo, size_t aSize) {
  memset(aTo, 0, aSize);
  int thePipe[2];
  if (pipe2(thePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    return;
  }
  size_t thePageSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  uintptr_t theFrom = reinterpret_cast<uintptr_t>(aFrom);
  for (size_t theDone = 0; theDone < aSize;) {
    size_t theChunk = thePageSize - (theFrom + theDone) % thePageSize;
    if (theChunk > aSize - theDone) {
      theChunk = aSize - theDone;
    }
    long theWritten = syscall(SYS_write, thePipe[1], theFrom + theDone, theChunk);
    if (theWritten <= 0 ||
        read(thePipe[0], static_cast<char*>(aTo) + theDone, static_cast<size_t>(theWritten)) != theWritten) {
      break;
    }
    theDone += static_cast<size_t>(theWritten);
  }
  close(thePipe[0]);
  close(thePipe[1]);
}

void qvDebug_S_PutStackDump(int aFile, const void* aFrame) {
  // KEEP qvDebugKept.TheTextsAroundAStackDumpAreThoseOfTheLogOnly
  // On standard output the first word follows on the same line and no end mark follows the last one. The end
  // mark in the log opens a bracket only, and counts words of 4 bytes on every machine.
  QVDEBUG_LOG(F("Here is a stack dump, try to find something on your own:\n"));
  fputs("Here is a stack dump, try to find something on your own:", stdout);
  qvDebug_S_CopyStack(aFrame, sStackWords, sizeof(sStackWords));
  char** theSymbols = backtrace_symbols(sStackWords, kqvDebug_StackWords);
  for (int i = 0; theSymbols != NULL && i < kqvDebug_StackWords; ++i) {
    qvDebug_S_PutSymbol(aFile, i, theSymbols[i]);
  }
  free(theSymbols);
  QVDEBUG_LOG(F("[End of stack dump (4*%d bytes)\n", kqvDebug_StackWords));
}

void qvDebug_BackTraceCurrent(int afMemoryIsCorrupted) {
  int theCount = backtrace(sFrames, kqvDebug_MaxFrames);
  int theFile = qvDebug_S_CreateFile();
  qvDebug_S_WriteToFile(theFile, "log\n");
  if (!afMemoryIsCorrupted) {
    qvDebug_S_PutFrames(theFile, theCount);
    if (theCount < kqvDebug_FewestFrames) {
      qvDebug_S_PutStackDump(theFile, __builtin_frame_address(0));
    }
    // The process is about to end, and not by exit.
    fflush(stdout);
  }
  qvDebug_S_WriteToFile(theFile, "\nlog end\n");
  if (theFile != kqvDebug_NoFile) {
    close(theFile);
  }
}

size_t qvDebug_GetBackTrace(char* anOutputBuffer, size_t anOutputBufferLen) {
  void* theFrames[kqvDebug_MaxFramesToText];
  int theCount = backtrace(theFrames, kqvDebug_MaxFramesToText);
  char** theSymbols = backtrace_symbols(theFrames, theCount);
  size_t theUsed = 0;
  for (int i = 0; theSymbols != NULL && i < theCount && theUsed < anOutputBufferLen; ++i) {
    size_t theRoom = anOutputBufferLen - theUsed;
    int theLength = qv_snprintf(anOutputBuffer + theUsed, theRoom, "%02d: %s\n", i, theSymbols[i]);
    if (theLength < 0) {
      break;
    }
    if (static_cast<size_t>(theLength) >= theRoom) {
      theUsed = anOutputBufferLen - 1;  // cut; the terminator takes the last byte
      break;
    }
    theUsed += static_cast<size_t>(theLength);
  }
  free(theSymbols);
  return theUsed;
}

void qvDebug_SetThreadName(const char* /*aThreadName*/) {}

void qvDebug_Break(const char* /*aMessage*/) {}
