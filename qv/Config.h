// Config.h - the settings of a component: one file name in a directory of defaults and one of changes.
//
// A qvConfig opens READDIR/NAME as the read-only layer and WRITEDIR/_NAME as the read-write layer of a
// qvConfigFile (qvraTools/qvConfigFile.h), whose rules hold here: reads look in the read-write layer first,
// writes go to it, nothing is on disk before Save. A null section means the section "default". Reading a key
// adds its section, empty, to the read-write layer.
//
// An object has no lock and belongs to one thread at a time; several objects may be used in parallel.
#ifndef QV_CONFIG_H
#define QV_CONFIG_H

#include "qv/CString.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvStringSubstitution.h"

// The settings of a component in two layers.
class QVLOG_API qvConfig {
 public:
  // Never fails: a missing file is an empty layer. Without a write directory there is no read-write layer:
  // writes, deletions and Save return false. Only what follows the last slash or backslash of aFileName
  // counts; an empty read directory means "./". Relative directories start at the directory of the
  // executable.
  qvConfig(const qvCString& aReadPath, const qvCString& aWritePath, const qvCString& aFileName);
  // Without any file: every read gives its default, every write, deletion and Save gives false.
  qvConfig();
  qvConfig(const qvConfig&) = delete;
  qvConfig& operator=(const qvConfig&) = delete;
  // Does not save.
  virtual ~qvConfig();

  // The readers give the default for a missing key, the numbers also for text that is no number of the range.
  bool OptionIsSet(const char* aSection, const char* aKey, bool afDefaultValue) const;
  qvCString GetCString(const char* aSection, const char* aKey, const qvCString& aDefaultValue) const;
  // Each %name% of the value, or of the default, is replaced (qvraTools/qvStringSubstitution.h).
  qvCString GetCStringWithSubstitution(const char* aSection, const char* aKey, const qvCString& aDefaultValue,
                                       qvGetReplacementStrFunc aReplacementStrFunc) const;
  int32 GetInt32(const char* aSection, const char* aKey, int32 aDefaultValue) const;
  uint32 GetUInt32(const char* aSection, const char* aKey, uint32 aDefaultValue) const;
  int16 GetInt16(const char* aSection, const char* aKey, int16 aDefaultValue) const;
  int8 GetInt8(const char* aSection, const char* aKey, int8 aDefaultValue) const;
  // These two cut the default to the bits of the result.
  uint16 GetUInt16(const char* aSection, const char* aKey, uint32 aDefaultValue) const;
  uint8 GetUInt8(const char* aSection, const char* aKey, uint32 aDefaultValue) const;

  // Sets a value in the read-write layer; false without one.
  bool SetString(const char* aSection, const char* aKey, const qvCString& aValue);
  // Deletes the key when aValue is empty.
  bool SetStringIfNotEmpty(const char* aSection, const char* aKey, const qvCString& aValue);
  bool SetInt32(const char* aSection, const char* aKey, int32 aValue);
  bool SetUInt32(const char* aSection, const char* aKey, uint32 aValue);

  // Writes the read-write layer to its file; the old or the new content is there whole at every instant.
  bool Save();

  // One layer at a time. The default section and an index out of range both give the empty name.
  size_t GetSectionCount(bool afForReadOnlyFile) const;
  qvCString GetSectionName(size_t aSectionIndex, bool afForReadOnlyFile) const;
  size_t GetKeyCount(const char* aSection, bool afForReadOnlyFile) const;
  qvCString GetKeyNameCString(const char* aSection, size_t aKeyIndex, bool afForReadOnlyFile) const;

  // From the read-write layer. The section itself goes only when its name is given in lower case.
  bool DeleteSection(const char* aSection);
  bool DeleteKey(const char* aSection, const char* aKey);

  // Empties the read-write layer in memory.
  void Reset();

  // Null for an object without files; it stays the object's own.
  qvConfigFile* GetConfigFile() const { return mConfigFile; }

  // aDirectory ("./" when empty) with slashes for backslashes and one at its end, then aPrefix, then what
  // follows the last slash of aFileName.
  qvCString GetValidPath(const qvCString& aDirectory, const qvCString& aFileName, const char* aPrefix) const;
  // The key's value; "./" when the key is missing or empty.
  qvCString GetNonEmptyPath(const char* aSection, const char* aKey) const;
  // Fills both directories from their keys. With afCreate, makes them and tells whether they are there;
  // without, returns true.
  bool FetchConfigPaths(const char* aSection, const char* aReadKey, const char* aWriteKey,
                        qvCString& aReadPath, qvCString& aWritePath, bool afCreate) const;

 protected:
  qvConfigFile* mConfigFile;  // null for a derived class that opens its files itself
};

#endif
