// ConfigConfig.h - the settings that say where the settings are.
//
// The bootstrap file lies beside the running executable and is never written. Its default section names two
// directories: "ReadPath" for the files that ship with the system, "WritePath" for what the device changes.
// A missing file or key means "./", and a relative directory starts at the executable's directory.
#ifndef QV_CONFIGCONFIG_H
#define QV_CONFIGCONFIG_H

#include "qv/CString.h"
#include "qv/Config.h"
#include "qvOS/qvTypes.h"

// The bootstrap file: where the settings are.
class QVLOG_API qvConfigConfig : public qvConfig {
 public:
  // aFileName without directory, such as "ConfigPath.ini".
  explicit qvConfigConfig(const char* aFileName);
  ~qvConfigConfig() override;

  // Fills both directories.
  void GetPaths(qvCString& aReadPath, qvCString& aWritePath) const;
  // Fills both, makes them with their parents where they are missing, and tells whether they are there.
  bool GetAndCheckPaths(qvCString& aReadPath, qvCString& aWritePath) const;

  // GetAndCheckPaths of the bootstrap file aFileName.
  static bool GetConfigPaths(qvCString& aReadPath, qvCString& aWritePath, const char* aFileName);

  // The brand identifier of a kind, "MBus", "SBus", "X_RPC" or "AppSet" (exactly so): the key of that name in
  // the section "Brand" of the bootstrap file. When it is empty, all but "SBus" take the environment variable
  // QVBRANDID, and without that their fallback: "qvra", "" and "com.qvra.". "%USERID%" in the result becomes
  // the user's number. Any other kind gives the empty text.
  static qvCString GetBrandInfo(const char* aKind, const char* aFileName);
};

#endif
