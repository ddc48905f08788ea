/** @file
 * Plans of the power-of-two transforms.
 *
 * A plan holds the tables for transforms of one length `N = 2^order`, forward and inverse. No transform
 * changes it, so that any number of threads may use one plan at the same time, each with a work buffer of its
 * own. The name of a plan type tells the data: `C_64fc` interleaved complex numbers, `C_64f` real and
 * imaginary parts in separate arrays, `R_64f` real signals; `32` for single precision.
 *
 * | `flag` | forward result divided by | inverse result divided by |
 * |--------|---------------------------|---------------------------|
 * | 1      | N                         | 1                         |
 * | 2      | 1                         | N                         |
 * | 4      | square root of N          | square root of N          |
 * | 8      | 1                         | 1                         |
 *
 * `hint` is kept in the plan and has no influence. */
#ifndef QKR_SIGFFT_PLAN_H
#define QKR_SIGFFT_PLAN_H

#include <qkr/sigfft.h>

QKR_BEGIN_DECLS

/** @name Sizes
 * What a plan in memory of the caller needs, in bytes: `spec_size` for the plan itself and `init_size` for
 * scratch memory while it is built; and `work_size`, what a transform needs as its work buffer. A size may be
 * 0. No size depends on an alignment of the memory.
 * @return zprStsFftOrderErr, zprStsNullPtrErr, zprStsFftFlagErr, in this order; zprStsSizeErr if the plan is
 * larger than 2 GiB (from order 27 in double and 28 in single precision): such a plan can only be made by
 * InitAlloc.
 * @{ */
QKR_API zprStatus w6_zprsFFTGetSize_C_32fc(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                           int32_t *init_size, int32_t *work_size);
QKR_API zprStatus w6_zprsFFTGetSize_C_32f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                          int32_t *init_size, int32_t *work_size);
QKR_API zprStatus w6_zprsFFTGetSize_R_32f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                          int32_t *init_size, int32_t *work_size);
QKR_API zprStatus w6_zprsFFTGetSize_C_64fc(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                           int32_t *init_size, int32_t *work_size);
QKR_API zprStatus w6_zprsFFTGetSize_C_64f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                          int32_t *init_size, int32_t *work_size);
QKR_API zprStatus w6_zprsFFTGetSize_R_64f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                          int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_C_32fc(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                        int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_C_32f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                       int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_R_32f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                       int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_C_64fc(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                        int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_C_64f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                       int32_t *init_size, int32_t *work_size);
QKR_API zprStatus zprsFFTGetSize_R_64f(int32_t order, int32_t flag, int32_t hint, int32_t *spec_size,
                                       int32_t *init_size, int32_t *work_size);
/** @} */

/** @name Plans in memory of the caller
 * Builds a plan inside `spec_memory` and stores its address, which need not be the start of that memory, to
 * `*plan`. `init_buffer` is free again afterwards; it may be null for orders below 4. Free need not be
 * called.
 * @return zprStsNullPtrErr (plan), zprStsFftOrderErr, zprStsNullPtrErr (spec_memory), zprStsFftFlagErr,
 * zprStsNullPtrErr (init_buffer), in this order.
 * @{ */
QKR_API zprStatus w6_zprsFFTInit_C_32fc(zprsFFTSpec_C_32fc **plan, int32_t order, int32_t flag, int32_t hint,
                                        uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus w6_zprsFFTInit_C_32f(zprsFFTSpec_C_32f **plan, int32_t order, int32_t flag, int32_t hint,
                                       uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus w6_zprsFFTInit_R_32f(zprsFFTSpec_R_32f **plan, int32_t order, int32_t flag, int32_t hint,
                                       uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus w6_zprsFFTInit_C_64fc(zprsFFTSpec_C_64fc **plan, int32_t order, int32_t flag, int32_t hint,
                                        uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus w6_zprsFFTInit_C_64f(zprsFFTSpec_C_64f **plan, int32_t order, int32_t flag, int32_t hint,
                                       uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus w6_zprsFFTInit_R_64f(zprsFFTSpec_R_64f **plan, int32_t order, int32_t flag, int32_t hint,
                                       uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_C_32fc(zprsFFTSpec_C_32fc **plan, int32_t order, int32_t flag, int32_t hint,
                                     uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_C_32f(zprsFFTSpec_C_32f **plan, int32_t order, int32_t flag, int32_t hint,
                                    uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_R_32f(zprsFFTSpec_R_32f **plan, int32_t order, int32_t flag, int32_t hint,
                                    uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_C_64fc(zprsFFTSpec_C_64fc **plan, int32_t order, int32_t flag, int32_t hint,
                                     uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_C_64f(zprsFFTSpec_C_64f **plan, int32_t order, int32_t flag, int32_t hint,
                                    uint8_t *spec_memory, uint8_t *init_buffer);
QKR_API zprStatus zprsFFTInit_R_64f(zprsFFTSpec_R_64f **plan, int32_t order, int32_t flag, int32_t hint,
                                    uint8_t *spec_memory, uint8_t *init_buffer);
/** @} */

/** @name Plans in memory of their own
 * Builds a plan, which Free releases, and stores its address to `*plan`.
 * @return zprStsNullPtrErr, zprStsFftOrderErr, zprStsMemAllocErr, zprStsFftFlagErr, in this order;
 * zprStsMemAllocErr also if a table could not be allocated.
 * @{ */
QKR_API zprStatus w6_zprsFFTInitAlloc_C_32fc(zprsFFTSpec_C_32fc **plan, int32_t order, int32_t flag,
                                             int32_t hint);
QKR_API zprStatus w6_zprsFFTInitAlloc_C_32f(zprsFFTSpec_C_32f **plan, int32_t order, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsFFTInitAlloc_R_32f(zprsFFTSpec_R_32f **plan, int32_t order, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsFFTInitAlloc_C_64fc(zprsFFTSpec_C_64fc **plan, int32_t order, int32_t flag,
                                             int32_t hint);
QKR_API zprStatus w6_zprsFFTInitAlloc_C_64f(zprsFFTSpec_C_64f **plan, int32_t order, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus w6_zprsFFTInitAlloc_R_64f(zprsFFTSpec_R_64f **plan, int32_t order, int32_t flag,
                                            int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_C_32fc(zprsFFTSpec_C_32fc **plan, int32_t order, int32_t flag,
                                          int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_C_32f(zprsFFTSpec_C_32f **plan, int32_t order, int32_t flag, int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_R_32f(zprsFFTSpec_R_32f **plan, int32_t order, int32_t flag, int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_C_64fc(zprsFFTSpec_C_64fc **plan, int32_t order, int32_t flag,
                                          int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_C_64f(zprsFFTSpec_C_64f **plan, int32_t order, int32_t flag, int32_t hint);
QKR_API zprStatus zprsFFTInitAlloc_R_64f(zprsFFTSpec_R_64f **plan, int32_t order, int32_t flag, int32_t hint);
/** @} */

/** @name Size of the work buffer
 * Stores to `*size` how many bytes a transform needs as its work buffer; 0 for none.
 * @return zprStsNullPtrErr, zprStsContextMatchErr, in this order.
 * @{ */
QKR_API zprStatus w6_zprsFFTGetBufSize_C_32fc(const zprsFFTSpec_C_32fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsFFTGetBufSize_C_32f(const zprsFFTSpec_C_32f *plan, int32_t *size);
QKR_API zprStatus w6_zprsFFTGetBufSize_R_32f(const zprsFFTSpec_R_32f *plan, int32_t *size);
QKR_API zprStatus w6_zprsFFTGetBufSize_C_64fc(const zprsFFTSpec_C_64fc *plan, int32_t *size);
QKR_API zprStatus w6_zprsFFTGetBufSize_C_64f(const zprsFFTSpec_C_64f *plan, int32_t *size);
QKR_API zprStatus w6_zprsFFTGetBufSize_R_64f(const zprsFFTSpec_R_64f *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_C_32fc(const zprsFFTSpec_C_32fc *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_C_32f(const zprsFFTSpec_C_32f *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_R_32f(const zprsFFTSpec_R_32f *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_C_64fc(const zprsFFTSpec_C_64fc *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_C_64f(const zprsFFTSpec_C_64f *plan, int32_t *size);
QKR_API zprStatus zprsFFTGetBufSize_R_64f(const zprsFFTSpec_R_64f *plan, int32_t *size);
/** @} */

/** @name Release
 * Releases a plan of InitAlloc. A plan of Init it only marks as released.
 * @return zprStsNullPtrErr, zprStsContextMatchErr, in this order.
 * @{ */
QKR_API zprStatus w6_zprsFFTFree_C_32fc(zprsFFTSpec_C_32fc *plan);
QKR_API zprStatus w6_zprsFFTFree_C_32f(zprsFFTSpec_C_32f *plan);
QKR_API zprStatus w6_zprsFFTFree_R_32f(zprsFFTSpec_R_32f *plan);
QKR_API zprStatus w6_zprsFFTFree_C_64fc(zprsFFTSpec_C_64fc *plan);
QKR_API zprStatus w6_zprsFFTFree_C_64f(zprsFFTSpec_C_64f *plan);
QKR_API zprStatus w6_zprsFFTFree_R_64f(zprsFFTSpec_R_64f *plan);
QKR_API zprStatus zprsFFTFree_C_32fc(zprsFFTSpec_C_32fc *plan);
QKR_API zprStatus zprsFFTFree_C_32f(zprsFFTSpec_C_32f *plan);
QKR_API zprStatus zprsFFTFree_R_32f(zprsFFTSpec_R_32f *plan);
QKR_API zprStatus zprsFFTFree_C_64fc(zprsFFTSpec_C_64fc *plan);
QKR_API zprStatus zprsFFTFree_C_64f(zprsFFTSpec_C_64f *plan);
QKR_API zprStatus zprsFFTFree_R_64f(zprsFFTSpec_R_64f *plan);
/** @} */

QKR_END_DECLS

#endif
