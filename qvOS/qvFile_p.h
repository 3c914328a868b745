/* qvFile_p.h - what the sources of qvFile and qvDir share. */
#ifndef QVOS_QVFILE_P_H
#define QVOS_QVFILE_P_H

#include "qvOS/qvFile.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

QV_BEGIN_DECLS

/* The kqvFileError code for a value of errno; 0 for 0. */
int PosixErrorToQvFileError(int anErrno);

/* Opens like qvFile_Open and tries again when a signal interrupts the call. */
int qvFile_S_OpenUninterrupted(const char* aFilePath, qvFileOpenMode anOpenMode, qvFileFD* aFD);

QV_END_DECLS

/* A caller's path as the system takes it; Get gives null when there is none. */
class qvNativePath {
 public:
  explicit qvNativePath(const char* aPath, int afDir = 0)
      : mPath(qvPath_Normalize(aPath, afDir, kqvPathNormalizeMode_Native, NULL)) {}
  ~qvNativePath() { qvFree(mPath); }
  qvNativePath(const qvNativePath&) = delete;
  qvNativePath& operator=(const qvNativePath&) = delete;

  char* Get() const { return mPath; }

 private:
  char* mPath;
};

#endif
