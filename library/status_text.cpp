// A text for every status of every room.
#include <qkr/convcorr.h>
#include <qkr/dft.h>
#include <qkr/library.h>
#include <qkr/sigfft.h>
#include <qkr/streams.h>
#include <qkr/vecmath_control.h>

namespace {

struct Text {
  int32_t status;
  const char *text;
};

constexpr Text vecmath[] = {
    {VXM_STATUS_BADMEM, "null pointer"},
    {VXM_STATUS_BADSIZE, "bad array size"},
    {VXM_STATUS_OK, "no error"},
    {VXM_STATUS_ERRDOM, "argument out of domain"},
    {VXM_STATUS_SING, "argument at a singularity"},
    {VXM_STATUS_OVERFLOW, "result too large"},
    {VXM_STATUS_UNDERFLOW, "result too small"},
};

constexpr Text streams[] = {
    {VXS_STATUS_OK, "no error"},
    {VXS_STATUS_BAD_METHOD, "the function has no such method"},
    {VXS_STATUS_BAD_ARGUMENT, "bad argument"},
    {VXS_STATUS_NO_MEMORY, "no memory"},
    {VXS_STATUS_NULL_POINTER, "null pointer, or a stream without what it draws from"},
    {VXS_STATUS_BAD_GENERATOR, "no such generator"},
    {VXS_STATUS_NO_LEAPFROG, "the generator cannot leapfrog this way"},
    {VXS_STATUS_NO_SKIP_AHEAD, "the generator cannot skip ahead this way"},
    {VXS_STATUS_OTHER_GENERATOR, "the streams are of different generators"},
    {VXS_STATUS_BAD_STATE_SIZE, "generator record: bad size of the state"},
    {VXS_STATUS_BAD_WORD_SIZE, "generator record: bad word size"},
    {VXS_STATUS_BAD_SEED_WORDS, "generator record: bad number of seed words"},
    {VXS_STATUS_BAD_BITS, "generator record: bad number of bits"},
    {VXS_STATUS_FILE_CLOSE, "the stream file could not be closed"},
    {VXS_STATUS_FILE_OPEN, "the stream file could not be opened"},
    {VXS_STATUS_FILE_WRITE, "the stream file could not be written"},
    {VXS_STATUS_FILE_READ, "the stream file could not be read"},
    {VXS_STATUS_FILE_FORMAT, "not a sound stream file"},
    {VXS_STATUS_FILE_VERSION, "stream file of another version"},
    {VXS_STATUS_BAD_UPDATE, "abstract stream: the callback reported an impossible count"},
    {VXS_STATUS_NO_NUMBERS, "abstract stream: the callback gave no numbers"},
    {VXS_STATUS_OTHER_TYPE, "abstract stream: its numbers are of another type"},
};

constexpr Text sigfft[] = {
    {zprStsNoErr, "no error"},
    {zprStsSizeErr, "a length is out of its range"},
    {zprStsNullPtrErr, "null pointer"},
    {zprStsMemAllocErr, "no memory"},
    {zprStsFftOrderErr, "the order of the transform is out of its range"},
    {zprStsFftFlagErr, "no such normalisation flag"},
    {zprStsContextMatchErr, "the plan is of another kind or set, or has been released"},
};

constexpr Text dft[] = {
    {DFTX_NO_ERROR, "no error"},
    {DFTX_MEMORY_ERROR, "no memory"},
    {DFTX_NOT_COMMITTED, "the descriptor is not committed"},
    {DFTX_INVALID_ARGUMENT, "invalid argument"},
    {DFTX_BAD_DESCRIPTOR, "not a descriptor"},
    {DFTX_UNIMPLEMENTED, "not implemented"},
    {DFTX_ENGINE_ERROR, "the transforms beneath refused"},
    {DFTX_NO_FREE_SLOT, "more threads at a time than the limit of the descriptor"},
};

constexpr Text convcorr[] = {
    {VXS_CC_OK, "no error"},
    {VXS_CC_ERROR_MEM, "no memory for the task"},
    {VXS_CC_ERROR_NULL, "null pointer"},
    {VXS_CC_ERROR_NOT_IMPLEMENTED, "not implemented"},
    {VXS_CC_ERROR_ALLOC, "no memory for the execution"},
    {VXS_CC_ERROR_BAD_PARAM_ID, "no such parameter"},
    {VXS_CC_ERROR_READONLY_PARAM, "a parameter that cannot be edited"},
    {VXS_CC_ERROR_NO_DELETER, "the extension cannot be deleted"},
    {VXS_CC_ERROR_COPY_HOOK, "the extension could not be copied"},
    {VXS_CC_ERROR_DELETE_HOOK, "the extension could not be deleted"},
    {VXS_CC_ERROR_DIMS, "bad number of dimensions"},
    {VXS_CC_ERROR_START, "the start lies outside of the result"},
    {VXS_CC_ERROR_DECIMATION, "bad decimation"},
    {VXS_CC_ERROR_XSHAPE, "bad shape of x"},
    {VXS_CC_ERROR_YSHAPE, "bad shape of y"},
    {VXS_CC_ERROR_ZSHAPE, "bad shape of z"},
    {VXS_CC_ERROR_ZSTRIDE, "bad stride of z"},
    {VXS_CC_ERROR_X, "x is null"},
    {VXS_CC_ERROR_Y, "y is null"},
    {VXS_CC_ERROR_Z, "z is null"},
    {VXS_CC_ERROR_FFT, "a transform failed"},
};

template <int count>
const char *text_of(const Text (&texts)[count], int32_t status) {
  for (const Text &row : texts) {
    if (row.status == status) return row.text;
  }
  return "unknown status";
}

}  // namespace

extern "C" const char *qkr_status_text(int32_t room, int32_t status) {
  switch (room) {
    case QKR_ROOM_VECMATH:
      return text_of(vecmath, status);
    case QKR_ROOM_STREAMS:
      return text_of(streams, status);
    case QKR_ROOM_SIGFFT:
      return text_of(sigfft, status);
    case QKR_ROOM_DFT:
      return text_of(dft, status);
    case QKR_ROOM_CONVCORR:
      return text_of(convcorr, status);
    default:
      return "unknown room";
  }
}
