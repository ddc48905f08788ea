/** @file
 * Abstract streams: numbers of your own, from a circular buffer that a callback refills, in place of a basic
 * generator. Distributions draw from them as from any other stream.
 *
 * An abstract stream can be read through the block entry of its type only; the two others return
 * VXS_STATUS_OTHER_TYPE. Reading also returns VXS_STATUS_NULL_POINTER if there is no buffer or callback, and
 * VXS_STATUS_BAD_UPDATE or VXS_STATUS_NO_NUMBERS for what the callback reports. It can be neither split nor
 * moved. */
#ifndef QKR_STREAMS_ABSTRACT_H
#define QKR_STREAMS_ABSTRACT_H

#include <qkr/streams.h>

QKR_BEGIN_DECLS

/** @name Refilling
 * Called by a block entry, on the caller's thread, when all unread numbers are used up. It stores at least
 * one number and at most *free, from buffer[*position] on, going on at buffer[0] after buffer[*size - 1].
 * *count is how many the reader still needs, *free at the most; numbers beyond that are kept for later. The
 * integers behind the pointers are copies.
 * @return how many numbers were stored
 * @{ */
typedef int32_t (*AbstractUpdateI)(StreamState *stream, int32_t *size, uint32_t *buffer, int32_t *count,
                                   int32_t *free, int32_t *position);
typedef int32_t (*AbstractUpdateD)(StreamState *stream, int32_t *size, double *buffer, int32_t *count,
                                   int32_t *free, int32_t *position);
typedef int32_t (*AbstractUpdateS)(StreamState *stream, int32_t *size, float *buffer, int32_t *count,
                                   int32_t *free, int32_t *position);
/** @} */

/** @name Constructors
 * They hand their arguments to the generator's InitStream, as VXS_INIT_SEED and an array of addresses: of
 * size, buffer, for reals lower and upper, and callback. A stream that was loaded from a file, and draws
 * VXS_STATUS_NULL_POINTER, is connected again by that call.
 *
 * What the buffer holds at the call is not read: the first draw calls the callback.
 *
 * @param[out] out the stream
 * @param size numbers that the buffer holds, at least 1
 * @param buffer the caller's, to stay valid as long as the stream
 * @param lower range of the numbers in the buffer: up to `upper`, above it; block entries map it to theirs
 * @param callback the refill function
 * @return VXS_STATUS_OK, VXS_STATUS_BAD_ARGUMENT or VXS_STATUS_NO_MEMORY
 * @{ */
QKR_API int32_t __vxsiNewAbstractStream(StreamState **out, int32_t size, uint32_t *buffer,
                                        AbstractUpdateI callback);
QKR_API int32_t __vxsdNewAbstractStream(StreamState **out, int32_t size, double *buffer, double lower,
                                        double upper, AbstractUpdateD callback);
QKR_API int32_t __vxssNewAbstractStream(StreamState **out, int32_t size, float *buffer, float lower,
                                        float upper, AbstractUpdateS callback);
/** @} */

QKR_END_DECLS

#endif
