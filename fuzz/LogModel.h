// LogModel.h - what the file logger is expected to write, by the descriptions of its settings and of a log
// line.
#ifndef FUZZ_LOGMODEL_H
#define FUZZ_LOGMODEL_H

#include <string>
#include <vector>

#include "SettingsModel.h"

// The two layers of the settings: what a device has changed, and what it shipped with.
class LogSettings {
 public:
  LogSettings(const std::string& aReadOnlyText, const std::string& aReadWriteText);

  const SettingsModel& ReadWrite() const { return mReadWrite; }

  // aName is section, '/' and key. An empty text is a missing one, and so are the number -1 and what is none.
  std::string Text(const std::string& aName, const std::string& aDefault) const;
  int Number(const std::string& aName, int aDefault) const;
  // The threshold behind a level word or a number.
  unsigned Level(const std::string& aName, const std::string& aDefault) const;

 private:
  const std::string* Find(const std::string& aName) const;

  SettingsModel mReadOnly;
  SettingsModel mReadWrite;
};

// A text of which some characters are known to be digits only.
class LogModel {
 public:
  // aCapacity: bytes of the buffer for formatted text.
  LogModel(size_t aCapacity, bool afDate) : mCapacity(aCapacity), mfDate(afDate) {}

  void Start(const std::string& aProcessName);
  void BeginMessage(unsigned aLevel, const std::string& aThread, const std::string& aModule);
  // One call with the format "%s", with or without a line end in the format.
  void AppendFormatted(const std::string& aText, bool afLineEnd);
  void AppendLines(const std::string& aText);
  void AppendDump(const std::string& aText, const void* anAddress);
  void AppendWide(const std::wstring& aText);

  bool Matches(const std::string& aText) const;

 private:
  void Add(const std::string& aText);
  void AddPrefix();

  size_t mCapacity;
  bool mfDate;
  std::string mPrefixLetter;
  std::string mPrefixEnd;
  std::string mText;
  std::vector<bool> mfAnyDigit;  // for each character: any digit is as good
};

#endif
