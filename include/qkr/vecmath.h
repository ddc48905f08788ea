/** @file
 * Vector math: elementary functions over whole arrays, with a per-thread error policy. */
#ifndef QKR_VECMATH_H
#define QKR_VECMATH_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

QKR_END_DECLS

#endif
