/** @file
 * Random streams: a registry of basic generators, and streams that draw from them.
 *
 * A basic generator is a row of the registry, a BrngRecord. A stream is a heap record that holds the id of
 * one generator and its running state. The caller owns a stream from __vxsNewStreamEx() to
 * __vxsDeleteStream(), and uses it on one thread at a time; different streams may be used on different
 * threads.
 *
 * | id       | legacy id | generator | members | words | leapfrog | skip-ahead |
 * |----------|-----------|-----------|---------|-------|----------|------------|
 * | 0x100000 | 0         | MCG31M1   | 1       | 31    | yes      | yes        |
 * | 0x200000 | 1         | R250      | 1       | 32    | no       | no         |
 * | 0x300000 | 2         | MRG32K3A  | 1       | 32    | no       | yes        |
 * | 0x400000 | 3         | MCG59     | 1       | 59    | yes      | yes        |
 * | 0x500000 | 4 to 276  | WH        | 273     | 4x24  | yes      | yes        |
 * | 0x600000 | 277       | Sobol     | 1       | 32    | one dimension | yes   |
 * | 0x700000 | 278       | Niederr   | 1       | 32    | one dimension | yes   |
 * | 0x800000 |           | MT19937   | 1       | 32    | no       | no         |
 * | 0x900000 |           | MT2203    | 1024    | 32    | no       | no         |
 * | 0xa00000 |           | iAbstract | 1       | 32    | no       | no         |
 * | 0xb00000 |           | dAbstract | 1       |       | no       | no         |
 * | 0xc00000 |           | sAbstract | 1       |       | no       | no         |
 *
 * "words" are the significant bits of an integer output. Member k of a family has the id of the family plus
 * k.
 *
 * A draw goes through the generator's row, or by name where the generator is known:
 *
 *     StreamState *stream = NULL;
 *     uint32_t seed = 777;
 *     int32_t status = __vxsNewStreamEx(&stream, 0x100000, 1, &seed);
 *     if (status == VXS_STATUS_OK) status = __vxsdBRngMCG31M1(stream, 1000, numbers, 0.0, 1.0);
 *     __vxsDeleteStream(&stream);
 */
#ifndef QKR_STREAMS_H
#define QKR_STREAMS_H

#include <qkr/api.h>

QKR_BEGIN_DECLS

/** Generator ids, as the table above has them. */
enum {
  QKR_MCG31M1 = 0x100000,
  QKR_R250 = 0x200000,
  QKR_MRG32K3A = 0x300000,
  QKR_MCG59 = 0x400000,
  QKR_SOBOL = 0x600000,
  QKR_NIEDERREITER = 0x700000,
  QKR_MT19937 = 0x800000,
  QKR_ABSTRACT_INTEGERS = 0xa00000,
  QKR_ABSTRACT_DOUBLES = 0xb00000,
  QKR_ABSTRACT_SINGLES = 0xc00000
};
#define QKR_WH(k) (0x500000 + (k))     /**< member k of WH, 0 to 272 */
#define QKR_MT2203(k) (0x900000 + (k)) /**< member k of MT2203, 0 to 1023 */

/** What the functions of random streams and distributions return. */
enum {
  VXS_STATUS_OK = 0,
  VXS_STATUS_BAD_METHOD = -2,   /**< a method that the function does not have */
  VXS_STATUS_BAD_ARGUMENT = -3, /**< a bad argument, or a stream whose seeding was refused for one */
  VXS_STATUS_NO_MEMORY = -4,    /**< memory could not be allocated */
  VXS_STATUS_NULL_POINTER = -5, /**< null: entry point, stream, or an abstract stream's buffer or callback */
  VXS_STATUS_BAD_GENERATOR = -1000,   /**< the id names no generator or no member of its family */
  VXS_STATUS_NO_LEAPFROG = -1002,     /**< the generator does not leapfrog this way */
  VXS_STATUS_NO_SKIP_AHEAD = -1003,   /**< the generator does not skip ahead this way */
  VXS_STATUS_OTHER_GENERATOR = -1005, /**< the two streams are of different generators */
  VXS_STATUS_BAD_STATE_SIZE = -1008,  /**< registration: negative StateSize; saving: one that no file holds */
  VXS_STATUS_BAD_WORD_SIZE = -1009,   /**< registration: WordSize other than 4, 8, 16 */
  VXS_STATUS_BAD_SEED_WORDS = -1010,  /**< registration: SeedWords below 1 */
  VXS_STATUS_BAD_BITS = -1011,        /**< registration: Bits below 1 */
  VXS_STATUS_FILE_CLOSE = -1100,      /**< a stream file could not be closed */
  VXS_STATUS_FILE_OPEN = -1101,       /**< a stream file could not be opened */
  VXS_STATUS_FILE_WRITE = -1102,      /**< a stream file could not be written */
  VXS_STATUS_FILE_READ = -1103,       /**< a stream file could not be read, or ends early */
  VXS_STATUS_FILE_FORMAT = -1110,     /**< the header or the state in a stream file is not valid */
  VXS_STATUS_FILE_VERSION = -1111,    /**< the version of a stream file is not supported */
  VXS_STATUS_BAD_UPDATE = -1120,      /**< abstract stream: the callback reported an impossible count */
  VXS_STATUS_NO_NUMBERS = -1121,      /**< abstract stream: the callback reported no numbers */
  VXS_STATUS_OTHER_TYPE = -1122       /**< abstract stream: read through the entry point of another type */
};

/** A keyed block that hangs on a stream: data that its fixed record has no room for. */
typedef struct StreamChunk {
  uint32_t id;              /**< key; 2 to 10 are in use by the library */
  uint32_t size;            /**< bytes of data */
  void *data;               /**< from `malloc`; the chunk owns it */
  struct StreamChunk *next; /**< null at the end */
} StreamChunk;

/** The head of a stream's record; the running state of its generator follows at byte 16. */
typedef struct StreamState {
  uint32_t brng;       /**< generator id, as it was asked for */
  int32_t flags;       /**< 1 */
  StreamChunk *chunks; /**< newest first, or null */
} StreamState;

/** What InitStream is asked to do. */
enum {
  VXS_INIT_SEED = 0,       /**< start from n seed words at params, an array of uint32_t */
  VXS_INIT_LEAPFROG = 1,   /**< keep one number of n, beginning with number k, an int32_t at params */
  VXS_INIT_SKIP_AHEAD = 2, /**< pass over n numbers; params is not read */
  /** pass over any number of numbers, a uint64_t at params; n is 0. qkr_skip_ahead() asks it of registered
   * generators only, for counts from 2^31 on; those of the library answer VXS_STATUS_BAD_METHOD */
  QKR_INIT_SKIP_AHEAD_64 = 64
};

/** A row of the registry: what the library has to know of a basic generator. All four entry points return a
 * status. A block of n <= 0 numbers changes nothing. */
typedef struct BrngRecord {
  int32_t StateSize;    /**< bytes of a stream's record, its head of 16 bytes included */
  int32_t SeedWords;    /**< words of WordSize bytes that make up the running state */
  int32_t IncludesZero; /**< 1 if a number can be 0 */
  int32_t WordSize;     /**< bytes of an integer output: 4, 8 or 16 */
  int32_t Bits;         /**< significant bits of it */
  /** Seeds or partitions; see VXS_INIT_SEED and its companions. */
  int32_t (*InitStream)(int32_t method, StreamState *stream, int32_t n, const void *params);
  /** n single-precision numbers, uniform over [a, b). */
  int32_t (*sBrng)(StreamState *stream, int32_t n, float *out, float a, float b);
  /** n double-precision numbers, uniform over [a, b). */
  int32_t (*dBrng)(StreamState *stream, int32_t n, double *out, double a, double b);
  /** n integers of WordSize bytes. */
  int32_t (*iBrng)(StreamState *stream, int32_t n, uint32_t *out);
} BrngRecord;

/** @name Registry
 * Two tables of rows. Ids of 0x100000 and more are (row + 1) << 20 | member of the current table, which also
 * takes the generators that users register; smaller ids are rows of the legacy table, where 4 to 276 stand
 * for the members of WH.
 * @{ */

/** Where a generator stands. Does not check that it exists.
 * @param id generator id
 * @param[out] row its row in the table that is returned
 * @param[out] member its number in its family
 * @return the table */
QKR_API const BrngRecord *__vxsGetBrngBaseOffset(int32_t id, int32_t *row, int32_t *member);

/** Whether `table`, `row` and `member`, as __vxsGetBrngBaseOffset() gives them, name a generator. A negative
 * row, which only a negative id leads to, is not refused.
 * @return VXS_STATUS_OK or VXS_STATUS_BAD_GENERATOR */
QKR_API int32_t __vxsIsBrngValid(const BrngRecord *table, int32_t row, int32_t member);

/** Copies the row of a generator. @return VXS_STATUS_OK or VXS_STATUS_BAD_GENERATOR */
QKR_API int32_t __vxsGetBrngProperties(int32_t id, BrngRecord *out);

/** Rows of the current table: 12, and one more for each registered generator. */
QKR_API int32_t __vxsGetNumRegBrngs(void);

/** Enters a generator of your own, copying the record. It has one member, and the table holds 512 rows: the
 * caller counts. Other threads may use the registry meanwhile, but not register.
 * streams/generators/philox.cpp registers one of the library's in this way, and is the example.
 * @return the new id, 0xd00000 for the first, or a status: VXS_STATUS_BAD_STATE_SIZE,
 * VXS_STATUS_BAD_WORD_SIZE, VXS_STATUS_BAD_SEED_WORDS, VXS_STATUS_BAD_BITS, VXS_STATUS_NULL_POINTER,
 * whichever applies first */
QKR_API int32_t __vxsRegisterBrng(const BrngRecord *record);
/** @} */

/** @name Streams
 * No function but __vxsDeleteStream() checks a stream against null.
 * @{ */

/** Makes a stream and seeds it.
 * @param[out] out the stream; also when seeding fails, so that the caller always deletes what is not null
 * @param id generator id; abstract streams have constructors of their own
 * @param n how many seed words; how many count, and what none or too few mean, is the generator's matter
 * @param params the seed words; for several streams at once, see __vxsSeedWords()
 * @return VXS_STATUS_BAD_GENERATOR or VXS_STATUS_NO_MEMORY, or what the generator's InitStream returns */
QKR_API int32_t __vxsNewStreamEx(StreamState **out, uint32_t id, int32_t n, const void *params);

/** Allocates the record of a stream without seeding it; what follows the head is zero.
 * @param[out] out the record; null if there is no memory, as it was if there is no such generator
 * @param table and `id`, `row`, `member`: as for __vxsGetBrngBaseOffset()
 * @return VXS_STATUS_OK, VXS_STATUS_BAD_GENERATOR or VXS_STATUS_NO_MEMORY */
QKR_API int32_t __vxsAllocateStream(StreamState **out, const BrngRecord *table, uint32_t id, int32_t row,
                                    int32_t member);

/** Frees a stream with its chunks and sets the caller's pointer to null.
 * @return VXS_STATUS_OK, or VXS_STATUS_NULL_POINTER if the pointer is null already, as after a failed
 * __vxsNewStreamEx() */
QKR_API int32_t __vxsDeleteStream(StreamState **stream);

/** Seed words for one of many streams that are to be independent: from one seed for all of them and the
 * stream's own index, by a hash.
 *
 *     uint32_t words[4];
 *     __vxsSeedWords(seed, k, 4, words);
 *     status = __vxsNewStreamEx(&streams[k], 0x500000 + k, 4, words);
 *
 * Generators take their seeds as they come, so that streams with equal or similar seeds begin alike: members
 * of a family with one seed for all of them, or streams with the seeds 1, 2, 3. These words have nothing in
 * common from one index, or one seed, to the next. Draw as many as the generator takes: 1 for MCG31M1, 2 for
 * MCG59, 4 for WH, 6 for MRG32K3A, 250 for R250, any number for the twisters, for which 4 are plenty.
 *
 * Word 2 i and word 2 i + 1 are the lower and the upper half of number i of SplitMix64 (G. L. Steele, D. Lea
 * and C. H. Flood, Fast splittable pseudorandom number generators, OOPSLA (2014) 453) started from
 * mix(mix(seed + g) + (index + 1) g), where mix is its output function and g its increment. The starting
 * points of two indices of one seed always differ.
 *
 * @param seed any number, as is `index`
 * @param n how many words; none if it is not above 0
 * @param[out] words n words */
QKR_API void __vxsSeedWords(uint64_t seed, uint64_t index, int32_t n, uint32_t *words);

/** The generator id that the stream was made with. */
QKR_API uint32_t __vxsGetStreamStateBrng(const StreamState *stream);
/** @} */

/** @name Chunks
 * A stream's list of keyed blocks, newest first.
 * @{ */

/** Puts a block at the head of the list, which owns it from then on; it must come from `malloc`.
 * @return VXS_STATUS_OK, or VXS_STATUS_NO_MEMORY, when the block stays the caller's */
QKR_API int32_t __vxsAddChunk(StreamState *stream, uint32_t id, void *data, uint32_t size);

/** The data of the newest chunk with this id, or null. */
QKR_API void *__vxsSearchChunk(const StreamState *stream, uint32_t id);

/** The length of the list. */
QKR_API int32_t __vxsGetNumChunks(const StreamState *stream);

/** Frees all chunks and their data. */
QKR_API void __vxsDeleteChunks(StreamState *stream);
/** @} */

QKR_END_DECLS

#endif
