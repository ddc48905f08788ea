// The life of a task: creating, editing, copying, committing, deleting, and its status.
#include "convcorr/problem.h"

using qkr::convcorr::largest_dims;

namespace {

// A task with another number of dimensions never executes; what does not fit into it is left out.
void convgate_copy(int32_t dims, const int32_t *source, int32_t *words, int32_t *&pointer) {
  pointer = source ? words : nullptr;
  for (int32_t d = 0; source && d < dims && d < largest_dims; ++d) words[d] = source[d];
}

bool is_known(int32_t parameter) { return parameter >= 1 && parameter <= 19; }

int32_t edit(ConvCorrTask *task, int32_t parameter, const int32_t *value) {
  switch (parameter) {
    case VXS_CC_PARAM_MODE:
      task->mode = *value;
      return VXS_CC_OK;
    case VXS_CC_PARAM_OPTION_WORD:
      task->option_word = *value;
      return VXS_CC_OK;
    case VXS_CC_PARAM_START:
      convgate_copy(task->dims, value, task->start_data, task->start);
      return VXS_CC_OK;
    case VXS_CC_PARAM_DECIMATION:
      convgate_copy(task->dims, value, task->decimation_data, task->decimation);
      return VXS_CC_OK;
    case VXS_CC_PARAM_INTERNAL_PRECISION:
      task->internal_precision = *value;
      return VXS_CC_OK;
    default:
      return is_known(parameter) ? VXS_CC_ERROR_READONLY_PARAM : VXS_CC_ERROR_BAD_PARAM_ID;
  }
}

int32_t release_extension(ConvCorrTask *task) {
  if (!task->extension) return VXS_CC_OK;
  const int32_t status =
      task->extension_delete ? task->extension_delete(task, task->extension) : VXS_CC_ERROR_NO_DELETER;
  free(task->extension);
  return status;
}

}  // namespace

int32_t __vxsNewTask(ConvCorrTask **task, int32_t kind, int32_t task_word, int32_t mode, int32_t data_word,
                     int32_t precision, int32_t dims, const int32_t *xshape, const int32_t *yshape,
                     const int32_t *zshape) {
  return __vxsNewTaskX(task, kind, task_word, mode, data_word, precision, dims, xshape, yshape, zshape,
                       nullptr, nullptr);
}

int32_t __vxsNewTaskX(ConvCorrTask **task, int32_t kind, int32_t task_word, int32_t mode, int32_t data_word,
                      int32_t precision, int32_t dims, const int32_t *xshape, const int32_t *yshape,
                      const int32_t *zshape, const void *x, const int32_t *xstride) {
  if (!task) return VXS_CC_ERROR_NULL;
  const auto made = static_cast<ConvCorrTask *>(malloc(sizeof(ConvCorrTask)));
  if (!made) return VXS_CC_ERROR_MEM;
  *made = {};
  made->kind = kind;
  made->task_word = task_word;
  made->mode = mode;
  made->data_word = data_word;
  made->data_precision = made->internal_precision = precision;
  made->dims = dims;
  convgate_copy(dims, xshape, made->xshape_data, made->xshape);
  convgate_copy(dims, yshape, made->yshape_data, made->yshape);
  convgate_copy(dims, zshape, made->zshape_data, made->zshape);
  convgate_copy(dims, xstride, made->xstride_data, made->xstride);
  made->x = x;
  *task = made;
  return VXS_CC_OK;
}

int32_t __vxsEditTask(ConvCorrTask *task, int32_t parameter, const void *value) {
  if (!task) return VXS_CC_ERROR_NULL;
  if (!task->status)
    task->status = value ? edit(task, parameter, static_cast<const int32_t *>(value)) : VXS_CC_ERROR_NULL;
  task->committed = 0;
  return task->status;
}

int32_t __vxsCopyTask(ConvCorrTask **task, const ConvCorrTask *source) {
  if (!task || !source) return VXS_CC_ERROR_NULL;
  if (source->status) return source->status;
  const auto copy = static_cast<ConvCorrTask *>(malloc(sizeof(ConvCorrTask)));
  if (!copy) return VXS_CC_ERROR_MEM;
  *copy = *source;
  convgate_copy(source->dims, source->start, copy->start_data, copy->start);
  convgate_copy(source->dims, source->decimation, copy->decimation_data, copy->decimation);
  convgate_copy(source->dims, source->xshape, copy->xshape_data, copy->xshape);
  convgate_copy(source->dims, source->yshape, copy->yshape_data, copy->yshape);
  convgate_copy(source->dims, source->zshape, copy->zshape_data, copy->zshape);
  convgate_copy(source->dims, source->xstride, copy->xstride_data, copy->xstride);
  const auto copy_extension = source->extension_copy;
  if (source->extension && (!copy_extension || copy_extension(copy, &copy->extension, source->extension))) {
    free(copy);
    return VXS_CC_ERROR_COPY_HOOK;
  }
  copy->status = VXS_CC_OK;  // whatever the hook has done
  *task = copy;
  return VXS_CC_OK;
}

int32_t __vxsCommitTask(ConvCorrTask *task) {
  if (!task) return VXS_CC_ERROR_NULL;
  if (!task->status) task->committed = 1;
  return task->status;
}

int32_t __vxsDeleteTask(ConvCorrTask **task) {
  if (!task) return VXS_CC_ERROR_NULL;
  if (!*task) return VXS_CC_OK;
  const int32_t status = release_extension(*task);
  free(*task);
  *task = nullptr;
  return status ? VXS_CC_ERROR_DELETE_HOOK : VXS_CC_OK;
}

int32_t __vxsccGetStatus(const ConvCorrTask *task) { return task ? task->status : VXS_CC_ERROR_NULL; }

int32_t __vxsccSetStatus(ConvCorrTask *task, int32_t status) {
  if (!task) return VXS_CC_ERROR_NULL;
  const int32_t before = task->status;
  task->status = status;
  return before;
}
