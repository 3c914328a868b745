/* settings.c - settings in two layers: what the product ships, and what has been changed on this device. */
#include <qvOS/qvFile.h>
#include <qvraTools/qvConfigFile.h>
#include <qvraTools/qvMalloc.h>
#include <stdio.h>

static void ShowVolume(const char* aWhen, qvConfigFile* aSettings) {
  printf("%s: volume %ld\n", aWhen, (long)qvConfigFile_GetInt32(aSettings, "Audio", "Volume", 0));
}

int main(void) {
  /* Relative names are anchored at the directory of the executable. */
  qvConfigFile* theSettings = qvConfigFile_New("settings.ini", "_settings.ini", NULL);
  printf("output: %s\n", qvConfigFile_GetString(theSettings, "Audio", "Output", "none"));
  ShowVolume("as shipped", theSettings);

  qvConfigFile_SetInt32(theSettings, "Audio", "Volume", 55);
  qvConfigFile_SetString(theSettings, "Paths", "Cache", "%env.CACHE_NAME%/box");
  ShowVolume("changed", theSettings);
  printf("saved: %d\n", qvConfigFile_Save(theSettings));
  qvConfigFile_Delete(theSettings);

  theSettings = qvConfigFile_New("settings.ini", "_settings.ini", NULL);
  ShowVolume("after a restart", theSettings);
  char* theCache = qvConfigFile_GetStringWithSubstitution(theSettings, "Paths", "Cache", "", NULL);
  printf("cache: %s\n", theCache);
  qvFree(theCache);

  qvConfigFile_Reset(theSettings);
  ShowVolume("reset", theSettings);
  qvConfigFile_Delete(theSettings);
  qvFile_Remove("_settings.ini");
  return 0;
}
