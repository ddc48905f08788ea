/** @file
 * Names for the flags of plans and the modes of conversions. qkr.h includes this; the functions take the
 * numbers, with or without it. */
#ifndef QKR_SIGFFT_FLAGS_H
#define QKR_SIGFFT_FLAGS_H

/** Values of `flag` of sigfft_plan.h and sigfft_dft.h: which results of length N are divided. */
enum {
  QKR_DIVIDE_FORWARD = 1, /**< forward by N */
  QKR_DIVIDE_INVERSE = 2, /**< inverse by N, so that it undoes forward */
  QKR_DIVIDE_BOTH = 4,    /**< each by the square root of N */
  QKR_DIVIDE_NONE = 8     /**< neither */
};

/** Values of `mode` of the conversions of sigfft_arrays.h. */
enum {
  QKR_TRUNCATE = 0,     /**< toward zero */
  QKR_ROUND_NEAREST = 1 /**< to nearest, ties to even */
};

#endif
