// Back ends: the ways to transform the lines of one dimension in one direction. Each is one file with two
// answers, whether it applies to a record and making it; commit takes the first that applies.
#pragma once

#include "dft/descriptor/record.h"

namespace qkr::dft {

// Lines of this record are to be transformed in this direction.
struct Wish {
  const DftDescriptor *head;
  DftDescriptor *record;
  Direction direction;
};

struct BackEnd {
  bool (*applies)(const Wish &wish);
  int32_t (*make)(const Wish &wish);  // into the record, with what the lines need; a code
};

// In the order in which commit tries them.
extern const BackEnd complex_codelets, scrambled_engine, complex_engine;
extern const BackEnd real_codelets, real_engine;
extern const BackEnd lanes, line_by_line;

// One of two by the precision: transforms are templates over the element type.
template <class Entry>
Entry of_precision(const Wish &wish, Entry single, Entry in_double) {
  return wish.head->precision == DFTX_DOUBLE ? in_double : single;
}

template <class T>
T scale_of(const DftDescriptor *record, Direction direction) {
  return static_cast<T>(record->scale[direction]);
}

}  // namespace qkr::dft
