/** @file
 * Convolution and correlation tasks: one to seven dimensions, single or double precision, any strides, any
 * part of the result, every n-th of its elements, by the sum itself or by transforms.
 *
 * A task describes the operation; it is created, optionally edited, executed any number of times and deleted:
 *
 *     ConvCorrTask *task;
 *     const int32_t picture[] = {640, 480}, kernel[] = {5, 5}, result[] = {640, 480}, start[] = {2, 2};
 *     int32_t status = __vxsNewTask(&task, VXS_CC_CONVOLUTION, 0, VXS_CC_DIRECT, 0, VXS_CC_DOUBLE, 2,
 *                                   picture, kernel, result);
 *     if (!status) status = __vxsEditTask(task, VXS_CC_PARAM_START, start);
 *     if (!status) status = __vxsExec(task, x, NULL, y, NULL, z, NULL);
 *     __vxsDeleteTask(&task);
 *
 * What is computed, in each dimension, of x (nx elements), y (ny) and z (nz):
 *
 *     convolution    z[k] = sum over i of x[i] y[start + k decimation - i]
 *     correlation    z[k] = sum over i of x[i] y[start + k decimation + i]
 *
 * with terms outside of an operand left out. The index start + k decimation lies in 0 to nx + ny - 2
 * (convolution), in 1 - nx to ny - 1 (correlation). Unless it is set, start is 0, or 1 - nx where the kind is
 * ::VXS_CC_CORRELATION, and decimation is 1, so that z begins with the first element of the whole result.
 *
 * Where the data lie. Dimension 0 is the one given first, the last dimension of a C array. Strides count
 * elements and are of either sign: logical element j of n stands at j stride, or, for a negative stride, at
 * (n - 1 - j) |stride|. A stride of 0, of x and y only, repeats the first element. Null strides stand for a
 * dense array: 1, shape[0], shape[0] shape[1], ... z overlaps neither x nor y; x and y may be one array.
 *
 * | data, arithmetic       | form | data_precision, internal_precision |
 * |------------------------|------|------------------------------------|
 * | double, double         | DD   | other than 1, any (1 dimension: other than 1) |
 * | single, double         | SD   | 1, other than 1                    |
 * | single, single         | SS   | 1, 1                               |
 *
 * The direct method adds the terms of a result in ascending order of the index of x (of a convolution:
 * descending), dimension 0 innermost, from +0 on, each product rounded before it is added: the bits of the
 * plain loop, on every processor. An infinity or a NaN reaches the results that it has a term in.
 *
 * The transform method takes n log n steps instead of n^2. Its error is relative to the whole block of
 * results that is computed together, at most 1e-15 (single precision: 1e-6) times the norm of x times that of
 * y; an infinity or a NaN reaches all of that block. Results are the same bits on every processor and with
 * any number of threads. The larger operand goes through in blocks, so that memory grows with the smaller
 * one. The user guide says from which size on which method is the faster.
 *
 * Sources: overlap-save, T. G. Stockham, AFIPS Spring Joint Computer Conference (1966) 229; in several
 * dimensions, transforms of rows and columns as in dft.h. */
#ifndef QKR_CONVCORR_H
#define QKR_CONVCORR_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** What the functions return. */
enum {
  VXS_CC_OK = 0,
  VXS_CC_ERROR_MEM = -4,                /**< the record could not be allocated */
  VXS_CC_ERROR_NULL = -5,               /**< a null task or value */
  VXS_CC_ERROR_NOT_IMPLEMENTED = -2000, /**< no function executes that combination */
  VXS_CC_ERROR_ALLOC = -2001,           /**< memory for the execution could not be allocated */
  VXS_CC_ERROR_BAD_PARAM_ID = -2211,    /**< a parameter outside 1 to 19 */
  VXS_CC_ERROR_READONLY_PARAM = -2212,  /**< a parameter that cannot be edited */
  VXS_CC_ERROR_NO_DELETER = -2220,      /**< an extension without extension_delete; reported as -2240 */
  VXS_CC_ERROR_COPY_HOOK = -2230,       /**< extension_copy failed, or is missing */
  VXS_CC_ERROR_DELETE_HOOK = -2240,     /**< extension_delete failed, or is missing */
  VXS_CC_ERROR_DIMS = -2301,            /**< dimensions other than 1 to 7 */
  VXS_CC_ERROR_START = -2302,           /**< start outside of the whole result */
  VXS_CC_ERROR_DECIMATION = -2303,      /**< decimation below 1, or the last element outside of the result */
  VXS_CC_ERROR_XSHAPE = -2311,          /**< a length of x below 1, or no shape */
  VXS_CC_ERROR_YSHAPE = -2312,          /**< the same of y */
  VXS_CC_ERROR_ZSHAPE = -2313,          /**< the same of z */
  VXS_CC_ERROR_ZSTRIDE = -2323,         /**< a stride of 0 for z */
  VXS_CC_ERROR_X = -2331,               /**< x is null */
  VXS_CC_ERROR_Y = -2332,               /**< y is null */
  VXS_CC_ERROR_Z = -2333,               /**< z is null */
  VXS_CC_ERROR_FFT = -2800,             /**< a transform failed, for want of memory or a length too large */
};

/** Values of a task's fields. */
enum {
  VXS_CC_CONVOLUTION = 1, /**< kind */
  VXS_CC_CORRELATION = 2, /**< kind; any value but 1 correlates, but only this one starts at 1 - nx */
  VXS_CC_DIRECT = 1,      /**< mode */
  VXS_CC_FFT = 2,         /**< mode; any value but 1 */
  VXS_CC_SINGLE = 1,      /**< precision */
  VXS_CC_DOUBLE = 2,      /**< precision; any value but 1 */
};

/** Parameters that __vxsEditTask() changes; 1, 2, 7, 8 and 10 to 19 are those that it refuses to. */
enum {
  VXS_CC_PARAM_MODE = 3,               /**< one int32_t */
  VXS_CC_PARAM_OPTION_WORD = 4,        /**< one int32_t */
  VXS_CC_PARAM_START = 5,              /**< an int32_t for each dimension */
  VXS_CC_PARAM_DECIMATION = 6,         /**< an int32_t for each dimension */
  VXS_CC_PARAM_INTERNAL_PRECISION = 9, /**< one int32_t */
};

/** A convolution or correlation: one record, which belongs to one thread at a time. Shapes and the like are
 * copied into it; `x` is the caller's array. */
typedef struct ConvCorrTask {
  int32_t status;             /**< of the last operation; other than 0, the task is blocked */
  int32_t kind;               /**< VXS_CC_CONVOLUTION, VXS_CC_CORRELATION */
  int32_t task_word;          /**< the caller's; kept and copied, without effect */
  int32_t mode;               /**< VXS_CC_DIRECT, VXS_CC_FFT */
  int32_t option_word;        /**< the caller's; 0 at first */
  int32_t *start;             /**< start_data, or null for the default */
  int32_t *decimation;        /**< decimation_data, or null for ones */
  int32_t data_word;          /**< the caller's */
  int32_t data_precision;     /**< VXS_CC_SINGLE, VXS_CC_DOUBLE */
  int32_t internal_precision; /**< of the arithmetic; at first that of the data */
  int32_t dims;               /**< number of dimensions */
  int32_t *xshape;            /**< xshape_data, or null */
  int32_t *yshape;            /**< yshape_data, or null */
  int32_t *zshape;            /**< zshape_data, or null */
  int32_t *xstride;           /**< xstride_data, or null; of __vxsExecX() only */
  const void *x;              /**< of __vxsExecX() only */
  int32_t start_data[7], decimation_data[7];
  int32_t xshape_data[7], yshape_data[7], zshape_data[7], xstride_data[7];
  int32_t committed; /**< 1 after commit; 0 again after an edit */
  /** Null, or a block from `malloc` that hangs on the task. The library does not set it; whoever does, sets
   * the two functions as well. Both answer 0 for success. */
  void *extension;
  /** Releases what the extension holds, before the library frees the block itself. */
  int32_t (*extension_delete)(struct ConvCorrTask *task, void *extension);
  /** Stores an extension for a copy of the task. */
  int32_t (*extension_copy)(struct ConvCorrTask *copy, void **extension, const void *source);
} ConvCorrTask;

/** @name Life of a task
 * A status other than 0 blocks the task: copying, editing, committing and executing answer it and do nothing
 * else, until __vxsccSetStatus() clears it. Deletion always works.
 * @{ */

/** Makes a task.
 * @param[out] task the task; not written unless the status is 0
 * @param kind VXS_CC_CONVOLUTION or VXS_CC_CORRELATION
 * @param task_word kept for the caller, as is `data_word`
 * @param mode VXS_CC_DIRECT or VXS_CC_FFT
 * @param precision of data and arithmetic: VXS_CC_SINGLE or VXS_CC_DOUBLE
 * @param dims 1 to 7, which execution checks
 * @param xshape `dims` lengths, as have `yshape` and `zshape`: copied here and checked by execution
 * @return VXS_CC_OK, VXS_CC_ERROR_NULL for a null `task`, VXS_CC_ERROR_MEM */
QKR_API int32_t __vxsNewTask(ConvCorrTask **task, int32_t kind, int32_t task_word, int32_t mode,
                             int32_t data_word, int32_t precision, int32_t dims, const int32_t *xshape,
                             const int32_t *yshape, const int32_t *zshape);

/** The same, with an operand x that all executions by __vxsExecX() share.
 * @param x the operand, which stays the caller's
 * @param xstride `dims` strides, or null: dense */
QKR_API int32_t __vxsNewTaskX(ConvCorrTask **task, int32_t kind, int32_t task_word, int32_t mode,
                              int32_t data_word, int32_t precision, int32_t dims, const int32_t *xshape,
                              const int32_t *yshape, const int32_t *zshape, const void *x,
                              const int32_t *xstride);

/** Changes a parameter. What is wrong with it execution finds out; a refused edit blocks the task. In either
 * case the task has to be committed again, which execution does by itself.
 * @param task the task
 * @param parameter VXS_CC_PARAM_MODE and its companions
 * @param value address of one int32_t, or of one for each dimension
 * @return VXS_CC_ERROR_NULL for a null task, which is all then; the task's status if it is blocked;
 * VXS_CC_ERROR_NULL for a null value; VXS_CC_ERROR_READONLY_PARAM, VXS_CC_ERROR_BAD_PARAM_ID */
QKR_API int32_t __vxsEditTask(ConvCorrTask *task, int32_t parameter, const void *value);

/** Makes a task like another, which it outlives. An extension is copied by extension_copy.
 * @return VXS_CC_ERROR_NULL; the status of a blocked source; VXS_CC_ERROR_MEM, VXS_CC_ERROR_COPY_HOOK. `task`
 * is not written then. */
QKR_API int32_t __vxsCopyTask(ConvCorrTask **task, const ConvCorrTask *source);

/** Marks a task as complete. Nothing is planned ahead.
 * @return VXS_CC_ERROR_NULL for a null task, or the task's status */
QKR_API int32_t __vxsCommitTask(ConvCorrTask *task);

/** Frees a task and sets the caller's pointer to null. An extension goes to extension_delete first, and its
 * block to `free`.
 * @return VXS_CC_OK, also for a null task; VXS_CC_ERROR_NULL for a null address; VXS_CC_ERROR_DELETE_HOOK,
 * when all is freed all the same */
QKR_API int32_t __vxsDeleteTask(ConvCorrTask **task);

/** The task's status. @return the status; VXS_CC_ERROR_NULL for a null task */
QKR_API int32_t __vxsccGetStatus(const ConvCorrTask *task);

/** Sets the task's status: 0 unblocks it. @return the old one; VXS_CC_ERROR_NULL for a null task */
QKR_API int32_t __vxsccSetStatus(ConvCorrTask *task, int32_t status);
/** @} */

/** @name Execution
 * Computes z. Checks and the allocation of memory come before anything is written: after any status but
 * VXS_CC_ERROR_FFT z is what it was. Strides are `dims` words each, or null.
 *
 * In two and more dimensions the direct method takes an operand whose strides are dense from dimension 1 on
 * for dense, whatever its stride in dimension 0 (x of a convolution excepted). In all other cases strides are
 * what they say.
 *
 * @return VXS_CC_ERROR_NULL for a null task; else the task's status from then on: that of a blocked task, or
 * the first that applies of
 * - VXS_CC_ERROR_NOT_IMPLEMENTED: one dimension of double data in single arithmetic;
 * - in one dimension VXS_CC_ERROR_X, _XSHAPE, _Y, _YSHAPE, _Z, _ZSHAPE, _ZSTRIDE, _START, _DECIMATION;
 * - in other cases VXS_CC_ERROR_DIMS, _X, _Y, _Z, and dimension by dimension _XSHAPE, _YSHAPE, _ZSHAPE,
 *   _ZSTRIDE, _START, _DECIMATION;
 * - VXS_CC_ERROR_ALLOC, VXS_CC_ERROR_FFT.
 * @{ */
QKR_API int32_t __vxsExec(ConvCorrTask *task, const void *x, const int32_t *xstride, const void *y,
                          const int32_t *ystride, void *z, const int32_t *zstride);
/** With the x of __vxsNewTaskX(). */
QKR_API int32_t __vxsExecX(ConvCorrTask *task, const void *y, const int32_t *ystride, void *z,
                           const int32_t *zstride);
/** @} */

/** @name Execution functions
 * What __vxsExec() calls: `Conv` or `Corr`, the form (DD, SD, SS), `Direct` or `Fft`, `1D` or `All` for one
 * to seven dimensions (direct: two to seven). They compute and check as __vxsExec() does, in its order.
 *
 * `All` functions take `dims` words at each address, and null strides for dense arrays; the addresses of
 * shapes, starts and decimations are not checked. Transforms of any number of dimensions, four to seven among
 * them, go dimension by dimension.
 *
 * Of the functions without decimation, `_nodec`, only those of Direct1D in SS compute, with a decimation of
 * 1; the others answer VXS_CC_ERROR_NOT_IMPLEMENTED.
 * @{ */
QKR_API int32_t _vxsConvDDDirect1D_dec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                       double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvDDDirect1D_nodec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                         double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvSDDirect1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                       float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvSDDirect1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                         float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvSSDirect1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                       float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvSSDirect1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                         float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrDDDirect1D_dec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                       double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrDDDirect1D_nodec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                         double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrSDDirect1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                       float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrSDDirect1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                         float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrSSDirect1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                       float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                       int32_t start, int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrSSDirect1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                         float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                         int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvDDFft1D_dec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                    double *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvDDFft1D_nodec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                      double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvSDFft1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                    float *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvSDFft1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                      float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvSSFft1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                    float *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsConvSSFft1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                      float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrDDFft1D_dec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                    double *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrDDFft1D_nodec(const double *x, int32_t xstride, const double *y, int32_t ystride,
                                      double *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrSDFft1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                    float *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrSDFft1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                      float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsCorrSSFft1D_dec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                    float *z, int32_t zstride, int32_t xshape, int32_t yshape, int32_t start,
                                    int32_t zshape, int32_t decimation);
QKR_API int32_t _vxsCorrSSFft1D_nodec(const float *x, int32_t xstride, const float *y, int32_t ystride,
                                      float *z, int32_t zstride, int32_t xshape, int32_t yshape,
                                      int32_t start, int32_t zshape);
QKR_API int32_t _vxsConvDDDirectAll_dec(int32_t dims, const double *x, const int32_t *xshape,
                                        const int32_t *xstride, const double *y, const int32_t *yshape,
                                        const int32_t *ystride, double *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsConvDDDirectAll_nodec(int32_t dims, const double *x, const int32_t *xshape,
                                          const int32_t *xstride, const double *y, const int32_t *yshape,
                                          const int32_t *ystride, double *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsConvSDDirectAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                        const int32_t *xstride, const float *y, const int32_t *yshape,
                                        const int32_t *ystride, float *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsConvSDDirectAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                          const int32_t *xstride, const float *y, const int32_t *yshape,
                                          const int32_t *ystride, float *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsConvSSDirectAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                        const int32_t *xstride, const float *y, const int32_t *yshape,
                                        const int32_t *ystride, float *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsConvSSDirectAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                          const int32_t *xstride, const float *y, const int32_t *yshape,
                                          const int32_t *ystride, float *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrDDDirectAll_dec(int32_t dims, const double *x, const int32_t *xshape,
                                        const int32_t *xstride, const double *y, const int32_t *yshape,
                                        const int32_t *ystride, double *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsCorrDDDirectAll_nodec(int32_t dims, const double *x, const int32_t *xshape,
                                          const int32_t *xstride, const double *y, const int32_t *yshape,
                                          const int32_t *ystride, double *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrSDDirectAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                        const int32_t *xstride, const float *y, const int32_t *yshape,
                                        const int32_t *ystride, float *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsCorrSDDirectAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                          const int32_t *xstride, const float *y, const int32_t *yshape,
                                          const int32_t *ystride, float *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrSSDirectAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                        const int32_t *xstride, const float *y, const int32_t *yshape,
                                        const int32_t *ystride, float *z, const int32_t *zshape,
                                        const int32_t *zstride, const int32_t *start,
                                        const int32_t *decimation);
QKR_API int32_t _vxsCorrSSDirectAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                          const int32_t *xstride, const float *y, const int32_t *yshape,
                                          const int32_t *ystride, float *z, const int32_t *zshape,
                                          const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsConvDDFftAll_dec(int32_t dims, const double *x, const int32_t *xshape,
                                     const int32_t *xstride, const double *y, const int32_t *yshape,
                                     const int32_t *ystride, double *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsConvDDFftAll_nodec(int32_t dims, const double *x, const int32_t *xshape,
                                       const int32_t *xstride, const double *y, const int32_t *yshape,
                                       const int32_t *ystride, double *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsConvSDFftAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                     const int32_t *xstride, const float *y, const int32_t *yshape,
                                     const int32_t *ystride, float *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsConvSDFftAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                       const int32_t *xstride, const float *y, const int32_t *yshape,
                                       const int32_t *ystride, float *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsConvSSFftAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                     const int32_t *xstride, const float *y, const int32_t *yshape,
                                     const int32_t *ystride, float *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsConvSSFftAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                       const int32_t *xstride, const float *y, const int32_t *yshape,
                                       const int32_t *ystride, float *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrDDFftAll_dec(int32_t dims, const double *x, const int32_t *xshape,
                                     const int32_t *xstride, const double *y, const int32_t *yshape,
                                     const int32_t *ystride, double *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsCorrDDFftAll_nodec(int32_t dims, const double *x, const int32_t *xshape,
                                       const int32_t *xstride, const double *y, const int32_t *yshape,
                                       const int32_t *ystride, double *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrSDFftAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                     const int32_t *xstride, const float *y, const int32_t *yshape,
                                     const int32_t *ystride, float *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsCorrSDFftAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                       const int32_t *xstride, const float *y, const int32_t *yshape,
                                       const int32_t *ystride, float *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
QKR_API int32_t _vxsCorrSSFftAll_dec(int32_t dims, const float *x, const int32_t *xshape,
                                     const int32_t *xstride, const float *y, const int32_t *yshape,
                                     const int32_t *ystride, float *z, const int32_t *zshape,
                                     const int32_t *zstride, const int32_t *start, const int32_t *decimation);
QKR_API int32_t _vxsCorrSSFftAll_nodec(int32_t dims, const float *x, const int32_t *xshape,
                                       const int32_t *xstride, const float *y, const int32_t *yshape,
                                       const int32_t *ystride, float *z, const int32_t *zshape,
                                       const int32_t *zstride, const int32_t *start);
/** @} */

QKR_END_DECLS

#endif
