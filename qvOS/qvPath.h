/* qvPath.h - how a file name becomes a full path, which program is running, and the revision in a binary.
 *
 * A relative name is anchored at the directory of the running executable, never at the working directory.
 * Every text returned is a new one that the caller releases with qvFree, or null. Any thread may call these
 * functions. */
#ifndef QVOS_QVPATH_H
#define QVOS_QVPATH_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* What qvPath_Normalize does to the separators of its result. The modes are bits. */
#define kqvPathNormalizeMode_Generic     0x00
#define kqvPathNormalizeMode_NativeSlash 0x01 /* every backslash becomes '/' */
#define kqvPathNormalizeMode_NativeForm  0x02 /* no effect on this platform  */
#define kqvPathNormalizeMode_Native      0x03

/* The medium that a path lies on. */
#define kqvPathType_Unknown   0
#define kqvPathType_Remote    1
#define kqvPathType_Fixed     2
#define kqvPathType_Removable 3

/* The address of any function; cast the function's own type to this one. */
typedef void (*qvDefaultFunctionPtr)(void);

/* The full path of aPath. An absolute path (qvPath_IsAbsolute) is copied. Every other is put behind
 * anAnchorPath, or behind qvPath_GetApplicationPath when anAnchorPath is null; a leading "./" or "." is
 * dropped, ".." stays in the result unresolved. No '/' is added, so an anchor ends in one. aNormalizeMode
 * holds kqvPathNormalizeMode_ bits; afDir has no effect. Null for a null path or without an anchor. */
QVLOG_API char* qvPath_Normalize(const char* aPath, int afDir, int aNormalizeMode, const char* anAnchorPath);

/* 1 for the empty text and for a path that begins with '/' or a backslash; 0 otherwise and for null. */
QVLOG_API int qvPath_IsAbsolute(const char* aPath);

/* The value of the environment variable "TMPDIR" when it is set, else "/tmp". No other thread may set a
 * variable meanwhile, see qvPlatform.h. */
QVLOG_API char* qvPath_GetTempDirPath(void);

/* The same as qvPath_GetTempDirPath. */
QVLOG_API char* qvPath_GetCacheDirPath(void);

/* The full path of the running executable, "" when it cannot be found out. It is read once per process and
 * remembered. For a path that holds "java" anywhere it is the working directory of that moment followed by
 * "/java", so that a Java program's files lie in its working directory. */
QVLOG_API char* qvPath_GetApplicationFullPath(void);

/* The directory part of qvPath_GetApplicationFullPath, with its '/' at the end; null when it holds no '/'.
 * afRemoveExtension has no effect. */
QVLOG_API char* qvPath_GetApplicationPath(int afRemoveExtension);

/* What follows the last '/' of qvPath_GetApplicationFullPath; null when it holds no '/'.
 * afRemoveExtension has no effect. */
QVLOG_API char* qvPath_GetApplicationName(int afRemoveExtension);

/* The file name of the shared object (or program) that holds the function, as the dynamic linker knows it;
 * null when it knows none. */
QVLOG_API char* qvPath_GetFunctionSharedLibraryPath(qvDefaultFunctionPtr aFunctionPtr);

/* Always null: this platform has no such directory. */
QVLOG_API char* qvPath_GetSystemFontPath(void);

/* A copy of aPath; null for null and for a path with a '<', which begins a placeholder that this platform
 * cannot resolve. Links and ".." are not resolved. */
QVLOG_API char* qvPath_RealPath(const char* aPath);

/* Always kqvPathType_Unknown on this platform. */
QVLOG_API int qvPath_GetType(const char* aPath);

/* "./", which qvPath_Normalize turns into the executable's directory. */
QVLOG_API char* qvPath_GetDefaultConfigPath(void);

/* The revision stamped into the ELF file aFilePath: the decimal number at the start of its section
 * ".qvra.version" of program data, whose text holds the number in its first line and the name of the branch
 * in its second. 0 when there is no file, no such section or no number. When the text holds two line feeds
 * and aBranch is not null, *aBranch receives the branch as a new text; in every other case it is left alone.
 * Files of the 32-bit and of the 64-bit class are read, little-endian. The file need not be trusted: what it
 * says about itself is checked against its size, and of a stamp no more than the first 16 MiB are read. */
QVLOG_API int qvPath_GetBinaryRevision(const char* aFilePath, char** aBranch);

QV_END_DECLS

#endif
