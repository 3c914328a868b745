#include <qvraTools/qvDictionary.h>
#include <qvraTools/qvINIFile.h>

#include "Workload.h"

namespace {

class Store {
 public:
  explicit Store(const std::string& aText) : mDictionary(qvDictionary_New(0)) {
    qvINIFile_LoadINIFileFromBuffer(aText.data(), aText.size(), mDictionary);
  }
  ~Store() { qvDictionary_Delete(mDictionary); }

  const char* Read(const Setting& aSetting) {
    int theFound = 0;
    return qvINIFile_ReadKeyAsString(mDictionary, aSetting.mSection.c_str(), aSetting.mKey.c_str(), nullptr,
                                     &theFound);
  }

 private:
  qvDictionary* mDictionary;
};

}  // namespace

SETTINGS_CONTENDER("qvLog", Store);
