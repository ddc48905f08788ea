// Stream files. Saving and loading are rows of steps; the first failure passes down the row in `status`.
#include <qkr/streams_files.h>
#include <stdlib.h>
#include <string.h>

#include "streams/internal.h"

using namespace qkr;

namespace {

constexpr uint32_t magic = 0x474e52, magic_bits = 0xffffff;
constexpr uint32_t version_shift = 24, version = 0;

static_assert(sizeof(StreamFileHeader) == 16, "the layout of the file");

// A status for the first failure, and nothing for those after it.
void require(int32_t *status, bool done, int32_t failure) {
  if (!done) *status = failure;
}

void open_file(int32_t *status, FILE **file, const char *name, const char *mode) {
  *file = *status < 0 ? nullptr : fopen(name, mode);
  if (*status >= 0) require(status, *file, VXS_STATUS_FILE_OPEN);
}

// One item; an empty one cannot be told from a failure, and counts as one.
void write_item(int32_t *status, FILE *file, const void *item, size_t size) {
  if (*status >= 0) require(status, fwrite(item, size, 1, file) == 1, VXS_STATUS_FILE_WRITE);
}

void read_item(int32_t *status, FILE *file, void *item, size_t size) {
  if (*status >= 0) require(status, fread(item, size, 1, file) == 1, VXS_STATUS_FILE_READ);
}

void read_chunk(int32_t *status, FILE *file, StreamState *stream) {
  uint32_t id, size;
  read_item(status, file, &id, sizeof id);
  read_item(status, file, &size, sizeof size);
  if (*status < 0) return;
  void *data = malloc(size);
  require(status, data, VXS_STATUS_NO_MEMORY);
  read_item(status, file, data, size);
  if (*status >= 0) *status = __vxsAddChunk(stream, id, data, size);
  if (*status < 0) free(data);
}

// The bytes of a damaged file may be no state that can be drawn from. Addresses mean nothing here.
void accept_state(int32_t *status, StreamState *stream) {
  if (*status < 0) return;
  const bool sound = is_abstract(stream) ? disconnect_abstract(stream) : is_sound(stream);
  require(status, sound, VXS_STATUS_FILE_FORMAT);
}

}  // namespace

extern "C" {

int32_t __vxsSaveStreamF(const StreamState *stream, const char *name, int32_t length) {
  int32_t status = VXS_STATUS_OK;
  const char *string;
  StreamFileHeader header;
  FILE *file;
  __vxsCreateString(&status, &string, name, length);
  __vxsFillInFileHeader(&status, &header, stream);
  __vxsOpenFileToWrite(&status, &file, string);
  __vxsWriteFileHeaderToFile(&status, file, &header);
  __vxsWriteStreamStateToFile(&status, file, &header, stream);
  __vxsWriteChunksToFile(&status, file, &header, stream);
  __vxsCloseFile(&status, &file);
  __vxsDeleteString(&status, &string, length);
  return status;
}

int32_t __vxsLoadStreamF(StreamState **out, const char *name) {
  int32_t status = VXS_STATUS_OK;
  StreamFileHeader header;
  FILE *file;
  __vxsOpenFileToRead(&status, &file, name);
  __vxsReadFileHeaderFromFile(&status, file, &header);
  __vxsValidateHeader(&status, &header);
  __vxsCreateStream(&status, &header, out);
  __vxsReadStreamStateFromFile(&status, file, &header, *out);
  __vxsReadChunksFromFile(&status, file, &header, *out);
  accept_state(&status, *out);
  __vxsCloseFile(&status, &file);
  __vxsDeallocateStream(&status, out);
  return status;
}

void __vxsCreateString(int32_t *status, const char **string, const char *name, int32_t length) {
  *string = name;
  if (*status < 0 || length < 0) return;
  char *copy = static_cast<char *>(malloc(static_cast<size_t>(length) + 1));
  *string = copy;
  require(status, copy, VXS_STATUS_NO_MEMORY);
  if (!copy) return;
  memcpy(copy, name, static_cast<size_t>(length));
  copy[length] = 0;
}

void __vxsDeleteString(int32_t *, const char **string, int32_t length) {
  if (length >= 0) free(const_cast<char *>(*string));
}

void __vxsFillInFileHeader(int32_t *status, StreamFileHeader *header, const StreamState *stream) {
  if (*status < 0) return;
  BrngRecord record;
  const uint32_t id = __vxsGetStreamStateBrng(stream);
  *status = __vxsGetBrngProperties(static_cast<int32_t>(id), &record);
  if (*status < 0) return;
  const int64_t payload = record.StateSize - static_cast<int64_t>(sizeof(StreamState));
  require(status, payload >= 0 && payload <= UINT16_MAX, VXS_STATUS_BAD_STATE_SIZE);
  if (*status < 0) return;
  *header = {magic | version << version_shift,
             sizeof(StreamFileHeader),
             static_cast<uint16_t>(payload),
             static_cast<uint16_t>(__vxsGetNumChunks(stream)),
             0,
             id};
}

void __vxsOpenFileToWrite(int32_t *status, FILE **file, const char *name) {
  open_file(status, file, name, "wb");
}

void __vxsWriteFileHeaderToFile(int32_t *status, FILE *file, const StreamFileHeader *header) {
  write_item(status, file, header, sizeof *header);
}

void __vxsWriteStreamStateToFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                 const StreamState *stream) {
  if (*status >= 0) write_item(status, file, stream + 1, header->state_size);
}

void __vxsWriteChunksToFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                            const StreamState *stream) {
  if (*status < 0) return;
  const StreamChunk *chunk = stream->chunks;
  for (int left = header->chunk_count; left > 0; --left, chunk = chunk->next) {
    write_item(status, file, &chunk->id, sizeof chunk->id);
    write_item(status, file, &chunk->size, sizeof chunk->size);
    write_item(status, file, chunk->data, chunk->size);
  }
}

void __vxsCloseFile(int32_t *status, FILE **file) {
  if (*file && fclose(*file) != 0) *status = VXS_STATUS_FILE_CLOSE;
}

void __vxsOpenFileToRead(int32_t *status, FILE **file, const char *name) {
  open_file(status, file, name, "rb");
}

void __vxsReadFileHeaderFromFile(int32_t *status, FILE *file, StreamFileHeader *header) {
  read_item(status, file, header, sizeof *header);
}

void __vxsValidateHeader(int32_t *status, const StreamFileHeader *header) {
  if (*status < 0) return;
  const int32_t id = static_cast<int32_t>(header->brng);
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(id, &row, &member);
  // The registry trusts its callers not to ask for negative rows; a file may.
  const bool known = row >= 0 && __vxsIsBrngValid(table, row, member) == VXS_STATUS_OK;
  if ((header->magic_and_version & magic_bits) != magic) {
    *status = VXS_STATUS_FILE_FORMAT;
  } else if (header->magic_and_version >> version_shift != version) {
    *status = VXS_STATUS_FILE_VERSION;
  } else if (!known ||
             header->state_size != table[row].StateSize - static_cast<int32_t>(sizeof(StreamState)) ||
             header->header_size < sizeof(StreamFileHeader)) {
    *status = VXS_STATUS_FILE_FORMAT;
  }
}

void __vxsCreateStream(int32_t *status, const StreamFileHeader *header, StreamState **out) {
  if (*status < 0) return;
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(header->brng), &row, &member);
  *status = __vxsAllocateStream(out, table, header->brng, row, member);
}

void __vxsReadStreamStateFromFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                                  StreamState *stream) {
  if (*status >= 0) read_item(status, file, stream + 1, header->state_size);
}

void __vxsReadChunksFromFile(int32_t *status, FILE *file, const StreamFileHeader *header,
                             StreamState *stream) {
  for (int left = *status < 0 ? 0 : header->chunk_count; left > 0 && *status >= 0; --left) {
    read_chunk(status, file, stream);
  }
}

void __vxsDeallocateStream(int32_t *status, StreamState **stream) {
  if (*status < 0 && *stream) __vxsDeleteStream(stream);
}

}  // extern "C"
