// What the child of a fork does first.
#pragma once

// The C library's way in for shared objects; its own pthread_atfork needs start-up code that this one has
// not.
extern "C" int __register_atfork(void (*prepare)(), void (*parent)(), void (*child)(), void *object);

namespace qkr {

// In the child, handlers run in the order in which they were entered, but none that came when the fork had
// begun.
inline void call_in_child(void (*handler)()) { __register_atfork(nullptr, nullptr, handler, nullptr); }

}  // namespace qkr
