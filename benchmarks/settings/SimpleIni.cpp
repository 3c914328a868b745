// How the distribution has built its library.
#define SI_CONVERT_ICU
#include <SimpleIni.h>

#include "Workload.h"

namespace {

// Names in any case, as with the library; each key once.
class Store {
 public:
  explicit Store(const std::string& aText) { mFile.LoadData(aText.data(), aText.size()); }

  const char* Read(const Setting& aSetting) {
    return mFile.GetValue(aSetting.mSection.c_str(), aSetting.mKey.c_str());
  }

 private:
  CSimpleIniA mFile;
};

}  // namespace

SETTINGS_CONTENDER("SimpleIni", Store);
