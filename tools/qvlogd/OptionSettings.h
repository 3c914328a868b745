// OptionSettings.h - the keys of the settings file "qvlogd.ini".
#ifndef QVLOGD_OPTIONSETTINGS_H
#define QVLOGD_OPTIONSETTINGS_H

#include <string>
#include <vector>

struct OptionSetting {
  std::string mKey;
  std::string mValue;
};

// Reads the first section of qvlogd.ini and, above it, of _qvlogd.ini. They lie in aFolder, or, when that is
// empty, where the library's settings are: the file ConfigPath.ini beside the program says where. Returns
// false with one line of text in aError for a folder without either file and for a section that has a name.
bool OptionSettings_Read(const std::string& aFolder, std::vector<OptionSetting>* aSettings,
                         std::string* aError);

#endif
