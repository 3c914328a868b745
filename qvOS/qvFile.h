/* qvFile.h - files: descriptors with 64-bit offsets, whole-buffer transfers, error codes instead of errno.
 *
 * Paths go through qvPath_Normalize first: a relative name is anchored at the directory of the executable,
 * and a backslash is a '/'. Unless a function says otherwise it returns 0 or one of the negative
 * kqvFileError codes; a null path is kqvFileErrorUnknown (0 for the functions that answer a question). Any
 * thread may call these functions; two threads that share a descriptor share its position. */
#ifndef QVOS_QVFILE_H
#define QVOS_QVFILE_H

#include "qvOS/qvTime.h"
#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The system's file descriptor. */
typedef int qvFileFD;
/* A position or a size in bytes. */
typedef int64 qvFileOffset;

/* How qvFile_Open opens. The modes are bits. */
typedef uint32 qvFileOpenMode;
#define qvFileOpenMode_Read      0x01
#define qvFileOpenMode_Write     0x02
#define qvFileOpenMode_ReadWrite 0x03
#define qvFileOpenMode_Exclusive 0x04
#define qvFileOpenMode_Append    0x08
#define qvFileOpenMode_Create    0x10
#define qvFileOpenMode_Truncate  0x20

/* What qvFile_Access asks for. */
typedef uint32 qvFileAccessMode;
#define qvFileAccessMode_Read      1
#define qvFileAccessMode_Write     2
#define qvFileAccessMode_ReadWrite 3

/* Where qvFile_Seek counts from. */
typedef int32 qvFileSeekMode;
#define qvFileSeekMode_Begin   0
#define qvFileSeekMode_Current 1
#define qvFileSeekMode_End     2

/* What qvFile_HasAttribute asks for. */
typedef uint32 qvFileAttributes;
#define kqvFileAttribute_Hidden 1

/* No descriptor, and no position. */
#define kqvFileFDInvalid     ((qvFileFD)-1)
#define kqvFileOffsetInvalid ((qvFileOffset)-1)

/* The error codes. What has no code of its own is kqvFileErrorUnknown. */
#define kqvFileErrorUnknown            (-1)
#define kqvFileErrorReadOnlyFileSystem (-2)
#define kqvFileErrorNotFound           (-3)
#define kqvFileErrorAlreadyExists      (-4)
#define kqvFileErrorNoSpace            (-5)

/* Opens a file and stores its descriptor in *aFD, which is written on success only. Append implies Write and
 * starts at the end; a new file gets the permission bits 0777 less the process's umask. kqvFileErrorUnknown,
 * without touching the file, for: neither Read nor Write; Read alone with Truncate; Create with Append;
 * Create with Exclusive and Truncate; Exclusive without Create; a null aFD. An open that a signal interrupts
 * is that error, too, and is not tried again. anAccessMode is not used. */
QVLOG_API int qvFile_Open(const char* aFilePath, qvFileOpenMode anOpenMode, int anAccessMode, qvFileFD* aFD);

/* Closes the descriptor; a close that a signal interrupts is tried again. */
QVLOG_API int qvFile_Close(qvFileFD aFD);

/* Reads aCount bytes, going on after an interruption or a short transfer. Returns the number of bytes read,
 * less than aCount only at the end of the file; or an error, and then it is unknown how many were read. */
QVLOG_API int64 qvFile_Read(qvFileFD aFD, void* aBuffer, uint32 aCount);

/* Writes aCount bytes, going on after an interruption or a short transfer. Returns the number of bytes
 * written; or an error, and then it is unknown how many were written. */
QVLOG_API int64 qvFile_Write(qvFileFD aFD, const void* aBuffer, uint32 aCount);

/* Moves the position; it may lie behind the end. An unknown mode fails an assertion. */
QVLOG_API int qvFile_Seek(qvFileFD aFD, qvFileOffset anOffset, qvFileSeekMode aSeekMode);

/* Stores the position in *anOffset, kqvFileOffsetInvalid after an error. */
QVLOG_API int qvFile_Tell(qvFileFD aFD, qvFileOffset* anOffset);

/* Stores the size in *aSize, kqvFileOffsetInvalid after an error. The position is kept. */
QVLOG_API int qvFile_GetSize(qvFileFD aFD, qvFileOffset* aSize);

/* 1 when the position is the end of the file, 0 when it is not (also behind the end), or an error. */
QVLOG_API int qvFile_EndOfFile(qvFileFD aFD);

/* Cuts the file or extends it with zero bytes to aSize, and moves the position there. Returns 0 only when
 * the file has the new size and the low 32 bits of aSize are zero; for every other size the result is -1 even
 * though the file has it. Ask qvFile_GetSize. */
QVLOG_API int qvFile_ChangeSize(qvFileFD aFD, qvFileOffset aSize);

/* Cuts a file or extends it with zero bytes. 0 or -1. The path is handed to the system as it is, so a
 * relative one counts from the working directory. */
QVLOG_API int qvFile_SetSize(const char* aFilePath, qvFileOffset aSize);

/* The same as qvFile_SetSize. */
QVLOG_API int qvFile_truncate(const char* aFilePath, qvFileOffset aSize);

/* Waits until the medium holds what was written. */
QVLOG_API int qvFile_Flush(qvFileFD aFD);

/* Removes a file, not a directory. A file that does not exist counts as removed. */
QVLOG_API int qvFile_Remove(const char* aFilePath);

/* Renames a file; one that has the new name is replaced in one step. */
QVLOG_API int qvFile_Rename(const char* anOldPath, const char* aNewPath);

/* 1 when the process may access the file so, 0 otherwise. */
QVLOG_API int qvFile_Access(const char* aFilePath, qvFileAccessMode anAccessMode);

/* 1 for an existing regular file or a link to one, 0 for everything else. */
QVLOG_API int qvFile_Exists(const char* aFilePath);

/* 1 when the path has the attribute. Hidden is a path whose last component begins with '.', whether it exists
 * or not; there is no other attribute. */
QVLOG_API int qvFile_HasAttribute(const char* aFilePath, qvFileAttributes anAttribute);

/* Stores when the file was last read, last written and last changed in its status (there is no creation
 * time), in whole seconds of the wall clock. Each output may be null; after an error none is written. */
QVLOG_API int qvFile_GetTimes(const char* aFilePath, qvtimeval* aLastAccessTime, qvtimeval* aModificationTime,
                              qvtimeval* aCreationTime);

/* Sets the times of the last access and of the last modification, both to aTime. A null aTime is an error. */
QVLOG_API int qvFile_SetModificationTime(const char* aFilePath, const qvtimeval* aTime);

QV_END_DECLS

#endif
