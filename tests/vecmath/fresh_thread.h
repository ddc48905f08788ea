// Vector-math state is per-thread and cannot be set back to what it was: each case gets a thread of its own.
#pragma once

#include <thread>

template <typename Body>
void in_fresh_thread(Body body) {
  std::thread(body).join();
}
