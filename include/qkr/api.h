/** @file
 * What every public header of qkr shares. */
#ifndef QKR_API_H
#define QKR_API_H

#include <stddef.h>
#include <stdint.h>

/** Marks what libqkr.so exports: everything that a public header declares, and nothing else. */
#define QKR_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define QKR_BEGIN_DECLS extern "C" {
#define QKR_END_DECLS }
#define QKR_THREAD_LOCAL thread_local
#else
#define QKR_BEGIN_DECLS
#define QKR_END_DECLS
#define QKR_THREAD_LOCAL _Thread_local
#endif

#endif
