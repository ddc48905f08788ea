// A hash of what every generator and every distribution draws: one line for each generator or distribution
// with its parameters and each form of number, which must be the same at all levels, with every compiler
// and on every processor.
//   draws_digest [COUNT]
#include <cstdlib>

#include "tests/distributions/recorded_stream.h"
#include "tests/streams/generators.h"
#include "tests/support/digest.h"
#include "tests/support/distribution_cases.h"

namespace {

using namespace qkr::tests;

// Requests of different lengths, so that vectors' tails and numbers held over take part.
template <class Draw>
uint64_t hash_of_requests(int32_t count, Draw draw) {
  Hash hash;
  for (const int32_t n : {1, 2, 7, 64, count, 33, 1}) hash.add(draw(n));
  return hash.value();
}

void digest_of_generators(int32_t count) {
  for (const Generator &generator : all_generators()) {
    const auto print = [&](const char *form, auto draw) {
      print_digest(std::string(generator.name) + form, [&] {
        const Stream stream = generator.start();
        return hash_of_requests(count, [&](int32_t n) { return draw(stream, n); });
      });
    };
    print(" words", [](const Stream &stream, int32_t n) { return draw_words(stream, n); });
    print(" double", [](const Stream &stream, int32_t n) { return draw_doubles(stream, n, -1, 3); });
    print(" single", [](const Stream &stream, int32_t n) { return draw_singles(stream, n, -1, 3); });
  }
}

// Of a generator's numbers, and of recorded ones, among them all that are awkward.
template <class T>
void digest_of_distributions(const char *type, int32_t count, bool recorded) {
  for (const Case &a_case : cases<T>())
    print_digest(name_of<T>(a_case) + " method " + std::to_string(a_case.method) + type, [&] {
      const Stream stream = recorded ? recorded_stream() : new_stream(0x100000, {777});
      return hash_of_requests(count, [&](int32_t n) {
        std::vector<T> numbers(static_cast<size_t>(n));
        if (draw(a_case, stream.get(), n, numbers.data()) != VXS_STATUS_OK) ++differences;
        return numbers;
      });
    });
}

}  // namespace

int main(int count_of_arguments, char **arguments) {
  const int32_t count = count_of_arguments > 1 ? atoi(arguments[1]) : 5000;
  digest_of_generators(count);
  digest_of_distributions<double>(" double", count, false);
  digest_of_distributions<float>(" single", count, false);
  digest_of_distributions<int32_t>(" whole", count, false);
  digest_of_distributions<int32_t>(" whole, recorded", count, true);
  return differences != 0;
}
