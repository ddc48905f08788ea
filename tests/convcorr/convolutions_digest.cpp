// A hash of the results of every execution function that computes: one line for each kind, method, form and
// shape, which must be the same at all levels, with every compiler, on every processor and with every C
// library.
#include <cstdio>

#include "tasks.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

uint64_t hash_of(const void *bytes, size_t count) {
  uint64_t hash = 0xCBF29CE484222325;
  for (size_t i = 0; i < count; ++i) hash = (hash ^ static_cast<const uint8_t *>(bytes)[i]) * 0x100000001B3;
  return hash;
}

int differences;

template <class Form>
void print_digests(const char *form) {
  for (Operation o : shapes)
    for (const int32_t kind : {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION})
      for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT}) {
        o.kind = kind;
        o.zshape = whole_result(o);
        uint64_t first = 0;
        for_each_level([&](const char *level) {
          Arrays<Form> arrays(o);
          for (auto *numbers : {&arrays.x, &arrays.y})  // the same with every C++ library
            for (size_t i = 0; i < numbers->size(); ++i)
              (*numbers)[i] =
                  static_cast<typename Form::Data>(static_cast<double>(i * 7919 % 1009) / 1009 - 0.4);
          const int32_t status = execute(o, mode, arrays);
          const uint64_t hash = hash_of(arrays.z.data(), arrays.z.size() * sizeof arrays.z[0]);
          if (!first) {
            first = hash;
            printf("%s %s %s %d %016llx\n", form, mode == VXS_CC_DIRECT ? "direct" : "transform",
                   o.name().c_str(), static_cast<int>(status), static_cast<unsigned long long>(hash));
          } else if (hash != first) {
            printf("  differs at %s: %016llx\n", level, static_cast<unsigned long long>(hash));
            ++differences;
          }
        });
      }
}

}  // namespace

int main() {
  print_digests<DD>("DD");
  print_digests<SD>("SD");
  print_digests<SS>("SS");
  return differences != 0;
}
