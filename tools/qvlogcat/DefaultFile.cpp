#include "tools/qvlogcat/DefaultFile.h"

#include <stdlib.h>

#include "qv/Config.h"
#include "qv/ConfigConfig.h"

std::string DefaultFile_Find(const std::string& aFolder) {
  qvCString theReadPath;
  qvCString theWritePath;
  if (aFolder.empty()) {
    qvConfigConfig("ConfigPath.ini").GetPaths(theReadPath, theWritePath);
  } else {
    // The library takes relative folders from the program's place; on a command line they start here.
    char* thePath = realpath(aFolder.c_str(), nullptr);
    theReadPath = thePath != nullptr ? thePath : aFolder.c_str();
    theWritePath = theReadPath;
    free(thePath);
  }
  qvConfig theConfig(theReadPath, theWritePath, "qvlogd.ini");
  return theConfig.GetCString(nullptr, "file", "").c_str();
}
