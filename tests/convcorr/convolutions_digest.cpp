// A hash of the results of every execution function that computes: one line for each kind, method, form and
// shape, which must be the same at all levels, with every compiler, on every processor and with every C
// library.
#include "tasks.h"
#include "tests/support/digest.h"

namespace {

using namespace qkr::tests;

template <class Form>
void print_digests(const std::string &form) {
  for (const Operation &o : whole_operations())
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT})
      print_digest(form + (mode == VXS_CC_DIRECT ? " direct " : " transform ") + o.name(), [&] {
        Arrays<Form> arrays(o);
        for (auto *numbers : {&arrays.x, &arrays.y})  // the same with every C++ library
          for (size_t i = 0; i < numbers->size(); ++i)
            (*numbers)[i] =
                static_cast<typename Form::Data>(static_cast<double>(i * 7919 % 1009) / 1009 - 0.4);
        if (execute(o, mode, arrays) != VXS_CC_OK) ++differences;
        Hash hash;
        hash.add(arrays.z);
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
