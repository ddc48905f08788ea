/** @file
 * Signal transforms: statuses, element types and memory; sigfft_plan.h and sigfft_transforms.h, which this
 * header includes, hold the plans and the transforms.
 *
 * The functions come in two sets, with and without the prefix `w6_`, that take the same arguments, give the
 * same statuses and may share memory, but not plans. Prefer the `w6_` functions: they are the faster ones for
 * long transforms. Those without the prefix need less work memory: none at all up to 2048 complex or 4096
 * real points (twice as many in single precision).
 *
 * Every function returns a ::zprStatus; when it is not ::zprStsNoErr, nothing has been written to the
 * results. */
#ifndef QKR_SIGFFT_H
#define QKR_SIGFFT_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** Status of an operation: 0 success, negative failure. The checks of an operation run in a fixed order, and
 * the first that fails decides. */
typedef int32_t zprStatus;

enum {
  zprStsNoErr = 0,             /**< success */
  zprStsSizeErr = -6,          /**< a length is out of its range */
  zprStsNullPtrErr = -8,       /**< a required pointer is null */
  zprStsMemAllocErr = -9,      /**< an allocation inside the call failed */
  zprStsFftOrderErr = -15,     /**< the order of a transform is not within 0 to 30 */
  zprStsFftFlagErr = -16,      /**< the normalisation flag is not 1, 2, 4 or 8 */
  zprStsContextMatchErr = -17, /**< the plan is of another kind or set, or has been released */
};

/** @name Complex elements
 * The real part comes first; arrays of `_Complex` and of `std::complex` have the same layout.
 * @{ */
typedef struct {
  int8_t re, im;
} zpr8sc;
typedef struct {
  int16_t re, im;
} zpr16sc;
typedef struct {
  int32_t re, im;
} zpr32sc;
typedef struct {
  int64_t re, im;
} zpr64sc;
typedef struct {
  float re, im;
} zpr32fc;
typedef struct {
  double re, im;
} zpr64fc;
/** @} */

/** @name Plan types
 * Opaque records, made by the functions of sigfft_plan.h. A plan is used with functions of the set that made
 * it; those of the other set refuse it with ::zprStsContextMatchErr.
 * @{ */
typedef struct zprsFFTSpec_C_32fc zprsFFTSpec_C_32fc;
typedef struct zprsFFTSpec_C_32f zprsFFTSpec_C_32f;
typedef struct zprsFFTSpec_R_32f zprsFFTSpec_R_32f;
typedef struct zprsFFTSpec_C_64fc zprsFFTSpec_C_64fc;
typedef struct zprsFFTSpec_C_64f zprsFFTSpec_C_64f;
typedef struct zprsFFTSpec_R_64f zprsFFTSpec_R_64f;
/** @} */

/** @name Allocation
 * An array of `len` elements at an address that is a multiple of 64, not initialised. Transforms work with
 * arrays and work buffers of any alignment, and fastest with such.
 * @return the array, or null if `len` is less than 1 or the system has no memory.
 * @{ */
QKR_API uint8_t *w6_zprsMalloc_8u(int32_t len);
QKR_API int8_t *w6_zprsMalloc_8s(int32_t len);
QKR_API uint16_t *w6_zprsMalloc_16u(int32_t len);
QKR_API int16_t *w6_zprsMalloc_16s(int32_t len);
QKR_API zpr8sc *w6_zprsMalloc_8sc(int32_t len);
QKR_API uint32_t *w6_zprsMalloc_32u(int32_t len);
QKR_API int32_t *w6_zprsMalloc_32s(int32_t len);
QKR_API float *w6_zprsMalloc_32f(int32_t len);
QKR_API zpr16sc *w6_zprsMalloc_16sc(int32_t len);
QKR_API int64_t *w6_zprsMalloc_64s(int32_t len);
QKR_API double *w6_zprsMalloc_64f(int32_t len);
QKR_API zpr32sc *w6_zprsMalloc_32sc(int32_t len);
QKR_API zpr32fc *w6_zprsMalloc_32fc(int32_t len);
QKR_API zpr64sc *w6_zprsMalloc_64sc(int32_t len);
QKR_API zpr64fc *w6_zprsMalloc_64fc(int32_t len);
QKR_API uint8_t *zprsMalloc_8u(int32_t len);
QKR_API int8_t *zprsMalloc_8s(int32_t len);
QKR_API uint16_t *zprsMalloc_16u(int32_t len);
QKR_API int16_t *zprsMalloc_16s(int32_t len);
QKR_API zpr8sc *zprsMalloc_8sc(int32_t len);
QKR_API uint32_t *zprsMalloc_32u(int32_t len);
QKR_API int32_t *zprsMalloc_32s(int32_t len);
QKR_API float *zprsMalloc_32f(int32_t len);
QKR_API zpr16sc *zprsMalloc_16sc(int32_t len);
QKR_API int64_t *zprsMalloc_64s(int32_t len);
QKR_API double *zprsMalloc_64f(int32_t len);
QKR_API zpr32sc *zprsMalloc_32sc(int32_t len);
QKR_API zpr32fc *zprsMalloc_32fc(int32_t len);
QKR_API zpr64sc *zprsMalloc_64sc(int32_t len);
QKR_API zpr64fc *zprsMalloc_64fc(int32_t len);
/** @} */

/** @name Release
 * Gives back an array of one of the functions above, of either set. Null is ignored.
 * @{ */
QKR_API void w6_zprsFree(void *block);
QKR_API void zprsFree(void *block);
/** @} */

QKR_END_DECLS

#include <qkr/sigfft_arrays.h>
#include <qkr/sigfft_convolution.h>
#include <qkr/sigfft_dft.h>
#include <qkr/sigfft_plan.h>
#include <qkr/sigfft_transforms.h>

#endif
