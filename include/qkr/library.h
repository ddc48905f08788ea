/** @file
 * The library as a whole: its version, the vector width in use, and texts for the statuses of all rooms. */
#ifndef QKR_LIBRARY_H
#define QKR_LIBRARY_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** @name Version
 * Of these headers, and of the library that a program has loaded: major * 10000 + minor * 100 + patch. Until
 * 1.0 a program needs the minor version that it was compiled for:
 *
 *     if (qkr_version() / 100 != QKR_VERSION / 100) puts("another qkr than " QKR_VERSION_STRING);
 *
 * @{ */
#define QKR_VERSION 100            /**< of these headers */
#define QKR_VERSION_STRING "0.1.0" /**< the same, to read */
/** @return the version of the library */
QKR_API int32_t qkr_version(void);
/** @} */

/** Vector widths, from narrow to wide. */
enum {
  QKR_LEVEL_SSE2 = 0,  /**< any x86-64 processor */
  QKR_LEVEL_AVX2 = 1,  /**< x86-64-v3 */
  QKR_LEVEL_AVX512 = 2 /**< x86-64-v4 */
};

/** @name Level
 * The vector width of the kernels in use. The first call into the library chooses the widest that processor
 * and operating system support, or what the environment variable QKR_LEVEL allows at the most. Results have
 * the same bits at every level: a lower one serves comparisons and measurements.
 * @{ */

/** @return QKR_LEVEL_SSE2, QKR_LEVEL_AVX2 or QKR_LEVEL_AVX512 */
QKR_API int32_t qkr_level(void);

/** Takes another level from the next call on, whatever QKR_LEVEL says. It may be changed at any time, also
 * with plans, streams and descriptors that exist already, but not while another thread is inside the library.
 * @param level QKR_LEVEL_SSE2 and its companions; the widest that is supported is taken for a wider one
 * @return the level in use from then on, or -1 for a number that is no level, when nothing changes */
QKR_API int32_t qkr_set_level(int32_t level);
/** @} */

/** Rooms of the library, each with statuses of its own. */
enum {
  QKR_ROOM_VECMATH = 0, /**< VXM_STATUS_...: status words of vector math */
  QKR_ROOM_STREAMS = 1, /**< VXS_STATUS_...: random streams and distributions */
  QKR_ROOM_SIGFFT = 2,  /**< zprSts...: signal transforms and arrays */
  QKR_ROOM_DFT = 3,     /**< DFTX_...: descriptors */
  QKR_ROOM_CONVCORR = 4 /**< VXS_CC_...: tasks */
};

/** What a status means, in a few words without a full stop, for a message.
 * @param room QKR_ROOM_VECMATH and its companions
 * @param status what a function of that room returned
 * @return the text, which is never null and lasts; "unknown status" or "unknown room" */
QKR_API const char *qkr_status_text(int32_t room, int32_t status);

QKR_END_DECLS

#endif
