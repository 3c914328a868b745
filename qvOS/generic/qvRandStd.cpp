#include "qvOS/qvRandStd.h"

#include <stdlib.h>

int qvOSRand_Rand(void) { return rand(); }

void qvOSRand_SetSeed(uint32 aSeed) { srand(aSeed); }
