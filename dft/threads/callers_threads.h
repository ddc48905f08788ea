// The caller's own threads on one descriptor: each takes a slot, and with it a slice of the work memory, for
// the time of its call.
#pragma once

#include "dft/descriptor/record.h"

namespace qkr::dft {

class CallersThread {
  const DftDescriptor *head_;
  int32_t slot_;

 public:
  explicit CallersThread(const DftDescriptor *head);
  CallersThread(const CallersThread &) = delete;
  ~CallersThread();
  bool has_slot() const { return slot_ >= 0; }
  uint8_t *work() const { return head_->work_buffer + slot_ * head_->slice; }
};

}  // namespace qkr::dft
