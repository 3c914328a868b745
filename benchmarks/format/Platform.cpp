#include "Workload.h"

#include <cstdio>

FORMAT_CONTENDER("platform", snprintf)
