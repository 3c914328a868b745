// Tells what the configuration modules say in a program of its own. The arguments are commands, carried out
// in order; each answer is a line.
//   chdir DIR              changes the working directory
//   paths FILE             the two directories that the bootstrap file FILE names, without making them
//   check FILE             the same, making them, and whether they are there
//   static FILE            the same through GetConfigPaths
//   brand KIND FILE        the brand identifier of KIND
//   save READ WRITE FILE   whether a setting can be saved
//   inifile FILE           whether the INI store can save FILE and load it again
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "qv/Config.h"
#include "qv/ConfigConfig.h"
#include "qvraTools/qvINIFile.h"

static void PrintPaths(const char* aCommand, const char* aFile) {
  qvCString theReadPath("unset");
  qvCString theWritePath("unset");
  bool theResult = true;
  if (strcmp(aCommand, "static") == 0) {
    theResult = qvConfigConfig::GetConfigPaths(theReadPath, theWritePath, aFile);
  } else if (strcmp(aCommand, "check") == 0) {
    theResult = qvConfigConfig(aFile).GetAndCheckPaths(theReadPath, theWritePath);
  } else {
    qvConfigConfig(aFile).GetPaths(theReadPath, theWritePath);
  }
  printf("%s|%s|%d\n", theReadPath.c_str(), theWritePath.c_str(), theResult);
}

static void SaveSetting(const char* aReadPath, const char* aWritePath, const char* aFile) {
  qvConfig theConfig((qvCString(aReadPath)), qvCString(aWritePath), qvCString(aFile));
  bool theWasSet = theConfig.SetString("s", "k", qvCString("v"));
  printf("%d%d\n", theWasSet, theConfig.Save());
}

static void SaveAndLoadINIFile(const char* aFile) {
  qvDictionary* theDictionary = qvDictionary_New(0);
  qvINIFile_WriteKeyAsString(theDictionary, "s", "k", "v");
  int theSaved = qvINIFile_SaveINIFile(aFile, theDictionary);
  printf("%d%d\n", theSaved, qvINIFile_LoadINIFile(aFile, theDictionary));
  qvDictionary_Delete(theDictionary);
}

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const char* theCommand = argv[i];
    if (strcmp(theCommand, "chdir") == 0) {
      if (chdir(argv[++i]) != 0) {
        return 1;
      }
    } else if (strcmp(theCommand, "brand") == 0) {
      printf("%s\n", qvConfigConfig::GetBrandInfo(argv[i + 1], argv[i + 2]).c_str());
      i += 2;
    } else if (strcmp(theCommand, "save") == 0) {
      SaveSetting(argv[i + 1], argv[i + 2], argv[i + 3]);
      i += 3;
    } else if (strcmp(theCommand, "inifile") == 0) {
      SaveAndLoadINIFile(argv[++i]);
    } else {
      PrintPaths(theCommand, argv[++i]);
    }
  }
  // Ends without the logging framework's tear-down, which reads settings and makes folders of its own.
  fflush(stdout);
  _exit(0);
}
