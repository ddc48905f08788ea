// A stream as the bit generator of numpy.random.Generator: functions that hand out one number at a time,
// from a block of words that the stream fills.
//
// Numbers of 64 bits and doubles of 53 are made of two words, as NumPy's own MT19937 makes them.
#include <cstdlib>
#include <qkr/distributions.h>

#include "random/stream.h"

namespace qkr::random {
namespace {

uint32_t next_word(void *state) {
  auto *stream = static_cast<Stream *>(state);
  Words *words = stream->words;
  if (words->taken >= Words::length) {
    _vxsiRngUniformBits(0, stream->state, Words::length, words->word);
    words->taken = 0;
  }
  return words->word[words->taken++];
}

uint64_t next_two_words(void *state) {
  const uint64_t high = next_word(state);
  return high << 32 | next_word(state);
}

double next_double(void *state) {
  const uint32_t high = next_word(state) >> 5, low = next_word(state) >> 6;
  return (high * 67108864.0 + low) * 0x1p-53;
}

uint64_t next_raw(void *state) { return next_word(state); }

bool gives_full_words(const Stream *stream) {
  BrngRecord record;
  const bool known =
      __vxsGetBrngProperties(static_cast<int32_t>(stream->state->brng), &record) == VXS_STATUS_OK;
  const uint32_t row = stream->state->brng >> 20;
  const bool quasi_random = row == 6 || row == 7;
  return known && !quasi_random && record.Bits == 32 && record.WordSize == 4 && record.iBrng;
}

Words *find_words(const StreamState *state) {
  for (const StreamChunk *chunk = state->chunks; chunk; chunk = chunk->next) {
    if (chunk->id != Words::chunk_id || chunk->size != sizeof(Words)) continue;
    return static_cast<Words *>(chunk->data);
  }
  return nullptr;
}

Words *add_words(StreamState *state) {
  auto *words = static_cast<Words *>(malloc(sizeof(Words)));
  if (!words) return nullptr;
  *words = {.taken = Words::length, .word = {}};
  if (__vxsAddChunk(state, Words::chunk_id, words, sizeof(Words)) == VXS_STATUS_OK) return words;
  free(words);
  return nullptr;
}

}  // namespace

PyObject *capsule(PyObject *object, void *) {
  Stream *self = ready(object);
  if (!self) return nullptr;
  if (!gives_full_words(self)) {
    PyErr_SetString(PyExc_AttributeError,
                    "NumPy's Generator needs words of 32 random bits, which this stream lacks");
    return nullptr;
  }
  const Guard guard(self);
  if (!self->words) self->words = add_words(self->state);
  if (!self->words) return PyErr_NoMemory();
  self->generator = {self, next_two_words, next_word, next_double, next_raw};
  return PyCapsule_New(&self->generator, "BitGenerator", nullptr);
}

bool adopt(Stream *self, StreamState *state) {
  Words *words = find_words(state);
  if (!words && self->generator.state) words = add_words(state);
  if (!words && self->generator.state) {
    __vxsDeleteStream(&state);
    PyErr_NoMemory();
    return false;
  }
  if (self->state) __vxsDeleteStream(&self->state);
  self->state = state;
  self->words = words;
  return true;
}

}  // namespace qkr::random
