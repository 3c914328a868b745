#include "qvOS/qvUser.h"

#include <sys/types.h>
#include <unistd.h>

int64 qvUser_GetID(void) { return static_cast<int64>(getuid()); }
