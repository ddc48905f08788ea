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
#else
#define QKR_BEGIN_DECLS
#define QKR_END_DECLS
#endif

/** Thread-local in C and in C++. C++'s own thread_local would be reached through a wrapper function, in case
 * the variable had a constructor; ours never do. */
#define QKR_THREAD_LOCAL __thread

#endif
