/** @file
 * Random streams: files, copies, and the division of one sequence among several streams.
 *
 * A stream file is three sections of little-endian integers without padding: a StreamFileHeader; the stream's
 * record from byte 16 on, as it stands in memory; and its chunks, newest first, each as id, size and data. */
#ifndef QKR_STREAMS_FILES_H
#define QKR_STREAMS_FILES_H

#include <qkr/streams.h>
#include <stdio.h>

QKR_BEGIN_DECLS

/** @name Saving and loading
 * @{ */

/** Writes a stream to a file, which is replaced if it exists. Chunks of size 0 and records without a payload
 * cannot be written.
 *
 * What is left after a failure is the incomplete file. A generator of your own whose StateSize is below 16 or
 * above 65551 has no place in a file: VXS_STATUS_BAD_STATE_SIZE, and no file is opened.
 *
 * @param stream the stream, not in use by another thread
 * @param name path; `length` characters, or up to the terminating 0 if length is negative
 * @return VXS_STATUS_OK, or what came first of VXS_STATUS_NO_MEMORY, VXS_STATUS_BAD_GENERATOR,
 * VXS_STATUS_BAD_STATE_SIZE, VXS_STATUS_FILE_OPEN, VXS_STATUS_FILE_WRITE; but always VXS_STATUS_FILE_CLOSE,
 * if the file could not be closed */
QKR_API int32_t __vxsSaveStreamF(const StreamState *stream, const char *name, int32_t length);

/** Makes a stream from a file. It continues where the saved one was; its list of chunks runs the other way.
 *
 * Header and state are checked, so that a damaged file is refused or gives a stream that draws some numbers;
 * the state of a generator of your own is yours to check. An abstract stream comes back without buffer and
 * callback: draws answer VXS_STATUS_NULL_POINTER until the InitStream of its generator sets them anew, with
 * params as in qkr/streams_abstract.h.
 *
 * @param[out] out the stream. It must be null or hold no live stream at the call: after any failure, what it
 * points at is deleted.
 * @param name path, terminated by 0
 * @return VXS_STATUS_OK, or what came first of VXS_STATUS_FILE_OPEN, VXS_STATUS_FILE_READ,
 * VXS_STATUS_FILE_FORMAT, VXS_STATUS_FILE_VERSION, VXS_STATUS_NO_MEMORY; but always VXS_STATUS_FILE_CLOSE, if
 * the file could not be closed */
QKR_API int32_t __vxsLoadStreamF(StreamState **out, const char *name);
/** @} */

/** @name Copies
 * @{ */

/** Makes a second stream with the same id, state and chunks, each with data of its own. The data are copied
 * byte for byte.
 * @return VXS_STATUS_OK, VXS_STATUS_BAD_GENERATOR or VXS_STATUS_NO_MEMORY */
QKR_API int32_t __vxsCopyStream(StreamState **out, const StreamState *source);

/** Copies the running state of one stream over that of another of the same generator: the first SeedWords *
 * WordSize bytes behind the head, as far as both records reach. What lies beyond stays: MT2203 keeps its
 * member's parameters, MCG31M1 and MCG59 their multipliers, which leapfrog may have changed. Members of one
 * family count as the same generator.
 *
 * Quasi-random streams of more dimensions than the record holds exchange states only with those of the same
 * generator and as many dimensions. Between different generators the bytes are copied all the same, but for
 * what the destination could not draw from: then it stays as it was, as abstract streams always do.
 * @return VXS_STATUS_OK or VXS_STATUS_OTHER_GENERATOR */
QKR_API int32_t __vxsCopyStreamState(StreamState *destination, const StreamState *source);
/** @} */

enum {
  QKR_ONE_DIMENSION = 0x7fffffff /**< of __vxsLeapfrogStream(): one dimension of a quasi-random sequence */
};

/** @name Partition
 * Which generators can do it stands in the table of qkr/streams.h. The arguments are not checked.
 * @{ */

/** Of `nstreams` streams that divide one sequence, makes this the one with number k, counted from 0: it
 * yields the numbers k, k + nstreams, k + 2 nstreams, ... of what it would have yielded. For quasi-random
 * generators, with nstreams = QKR_ONE_DIMENSION: the stream yields component k of each point.
 * @return VXS_STATUS_OK or VXS_STATUS_NO_LEAPFROG */
QKR_API int32_t __vxsLeapfrogStream(StreamState *stream, int32_t k, int32_t nstreams);

/** Passes over nskip numbers, which must be below 2^31: only the low 32 bits count. qkr_skip_ahead() passes
 * over any number.
 * @return VXS_STATUS_OK or VXS_STATUS_NO_SKIP_AHEAD */
QKR_API int32_t __vxsSkipAheadStream(StreamState *stream, int64_t nskip);

/** Passes over `count` numbers, any count that 64 bits hold, in a time that grows with its logarithm: for
 * MCG31M1, MRG32K3A, MCG59, WH, Sobol and Niederr (which repeat after 2^32 points), and registered
 * generators that serve QKR_INIT_SKIP_AHEAD_64, as Philox does; others of these up to 2^31 - 1. What counts
 * are the numbers that the stream would have yielded: after leapfrog its own, of a quasi-random stream
 * components, or, of one dimension, points. Two skips are one of the sum of their counts; a count of 0
 * changes nothing.
 * @return VXS_STATUS_OK, or VXS_STATUS_NO_SKIP_AHEAD, when nothing has changed */
QKR_API int32_t qkr_skip_ahead(StreamState *stream, uint64_t count);
/** @} */

/** The first 16 bytes of a stream file. */
typedef struct StreamFileHeader {
  uint32_t magic_and_version; /**< 0x474e52 in the low 24 bits, version 0 in the byte above */
  uint16_t header_size;       /**< 16 */
  uint16_t state_size;        /**< StateSize - 16 of the generator */
  uint16_t chunk_count;       /**< length of the list of chunks, modulo 2^16 */
  uint16_t reserved;          /**< not used */
  uint32_t brng;              /**< generator id */
} StreamFileHeader;

/** @name Steps of saving and loading
 * Each takes the address of a status first, which begins as VXS_STATUS_OK. A step does nothing if the status
 * is negative, and sets it if it fails; so all steps can stand in a row. Closing, __vxsDeleteString() and
 * __vxsDeallocateStream() run in any case.
 * @{ */

/** The name as a terminated string: itself for a negative length, else a copy. VXS_STATUS_NO_MEMORY */
QKR_API void __vxsCreateString(int32_t *status, const char **string, const char *name, int32_t length);
/** The header of a stream. VXS_STATUS_BAD_GENERATOR, VXS_STATUS_BAD_STATE_SIZE */
QKR_API void __vxsFillInFileHeader(int32_t *status, StreamFileHeader *header, const StreamState *stream);
/** Opens a file for writing. *file is null unless that worked. VXS_STATUS_FILE_OPEN */
QKR_API void __vxsOpenFileToWrite(int32_t *status, FILE **file, const char *name);
/** Writes the header. VXS_STATUS_FILE_WRITE */
QKR_API void __vxsWriteFileHeaderToFile(int32_t *status, FILE *file, const StreamFileHeader *header);
/** Writes the stream's record behind its head. VXS_STATUS_FILE_WRITE */
QKR_API void __vxsWriteStreamStateToFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                         const StreamState *stream);
/** Writes as many chunks as the header counts. VXS_STATUS_FILE_WRITE */
QKR_API void __vxsWriteChunksToFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                    const StreamState *stream);
/** Closes the file if it is open. VXS_STATUS_FILE_CLOSE, whatever the status was */
QKR_API void __vxsCloseFile(int32_t *status, FILE **file);
/** Frees the copy that __vxsCreateString() made for this length. */
QKR_API void __vxsDeleteString(int32_t *status, const char **string, int32_t length);
/** Opens a file for reading. *file is null unless that worked. VXS_STATUS_FILE_OPEN */
QKR_API void __vxsOpenFileToRead(int32_t *status, FILE **file, const char *name);
/** Reads the header. VXS_STATUS_FILE_READ */
QKR_API void __vxsReadFileHeaderFromFile(int32_t *status, FILE *file, StreamFileHeader *header);
/** Checks magic, version, generator, state size and header size. VXS_STATUS_FILE_FORMAT,
 * VXS_STATUS_FILE_VERSION */
QKR_API void __vxsValidateHeader(int32_t *status, const StreamFileHeader *header);
/** Allocates a stream of the header's generator. VXS_STATUS_BAD_GENERATOR, VXS_STATUS_NO_MEMORY */
QKR_API void __vxsCreateStream(int32_t *status, const StreamFileHeader *header, StreamState **out);
/** Reads the stream's record behind its head. VXS_STATUS_FILE_READ */
QKR_API void __vxsReadStreamStateFromFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                          StreamState *stream);
/** Reads as many chunks as the header counts. VXS_STATUS_FILE_READ, VXS_STATUS_NO_MEMORY */
QKR_API void __vxsReadChunksFromFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                     StreamState *stream);
/** Deletes the stream if the status is negative and there is one. */
QKR_API void __vxsDeallocateStream(int32_t *status, StreamState **stream);
/** @} */

QKR_END_DECLS

#endif
