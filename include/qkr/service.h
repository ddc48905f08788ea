/** @file
 * Service layer: work-buffer cache, environment switches, locks, serial or parallel decision. */
#ifndef QKR_SERVICE_H
#define QKR_SERVICE_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

QKR_END_DECLS

#endif
