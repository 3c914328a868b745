/* qvINIFile.h - reads, queries, edits and writes settings in INI text, held in a qvDictionary.
 *
 * The caller makes the dictionary with qvDictionary_New and releases it with qvDictionary_Delete. A section
 * is an entry named like the section, with an empty value; a key is an entry named section, '/', key. Section
 * and key names are kept in lower case and found in any case; values are kept as given. Wherever a section is
 * taken, null and the empty text mean the section "default", which a file writes without a header. Section
 * and key names of 128 bytes or more fail an assertion, as does a null dictionary, except where a write or a
 * deletion returns 0 for it.
 *
 * Texts that are returned as const char* point into the dictionary and live until their entry changes.
 *
 * Reading a key adds its section, empty, when there is none: it is counted from then on, and saving writes
 * its header.
 *
 * The text: lines "key = value" under headers "[section]". A line that begins with ';' or '#' is a comment;
 * an unquoted value ends at the first ';' or '#'. A value in double or single quotes may hold anything but
 * that quote; a backslash in it makes the next character literal. A line without '=' is a key with the empty
 * value. A UTF-8 byte order mark at the start is skipped.
 *
 * What does not survive a save: line breaks; white space other than blanks at the ends of values, any at
 * those of names; a key that is empty, holds '=', begins with ';' or '#', or with '[' when a ']' follows; a
 * section whose name holds ']', or '/', with which it is neither counted nor named; and keys of the default
 * section when another section was written before it, as can be in a dictionary that nothing was loaded into:
 * they follow that section's keys and load as such. */
#ifndef QVRATOOLS_QVINIFILE_H
#define QVRATOOLS_QVINIFILE_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvDictionary.h"
#include "qvraTools/qvStringSubstitution.h"

QV_BEGIN_DECLS

/* The doubled capital in three of these names is meant: kqvINIFIle_ (sic). */
#define kqvINIFIle_SectionSeparator      '/' /* joins section and key in a dictionary key */
#define kqvINIFile_DefaultSectionName    "default"
#define kqvINIFile_MaxLineLength         1024 /* bytes; size of a line buffer, terminator included */
#define kqvINIFile_SectionMaxLength      128  /* bytes; a section or key name must be shorter */
#define kqvINIFile_HashTableKeyMaxLength (kqvINIFile_SectionMaxLength * 2) /* bytes; a dictionary key */
#define kqvINIFile_ReadPartSize          100                               /* bytes read at once */
#define kqvINIFIle_CharsRequiringEscape  " \"'#;\\" /* a value with one of these is saved in quotes */
#define kqvINIFIle_CharsToEscape         "\"'\\"    /* these get a backslash inside the quotes */

/* How many sections there are, the default section included. */
QVLOG_API size_t qvINIFile_GetNumberOfSections(qvDictionary* aDictionary);

/* The name of the section at an index, in the order of the dictionary. The default section and an index out
 * of range both give the empty text. */
QVLOG_API const char* qvINIFile_GetSectionName(qvDictionary* aDictionary, size_t aSectionIndex);

/* How many keys a section has; 0 for one that does not exist, however long its name is. */
QVLOG_API size_t qvINIFile_GetNumberOfKeys(qvDictionary* aDictionary, const char* aSection);

/* The name of a section's key at an index; the empty text when the index is out of range, as it always is
 * for a section that does not exist. */
QVLOG_API const char* qvINIFile_GetKeyName(qvDictionary* aDictionary, const char* aSection, size_t aKeyIndex);

/* The readers give the key's value and *afValueFound = 1, or aDefaultValue itself and *afValueFound = 0.
 * afValueFound must not be null. A null aKey reads the section's own entry: the empty text when the section
 * exists (it is not added). */
QVLOG_API const char* qvINIFile_ReadKeyAsString(qvDictionary* aDictionary, const char* aSection,
                                                const char* aKey, const char* aDefaultValue,
                                                int* afValueFound);

/* 1 for what is wholly the decimal text of an int32 other than 0, 0 for that of 0; else the first letter
 * decides, in any case: T and Y are 1, F and N are 0. Anything else gives the default, with
 * *afValueFound = 1. */
QVLOG_API int qvINIFile_ReadKeyAsBool(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                      int aDefaultValue, int* afValueFound);

/* A value that is not wholly a number of the range gives the default, with *afValueFound = 1. ReadKeyAsInt32
 * takes decimal text; ReadKeyAsUInt32 takes decimal, octal after "0" and hexadecimal after "0x". */
QVLOG_API int32 qvINIFile_ReadKeyAsInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                         int32 aDefaultValue, int* afValueFound);
QVLOG_API uint32 qvINIFile_ReadKeyAsUInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                           uint32 aDefaultValue, int* afValueFound);

/* atof of the value, so 0.0 for text that is no number. */
QVLOG_API double qvINIFile_ReadKeyAsDouble(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                           double aDefaultValue, int* afValueFound);

/* The value, or the default, with each %name% in it replaced (qvStringSubstitution.h). The caller releases
 * the result with qvFree. Null when the key is missing and the default is null. */
QVLOG_API char* qvINIFile_ReadKeyAsStringWithSubstitution(qvDictionary* aDictionary, const char* aSection,
                                                          const char* aKey, const char* aDefaultValue,
                                                          int* afValueFound,
                                                          qvGetReplacementStrFunc aReplacementStrFunc);

/* The writers return 1, or 0 when the dictionary is null. A null value is stored as the empty text, a null
 * aKey writes the section's own entry, so it adds the section. A double keeps six significant digits. */
QVLOG_API int qvINIFile_WriteKeyAsString(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                         const char* aValue);
QVLOG_API int qvINIFile_WriteKeyAsBool(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                       int aValue);
QVLOG_API int qvINIFile_WriteKeyAsInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                        int32 aValue);
QVLOG_API int qvINIFile_WriteKeyAsUInt32(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                         uint32 aValue);
QVLOG_API int qvINIFile_WriteKeyAsDouble(qvDictionary* aDictionary, const char* aSection, const char* aKey,
                                         double aValue);

/* Deletes one key; with a null aKey the section's own entry, while its keys stay. Returns 1, also when there
 * was nothing to delete, or 0 when the dictionary is null. */
QVLOG_API int qvINIFile_DeleteKey(qvDictionary* aDictionary, const char* aSection, const char* aKey);

/* Deletes all keys of a section. The section itself goes only when its name is given in lower case; otherwise
 * it stays, empty. Returns 1, or 0 when the dictionary is null. */
QVLOG_API int qvINIFile_DeleteSection(qvDictionary* aDictionary, const char* aSection);

/* Adds what a file holds to the dictionary; keys that are there already take the file's value. A relative
 * name is taken relative to the directory of the running executable. Returns 1, or 0 when the file cannot be
 * opened or read; an error while reading leaves the dictionary as it was. A line of 128 bytes or more that is
 * no header, assignment or comment fails an assertion; a line of more than 1023 bytes counts as several. */
QVLOG_API int qvINIFile_LoadINIFile(const char* aFileName, qvDictionary* aDictionary);

/* The same from aBufferSize bytes of memory, which need no terminator and may be null when aBufferSize is 0;
 * returns 1. */
QVLOG_API int qvINIFile_LoadINIFileFromBuffer(const char* aBuffer, size_t aBufferSize,
                                              qvDictionary* aDictionary);

/* Makes or overwrites a file with what the dictionary holds. A line is cut at 1023 bytes. Returns 1, or 0
 * when the file cannot be opened; errors of writing go unnoticed. For a save that survives a crash, use a
 * qvConfigFile. */
QVLOG_API int qvINIFile_SaveINIFile(const char* aFileName, qvDictionary* aDictionary);

QV_END_DECLS

#endif
