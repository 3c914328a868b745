/* qvUser.h - who runs the process. */
#ifndef QVOS_QVUSER_H
#define QVOS_QVUSER_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The real user ID of the process. */
QVLOG_API int64 qvUser_GetID(void);

QV_END_DECLS

#endif
