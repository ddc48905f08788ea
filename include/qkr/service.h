/** @file
 * Service layer: work-buffer cache, environment switches, locks, serial or parallel decision.
 *
 * The transforms ask for the same few sizes of work memory at every call. Each thread therefore keeps up to
 * five blocks, and a request that one of them serves costs a scan of five slots: no lock, no system
 * allocator.
 *
 * | environment variable                | effect when set and not empty                                    |
 * |-------------------------------------|------------------------------------------------------------------|
 * | QKR_DISABLE_FAST_MM, QKR_MM_DISABLE | no cache, whatever the value ("0" too)                           |
 * | QKR_SERIAL                          | "YES" or "yes": run serial; any other value: run parallel        |
 * | OMP_NUM_THREADS, omp_num_threads    | run parallel, whatever the value, if QKR_SERIAL does not decide; |
 * |                                     | the second counts only where the first is not set at all         |
 *
 * Nothing has to be initialised, and no function here reports an error. */
#ifndef QKR_SERVICE_H
#define QKR_SERVICE_H

#include <pthread.h>
#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Allocator hooks
 * All work memory comes from `i_malloc` and goes back through `i_free`: initially the C library's functions.
 * Assign your own to use another allocator, best before the first call into the library; a later change holds
 * from the next call on, so the new `i_free` then gets blocks of the old `i_malloc`. Do not assign while
 * another thread is inside the library, and do not call the library from a hook. Blocks are aligned as
 * `i_malloc` aligns them. The library does not call `i_calloc` and `i_realloc`.
 * @{ */
extern QKR_API void *(*i_malloc)(size_t size);
extern QKR_API void *(*i_calloc)(size_t count, size_t size);
extern QKR_API void *(*i_realloc)(void *block, size_t size);
extern QKR_API void (*i_free)(void *block);
/** @} */

/** 1 until the calling thread's first request that the cache takes care of, 0 from then on. */
extern QKR_API QKR_THREAD_LOCAL int32_t mm_FIRST;

/** Lends a block of at least `size` bytes to the calling thread, which gives it back with
 * qkr_serv_deallocate().
 *
 * Of the thread's blocks that are not lent out, an exact fit is taken first, then the lowest-numbered larger
 * block. Failing that, a new block fills an empty slot or, when there are five, replaces the lowest-numbered
 * smaller one. Requests above 40 MiB (41943040 bytes), and those that find all five blocks lent, go straight
 * to `i_malloc`.
 *
 * @param size bytes; 0 is a request like any other.
 * @return the block, with the alignment that `i_malloc` gives, or null when `i_malloc` returns null; a slot
 * that got a null block is out of use until qkr_serv_freebuffers(). */
QKR_API void *qkr_serv_allocate(size_t size);

/** Takes back a block of qkr_serv_allocate(). It stays with the calling thread for its next request, unless
 * it never was in a slot of this thread: then it goes to `i_free`.
 *
 * Call it on the thread that asked for the block. Another thread would pass the block to `i_free` and leave
 * it behind, dangling, in the slot of the first.
 *
 * @param block what qkr_serv_allocate() returned; null is ignored. */
QKR_API void qkr_serv_deallocate(void *block);

/** Passes the blocks of all registered threads to `i_free`, those still lent out included, and empties the
 * registry. Does nothing when the cache is switched off.
 *
 * A thread registers with its first cached request and never again: blocks that it caches after this call are
 * out of reach of the next. The registry holds 1024 threads; the cache of a thread that comes later works,
 * but this call does not reach it. Call it while no other thread is inside the library.
 *
 * A thread that ends frees its own blocks and leaves the registry. A block that is still lent then goes to
 * `i_free` when it is given back, on any thread. In the child of a fork only the calling thread's blocks are
 * registered. */
QKR_API void qkr_serv_freebuffers(void);

/** Reads the environment variables of the cache, once in a process; qkr_serv_allocate() and its companions do
 * so by themselves. @return 0 */
QKR_API int32_t QKR_read_env(void);

/** The calling thread's id, that is `pthread_self()`. */
QKR_API pthread_t QKR_ThreadID(void);

/** @name Spin locks
 * One lock guards the registry of the cache and the reading of the environment, the other the threaded
 * transforms. They spin without pause, know no owner and are not recursive. Hold them for a few stores at
 * most, and call nothing else of the library meanwhile. In the child of a fork both are open, whoever held
 * them; the work-buffer cache is empty there if the fork came while its lock was held.
 * @{ */
QKR_API void qkr_serv_lock(void);
QKR_API void qkr_serv_unlock(void);
QKR_API void qkr_serv_dft_lock(void);
QKR_API void qkr_serv_dft_unlock(void);
/** @} */

/** Whether the library runs serial: decided from the environment (see the table above) at the first call, for
 * the life of the process. With none of the variables set it is serial.
 * @return 1 serial, 0 parallel */
QKR_API int32_t qkr_serv_in_serial(void);

/** Sets the environment variable QKR_SERIAL to "YES"; without effect after the first qkr_serv_in_serial().
 * @return the result of `setenv`: 0, or -1 with errno set */
QKR_API int32_t qkr_serv_set_serial(void);

/** Sets the environment variable QKR_SERIAL to "NO"; without effect after the first qkr_serv_in_serial().
 * @return the result of `setenv`: 0, or -1 with errno set */
QKR_API int32_t qkr_serv_set_parallel(void);

QKR_END_DECLS

#endif
