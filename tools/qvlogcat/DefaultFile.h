// DefaultFile.h - the file that the collector writes, as its settings name it.
#ifndef QVLOGCAT_DEFAULTFILE_H
#define QVLOGCAT_DEFAULTFILE_H

#include <string>

// The key "file" of qvlogd.ini and _qvlogd.ini, which lie in aFolder, or, when that is empty, where the
// library's settings are: the file ConfigPath.ini beside the program says where. Empty when there is none.
std::string DefaultFile_Find(const std::string& aFolder);

#endif
