/** @file
 * Error policy of vector math: mode, status, error callback. All of it belongs to the calling thread; a
 * thread that has set nothing has the mode VXM_MODE_DEFAULT, status 0 and no callback.
 *
 * A vector function returns nothing. An element that meets a domain error, a singularity, an overflow or an
 * underflow gets its IEEE result and is reported: its status goes to the thread's status word, and a record
 * of the element to the thread's callback and to the standard handlers that the mode has switched on. Complex
 * functions do not report. */
#ifndef QKR_VECMATH_CONTROL_H
#define QKR_VECMATH_CONTROL_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** The mode word of a thread: fields of the enumeration below, combined by |. */
typedef uint32_t VxmMode;

enum {
  VXM_MODE_ACCURACY = 0xF,     /**< field for the caller's choice of accuracy; stored only */
  VXM_MODE_IGNORE = 0x100,     /**< alone in its field: errors go no further than the status word */
  VXM_MODE_ERRNO = 0x200,      /**< set errno */
  VXM_MODE_STDERR = 0x400,     /**< print the element to stderr */
  VXM_MODE_EXCEPT = 0x800,     /**< raise the floating-point event */
  VXM_MODE_CALLBACK = 0x1000,  /**< call the thread's callback, if there is one */
  VXM_MODE_ERRORS = 0xFF00,    /**< the field of the five bits above */
  VXM_MODE_RESERVED = 0x30000, /**< field without a meaning of its own; stored only */
  VXM_MODE_DEFAULT = 0x1A02    /**< VXM_MODE_ERRNO, VXM_MODE_EXCEPT and VXM_MODE_CALLBACK; accuracy 2 */
};

/** What happened to an element. Vector functions raise the positive ones; the negative ones are for callers
 * that check arguments themselves and report through _vxmdError() or _vxmsError(). */
enum {
  VXM_STATUS_BADMEM = -2,  /**< a null pointer was passed; errno EACCES */
  VXM_STATUS_BADSIZE = -1, /**< the array size is not positive; errno EINVAL */
  VXM_STATUS_OK = 0,       /**< no error */
  VXM_STATUS_ERRDOM = 1,   /**< argument out of domain; errno EDOM, event "invalid" */
  VXM_STATUS_SING = 2,     /**< argument at a singularity; errno ERANGE, event "divide by zero" */
  VXM_STATUS_OVERFLOW = 3, /**< result too large; errno ERANGE, no event */
  VXM_STATUS_UNDERFLOW = 4 /**< result too small; errno ERANGE, event "underflow" */
};

/** One bad element, valid during the callback only. Single-precision elements are widened to double. The
 * element fields are not filled for VXM_STATUS_BADMEM and VXM_STATUS_BADSIZE. The result is stored before the
 * report: of a function that works in place, dbA1 (or dbA2) is the result already. */
typedef struct VxmErrorContext {
  int32_t iCode;        /**< the status */
  int32_t iIndex;       /**< index of the element (see _vxmSetInterfInputVectorPointer()), or the bad size */
  double dbA1;          /**< element of the first input */
  double dbA2;          /**< element of the second input, or the first again */
  double dbR1;          /**< element of the first result */
  double dbR2;          /**< element of the second result, or the first again */
  char cFuncName[64];   /**< name of the function; without terminator if it takes up all 64 characters */
  int32_t iFuncNameLen; /**< length of the name */
} VxmErrorContext;

/** An error callback. Non-zero ends the treatment of the element, which keeps its result. With 0 the standard
 * handlers follow, and dbR1 and dbR2, as the callback left them, become the results; where the function has
 * one result vector, dbR1 counts. The floating-point environment is that of the running vector function. A
 * callback returns: it must not throw an exception or leave by longjmp(), which would skip the elements that
 * follow and leave the vector function's environment set. */
typedef int32_t (*VxmErrorCallBack)(VxmErrorContext *record);

/** Sets the fields of the mode that are not zero in `mode`: accuracy, errors, reserved. A field given as zero
 * stays as it is, so no field can be made zero; other bits are ignored. The processor's controls are not
 * touched.
 * @return the whole previous mode */
QKR_API VxmMode _vxmSetMode(VxmMode mode);

/** @return the thread's mode */
QKR_API VxmMode _vxmGetMode(void);

/** Stores `status` as the thread's status. The status is that of the latest error: it is overwritten by the
 * next one, and a call without errors leaves it alone.
 * @return the previous status */
QKR_API int32_t _vxmSetErrStatus(int32_t status);

/** @return the status of the thread's latest error, or what was set since */
QKR_API int32_t _vxmGetErrStatus(void);

/** Sets the thread's status to VXM_STATUS_OK.
 * @return the previous status */
QKR_API int32_t _vxmClearErrStatus(void);

/** Installs the thread's callback and switches VXM_MODE_CALLBACK on; null removes it and switches the bit
 * off, unless the bit is alone in the field VXM_MODE_ERRORS. To leave a callback for good, restore callback
 * first and mode second.
 * @return the previous callback */
QKR_API VxmErrorCallBack _vxmSetErrorCallBack(VxmErrorCallBack callback);

/** @return the thread's callback, or null */
QKR_API VxmErrorCallBack _vxmGetErrorCallBack(void);

/** Removes the thread's callback: _vxmSetErrorCallBack() with null.
 * @return the previous callback */
QKR_API VxmErrorCallBack _vxmClearErrorCallBack(void);

/** The error policy of a thread as a whole. */
typedef struct VxmErrorPolicy {
  VxmMode mode;              /**< the mode word */
  int32_t status;            /**< the status word */
  VxmErrorCallBack callback; /**< the callback, or null */
  /** Null, or the address of a word that collects the statuses of all elements: status k sets bit k. At first
   * null. */
  uint32_t *statuses;
} VxmErrorPolicy;

/** Exchanges the calling thread's policy with `policy`. For layers above that treat errors in their own way:
 * one call before and one after their vector calls, with the same record, leave the thread as it was, and the
 * record then tells the status of the last error between them. The mode is stored whole, so that a field may
 * become zero; bits outside of its fields are dropped. */
QKR_API void qkr_vxm_exchange_policy(VxmErrorPolicy *policy);

/** For callers that hand out a long vector in pieces: `pointer` is the start of the whole first input, and
 * VxmErrorContext::iIndex then counts from there. Null turns this off.
 * @return `pointer` */
QKR_API const void *_vxmSetInterfInputVectorPointer(const void *pointer);

/** Reports element `index` of a vector function of doubles: stores the status, then calls the callback and
 * the standard handlers as the mode tells, and writes the record's results back.
 * @param status one of VXM_STATUS_...; the vectors may be null for VXM_STATUS_BADMEM and VXM_STATUS_BADSIZE
 * @param index  position in the vectors, or the bad size
 * @param a      start of the inputs, as is `b`; `a` twice for a function of one input
 * @param r1     start of the results, as is `r2`, which may be the inputs; `r1` twice for one result
 * @param name   name of the function; the record takes 64 characters of it */
QKR_API void _vxmdError(int32_t status, int32_t index, const double *a, const double *b, double *r1,
                        double *r2, const char *name);

/** Reports element `index` of a vector function of floats, as _vxmdError() does. */
QKR_API void _vxmsError(int32_t status, int32_t index, const float *a, const float *b, float *r1, float *r2,
                        const char *name);

/** @return the length of the string `s` */
QKR_API size_t qkr_vxm_service_strlen1(const char *s);

/** Writes `a` and then `b`, terminated, to `out`, which has room for both and may be `a`.
 * @return the length of `out` */
QKR_API int32_t qkr_vxm_service_strcat1(const char *a, const char *b, char *out);

QKR_END_DECLS

#endif
