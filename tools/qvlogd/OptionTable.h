// OptionTable.h - all options of the collector: their names, what they take and where it goes.
#ifndef QVLOGD_OPTIONTABLE_H
#define QVLOGD_OPTIONTABLE_H

#include <stddef.h>

#include "tools/qvlogd/Options.h"

enum OptionArgument { OptionArgument_None, OptionArgument_Required, OptionArgument_Optional };

struct OptionEntry {
  const char* mName;
  char mLetter;  // of the short form; 0: none
  OptionArgument mArgument;
  const char* mArgumentName;
  bool mfRepeatable;
  bool mfKey;             // is a key of the settings too
  const char* mExpected;  // completes "is not ..." in an error
  const char* mHelp;
  // Stores a value, which is "yes" or "no" where the option takes none; false when the value is not one.
  bool (*mApply)(const char* aValue, Options* aOptions);
};

extern const OptionEntry kOptionTable[];
extern const size_t kOptionTable_Count;

// Null when there is none.
const OptionEntry* OptionTable_Find(const char* aName);

#endif
