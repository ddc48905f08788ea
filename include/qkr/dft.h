/** @file
 * Fourier transforms by descriptors: one to three dimensions, complex or real, single or double precision,
 * of any lengths, one by one or in batches, on one thread or several.
 *
 * A descriptor is created with what the transform is (precision, domain, lengths), configured with how the
 * data lie, committed, used for any number of transforms and freed:
 *
 *     DftDescriptor *transform;
 *     const int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX, dimension = 2, lengths[] = {640, 480};
 *     qkr_dft_def_create_descriptor_highd(&transform, &precision, &domain, &dimension, lengths);
 *     qkr_dft_def_commit_descriptor_external(&transform);
 *     qkr_dft_def_compute_forward_z(&transform, data);
 *     qkr_dft_def_free_descriptor_external(&transform);
 *
 * Numbers are passed by address. A handle is the address of the pointer to the descriptor. Every function but
 * qkr_dft_def_error_class_external() returns one of the codes below.
 *
 * Forward: X[k] = scale * sum over n of x[n] exp(-2 pi i n k / N), in each dimension; backward has the plus
 * sign. Both scales are 1 unless set, so that backward after forward gives the product of the lengths times
 * the input.
 *
 * Where the data lie. With i0, i1, i2 the indices of an element, dimension 0 being the first length given,
 * and t the number of the transform:
 *
 *     element = t distance + i0 stride0 + i1 stride1 + i2 stride2
 *
 * in numbers of the array's own kind, complex or real. The strides are 1, length 0 and length 0 * length 1
 * unless set by qkr_dft_set_strides(); so dimension 0 is the one whose elements are neighbours, the last
 * dimension of a C array. Complex transforms work in place, with the input's distance and strides.
 *
 * The spectrum of a real signal holds X[k] for k from 0 to H = length 0 / 2 only: the others are conjugates
 * of those. With ::DFTX_CONJUGATE_EVEN_STORAGE of ::DFTX_COMPLEX_COMPLEX it is an array of H + 1 complex
 * numbers by length 1 by length 2, strides counted in complex numbers. With ::DFTX_COMPLEX_REAL, the default,
 * it is one of the packed formats, in one or two dimensions. R and I are the parts of X:
 *
 * | format           | numbers       | order of an even length N           | of an odd one           |
 * |------------------|---------------|-------------------------------------|-------------------------|
 * | DFTX_CCS_FORMAT  | N + 2 (N + 1) | R[0], 0, R[1], I[1], ..., R[H], 0   | R[0], 0, R[1], ..., I[H] |
 * | DFTX_PACK_FORMAT | N             | R[0], R[1], I[1], ..., R[H]         | R[0], R[1], ..., I[H]   |
 * | DFTX_PERM_FORMAT | N             | R[0], R[H], R[1], I[1], ..., I[H-1] | R[0], R[1], ..., I[H]   |
 *
 * Distances of spectra count complex numbers (pairs of real ones) in every format, and so do strides in one
 * dimension. In two dimensions the packed spectrum is a matrix of real numbers: first each row is transformed
 * and packed, then the columns: those of real numbers (R[0] and, for even N, R[H]) are transformed as real
 * signals and packed in the same format downward, the others as complex numbers. Rows then lie N + 2 (CCS) or
 * N (PACK, PERM) numbers apart, and a CCS spectrum has two rows (odd length 1: one row) more than the signal
 * in those two columns; strides that have been set count real numbers instead.
 *
 * Threads. The library runs a transform on several threads if the environment asks for it (see service.h) and
 * an OpenMP runtime of the kind of LLVM's is loaded in the program or found as libomp.so.5: it is looked for
 * when a descriptor is committed that could use it, never before. Without one the transform runs on the
 * caller's thread. Results have the same bits on any number of threads, and on every processor.
 *
 * Create, set, commit and free must have a descriptor to themselves, each on any thread: the one that frees a
 * descriptor need not be the one that made it. With ::DFTX_THREAD_LIMIT above 1 so many of the caller's own
 * threads may compute with it at a time; otherwise one. Different descriptors do not disturb one another.
 *
 * Source of the methods: J. W. Cooley and J. W. Tukey, Mathematics of Computation 19 (1965) 297, and those
 * that sigfft.h names; rows and columns after D. H. Bailey, Journal of Supercomputing 4 (1990) 23. Accuracy:
 * that of the transforms of sigfft.h for each dimension. */
#ifndef QKR_DFT_H
#define QKR_DFT_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** What a transform is and how its data lie; made by qkr_dft_def_create_descriptor_highd(). */
typedef struct DftDescriptor DftDescriptor;

/** Codes that the functions return. */
enum {
  DFTX_NO_ERROR = 0,         /**< success */
  DFTX_MEMORY_ERROR = 1,     /**< an allocation failed, or a size is too large for one */
  DFTX_NOT_COMMITTED = 2,    /**< compute without a successful commit since the last change */
  DFTX_INVALID_ARGUMENT = 3, /**< null handle or data, or a value out of its range */
  DFTX_BAD_DESCRIPTOR = 5,   /**< the handle does not lead to a descriptor */
  DFTX_UNIMPLEMENTED = 6,    /**< a valid request that is not served */
  DFTX_ENGINE_ERROR = 7,     /**< any other failure of the transforms of sigfft.h */
  DFTX_NO_FREE_SLOT = 8,     /**< more threads at a time than DFTX_THREAD_LIMIT */
};

/** Parameters of qkr_dft_def_set_value_intval() and qkr_dft_def_set_value_dblval(). Of the numbers up to 26
 * that are not listed here, 0 to 3 and 19 are properties that cannot be changed (answer
 * ::DFTX_UNIMPLEMENTED); the others, all above 26 and all below 0 do not exist (answer
 * ::DFTX_INVALID_ARGUMENT). */
enum {
  DFTX_FORWARD_SCALE = 4,        /**< double; default 1 */
  DFTX_BACKWARD_SCALE = 5,       /**< double; default 1 */
  DFTX_NUMBER_OF_TRANSFORMS = 7, /**< transforms of one compute call; default 1; none if below 1 */
  DFTX_COMPLEX_STORAGE = 8,      /**< DFTX_COMPLEX_COMPLEX only */
  DFTX_REAL_STORAGE = 9,         /**< DFTX_REAL_REAL only */
  /** DFTX_COMPLEX_REAL (default) or DFTX_COMPLEX_COMPLEX, which also sets DFTX_PACKED_FORMAT to
   * DFTX_CCE_FORMAT */
  DFTX_CONJUGATE_EVEN_STORAGE = 10,
  DFTX_PLACEMENT = 11,       /**< DFTX_INPLACE (default) or DFTX_NOT_INPLACE */
  DFTX_INPUT_DISTANCE = 14,  /**< between successive transforms of a batch; default 0 */
  DFTX_OUTPUT_DISTANCE = 15, /**< the same of the output */
  DFTX_ORDERING = 18,        /**< DFTX_ORDERED (default) or, complex only, DFTX_SCRAMBLED */
  DFTX_PACKED_FORMAT = 21,   /**< DFTX_CCS_FORMAT (default) and its companions */
  DFTX_THREAD_LIMIT = 26,    /**< the caller's threads that may compute at a time; default 1 */
};

/** Values of the parameters. */
enum {
  DFTX_COMPLEX = 32, /**< domain */
  DFTX_REAL = 33,    /**< domain */
  DFTX_SINGLE = 35,  /**< precision */
  DFTX_DOUBLE = 36,  /**< precision */

  DFTX_COMPLEX_COMPLEX = 39, /**< complex numbers as such */
  DFTX_COMPLEX_REAL = 40,    /**< complex numbers in real arrays, in a packed format */
  DFTX_REAL_REAL = 42,       /**< real numbers as such */

  DFTX_INPLACE = 43,     /**< the output of a real transform takes the place of its input */
  DFTX_NOT_INPLACE = 44, /**< it has an array of its own */

  DFTX_ORDERED = 48, /**< natural order */
  DFTX_SCRAMBLED =
      49, /**< forward may leave its results, and backward takes its input, in an order of the library's
                            own, which point-by-point products of two such spectra do not notice */
  DFTX_NONE = 53, /**< no value */

  DFTX_CCS_FORMAT = 54,  /**< packed formats: see above */
  DFTX_PACK_FORMAT = 55, /**< see above */
  DFTX_PERM_FORMAT = 56, /**< see above */
  DFTX_CCE_FORMAT = 57,  /**< complex numbers: with DFTX_COMPLEX_COMPLEX only */
};

/** @name Create
 * Makes a descriptor with the default values and stores it at `handle`.
 *
 * @param handle receives the descriptor; null if memory, domain or precision fail, unchanged if a number
 * before them does.
 * @param precision DFTX_SINGLE or DFTX_DOUBLE
 * @param domain DFTX_COMPLEX or DFTX_REAL: of what forward transforms
 * @param dimension 1 to 3
 * @param lengths `*dimension` lengths, each at least 1; neighbouring elements first
 * @return in this order: DFTX_INVALID_ARGUMENT for a dimension outside 1 to 7 or a length below 1;
 * DFTX_MEMORY_ERROR, also for a product of the lengths above 2^31 - 1; DFTX_INVALID_ARGUMENT for the domain;
 * DFTX_UNIMPLEMENTED for a dimension of 4 to 7; DFTX_INVALID_ARGUMENT for the precision.
 * @{ */
QKR_API int32_t qkr_dft_def_create_descriptor_highd(DftDescriptor **handle, const int32_t *precision,
                                                    const int32_t *domain, const int32_t *dimension,
                                                    const int32_t *lengths);
QKR_API int32_t qkr_dft_def_create_descriptor_1d(DftDescriptor **handle, const int32_t *precision,
                                                 const int32_t *domain, const int32_t *dimension,
                                                 const int32_t *lengths);
/** @} */

/** @name Set a value
 * Changes one value of the configuration. The descriptor has to be committed again, even when the value was
 * refused.
 *
 * A scale applies once to a whole transform. It is kept with the first dimension whose length is not 1; in
 * single precision it is rounded to that.
 *
 * @return DFTX_INVALID_ARGUMENT for a null handle, DFTX_BAD_DESCRIPTOR; then DFTX_INVALID_ARGUMENT for a
 * parameter or value that does not exist, DFTX_UNIMPLEMENTED for one that is not served.
 * @{ */
QKR_API int32_t qkr_dft_def_set_value_intval(DftDescriptor **handle, const int32_t *parameter,
                                             const int32_t *value);
QKR_API int32_t qkr_dft_def_set_value_dblval(DftDescriptor **handle, const int32_t *parameter,
                                             const double *value);
/** @} */

/** Sets the strides of all dimensions: steps between elements, in numbers of the array's own kind. With them
 * any axis of an array can be transformed, and batches whose transforms are interleaved (distance 1, stride
 * the number of transforms). The descriptor has to be committed again, even when a stride was refused.
 *
 * @param handle of a descriptor
 * @param input_strides a stride of at least 1 for each dimension
 * @param output_strides the same for the output of real transforms (see above for packed formats); complex
 * ones work in place, with the input's strides, and may pass null
 * @return DFTX_INVALID_ARGUMENT for a null handle, DFTX_BAD_DESCRIPTOR, DFTX_INVALID_ARGUMENT for null
 * strides or a stride below 1. Then all strides stay as they were. */
QKR_API int32_t qkr_dft_set_strides(DftDescriptor **handle, const int32_t *input_strides,
                                    const int32_t *output_strides);

/** Makes all that computing needs: plans, tables, work memory, and the choice of the fastest way for each
 * dimension. A descriptor may be committed again at any time. Whether several threads are to be used is
 * decided here.
 *
 * @return DFTX_INVALID_ARGUMENT for a null handle, DFTX_BAD_DESCRIPTOR, DFTX_MEMORY_ERROR, DFTX_ENGINE_ERROR;
 * DFTX_UNIMPLEMENTED for a real transform in three dimensions with DFTX_COMPLEX_REAL storage, and for
 * DFTX_CCE_FORMAT with it. After a failure the descriptor is not committed. */
QKR_API int32_t qkr_dft_def_commit_descriptor_external(DftDescriptor **handle);

/** Releases a descriptor with all that it owns and sets the pointer at `handle` to null.
 * @return DFTX_INVALID_ARGUMENT for a null handle, DFTX_BAD_DESCRIPTOR */
QKR_API int32_t qkr_dft_def_free_descriptor_external(DftDescriptor **handle);

/** Whether a code is the one asked for. @return 1 if `*status` equals `*error_class`, else 0 */
QKR_API int32_t qkr_dft_def_error_class_external(const int32_t *status, const int32_t *error_class);

/** @name Complex transforms
 * `data` is an array of complex numbers (`_Complex`, `std::complex`, zpr64fc, ... of the descriptor's
 * precision), transformed in place; `c` single, `z` double precision. The output's distance and strides are
 * not used.
 *
 * @return DFTX_INVALID_ARGUMENT for a null handle or null data, DFTX_BAD_DESCRIPTOR, DFTX_NOT_COMMITTED,
 * DFTX_MEMORY_ERROR when work memory for strided data is missing, DFTX_NO_FREE_SLOT. After a failure the data
 * are partly transformed, but for the first four.
 * @{ */
QKR_API int32_t qkr_dft_def_compute_forward_c(DftDescriptor **handle, void *data);
QKR_API int32_t qkr_dft_def_compute_forward_z(DftDescriptor **handle, void *data);
QKR_API int32_t qkr_dft_def_compute_backward_c(DftDescriptor **handle, void *data);
QKR_API int32_t qkr_dft_def_compute_backward_z(DftDescriptor **handle, void *data);
/** @} */

/** @name Real transforms
 * From real numbers to a spectrum (`sc` single, `dz` double precision) and back (`cs`,
 * `zd`). `output` may be `input` if each transform of a batch then stays within its own memory; other overlap
 * is not allowed. Otherwise the input stays as it is. Backward does not read the numbers that are zero in a
 * spectrum (the imaginary parts of X[0] and X[H]; in several dimensions, those that X[0] and X[H] of the
 * first dimension have after the others). A backward transform of one dimension in place from DFTX_CCS_FORMAT
 * leaves a 0 after its last number, and in place means here that the two pointers are equal: two arrays are
 * never written beyond their numbers, whatever DFTX_PLACEMENT says.
 *
 * @return as for complex transforms
 * @{ */
QKR_API int32_t qkr_dft_def_compute_forward_sc_out(DftDescriptor **handle, const float *input, void *output);
QKR_API int32_t qkr_dft_def_compute_forward_dz_out(DftDescriptor **handle, const double *input, void *output);
QKR_API int32_t qkr_dft_def_compute_backward_cs_out(DftDescriptor **handle, const void *input, float *output);
QKR_API int32_t qkr_dft_def_compute_backward_zd_out(DftDescriptor **handle, const void *input,
                                                    double *output);
/** @} */

QKR_END_DECLS

#endif
