#include <INIReader.h>
#include <ini.h>

#include <unordered_map>

#include "Workload.h"

namespace {

// The store that comes with inih.
class Reader {
 public:
  explicit Reader(const std::string& aText) : mFile(aText.data(), aText.size()) {}

  std::string Read(const Setting& aSetting) { return mFile.Get(aSetting.mSection, aSetting.mKey, ""); }

 private:
  INIReader mFile;
};

// inih itself stores nothing. A table of the standard library that its user fills is no peer: names are found
// in their own case alone, in no order, and by a text that was put together before.
class Table {
 public:
  explicit Table(const std::string& aText) { ini_parse_string(aText.c_str(), Keep, this); }

  const std::string& Read(const Setting& aSetting) { return mValues[aSetting.mJoined]; }

 private:
  static int Keep(void* aTable, const char* aSection, const char* aName, const char* aValue) {
    std::string theKey(aSection);
    theKey += ':';
    theKey += aName;
    static_cast<Table*>(aTable)->mValues[theKey] = aValue;
    return 1;
  }

  std::unordered_map<std::string, std::string> mValues;
};

}  // namespace

SETTINGS_CONTENDER("inih, its reader", Reader);

static const Contender sTableRows[] = {
    SETTINGS_ROWS("(inih, a table)", Table, 20), SETTINGS_ROWS("(inih, a table)", Table, 200),
    SETTINGS_ROWS("(inih, a table)", Table, 2000), SETTINGS_ROWS("(inih, a table)", Table, 20000)};
