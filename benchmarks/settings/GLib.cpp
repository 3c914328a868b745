#include <glib.h>

#include "Workload.h"

namespace {

// A value as GLib gives it, which its user frees.
class OwnedText {
 public:
  explicit OwnedText(char* aText) : mText(aText) {}
  ~OwnedText() { g_free(mText); }
  OwnedText(const OwnedText&) = delete;
  operator const char*() const { return mText; }

 private:
  char* mText;
};

class Store {
 public:
  explicit Store(const std::string& aText) : mFile(g_key_file_new()) {
    g_key_file_load_from_data(mFile, aText.data(), aText.size(), G_KEY_FILE_NONE, nullptr);
  }
  ~Store() { g_key_file_free(mFile); }

  // The quickest of the calls that read: the text as it stands in the file.
  OwnedText Read(const Setting& aSetting) {
    return OwnedText(g_key_file_get_value(mFile, aSetting.mSection.c_str(), aSetting.mKey.c_str(), nullptr));
  }

 private:
  GKeyFile* mFile;
};

}  // namespace

SETTINGS_CONTENDER("GLib", Store);
