#include "tools/qvlogcat/LogFollower.h"
