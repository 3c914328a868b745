#include "Workload.h"

#include <qvraTools/format/qvFormat.h>

FORMAT_CONTENDER("qvLog", qv_snprintf)
