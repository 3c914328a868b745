/* qvINIFile_p.h - what the sources of the INI store and of its back-end share. */
#ifndef QVRATOOLS_QVINIFILE_P_H
#define QVRATOOLS_QVINIFILE_P_H

#include "qvOS/qvFile.h"
#include "qvraTools/qvDictionary.h"

QV_BEGIN_DECLS

/* The text that is being loaded. */
typedef struct LoadIniFileContext_t {
  qvFileFD mFD;        /* kqvFileFDInvalid when the text comes from memory */
  const char* mBuffer; /* the whole text, without terminator */
  size_t mBufferSize;  /* bytes */
} LoadIniFileContext;

/* Puts aLength bytes of aSource into aDest with tolower applied to every one, and a terminator. aDest may be
 * aSource. */
void qvINIFile_S_ToLower(char* aDest, const char* aSource, size_t aLength);

/* The name when it is not empty, else that of the default section. */
const char* qvINIFile_S_SectionOrDefault(const char* aSection);

/* 1 when a dictionary key names a section: it is not empty and holds no separator. */
int qvINIFile_S_IsSection(const char* aDictionaryKey);

/* The key's name, behind section and separator, when a dictionary key belongs to the section whose name
 * begins at aSection and has aSectionLength bytes, all in lower case; else null. */
const char* qvINIFile_S_GetKeyOfSection(const char* aDictionaryKey, const char* aSection,
                                        size_t aSectionLength);

/* Loads like qvINIFile_LoadINIFile. Returns 0 or the error of qvFile that made it impossible. */
int qvINIFile_S_LoadINIFileOrError(const char* aFileName, qvDictionary* aDictionary);

/* Saves like qvINIFile_SaveINIFile, but returns 1 only when the medium holds the whole file, and 0 after any
 * error; the file is then in any state. */
int qvINIFile_S_SaveINIFileDurably(const char* aFileName, qvDictionary* aDictionary);

QV_END_DECLS

#endif
