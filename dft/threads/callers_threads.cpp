// Slots are taken and given back under the lock of the threaded transforms.
#include "dft/threads/callers_threads.h"

#include <qkr/service.h>

namespace qkr::dft {

CallersThread::CallersThread(const DftDescriptor *head) : head_(head), slot_(-1) {
  qkr_serv_dft_lock();
  for (int32_t i = 0; i < head->configuration.thread_limit && slot_ < 0; ++i)
    if (!head->thread_slots[i]) head->thread_slots[slot_ = i] = 1;
  qkr_serv_dft_unlock();
}

CallersThread::~CallersThread() {
  if (!has_slot()) return;
  qkr_serv_dft_lock();
  head_->thread_slots[slot_] = 0;
  qkr_serv_dft_unlock();
}

}  // namespace qkr::dft
