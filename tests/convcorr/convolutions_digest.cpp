// A hash of the results of tasks: one line for each operation, method and form, which must be the same at all
// levels, with every compiler, on every processor and with every C library.
#include "tasks.h"
#include "tests/support/digest.h"

namespace {

using namespace qkr::tests;

template <class Form>
void print_digests(const std::string &form) {
  for (const Operation &o : operations(8))
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT})
      print_digest(form + (mode == VXS_CC_DIRECT ? " direct " : " transform ") + o.name(), [&] {
        Arrays<Form> arrays(o);
        if (execute(o, mode, arrays) != VXS_CC_OK) ++differences;
        Hash hash;
        hash.add(arrays.result());
        return hash.value();
      });
}

}  // namespace

int main() {
  print_digests<DD>("DD");
  print_digests<SD>("SD");
  print_digests<SS>("SS");
  return differences != 0;
}
