/* A plug-in that logs when it is asked to and when it is unloaded. Built twice, as PLUGIN "a" and "b". */
#include "faults/staticlife/Logging.h"

QVLOG_API void plugin_Log(void);

void plugin_Log(void) { LogLine(PLUGIN " logs"); }

__attribute__((destructor)) static void plugin_S_Unload(void) { LogLine(PLUGIN " is unloaded"); }
