// An array that is spread over ranks, each of which holds a box of it, and its way to other boxes: one
// MPI_Alltoallw, whose derived types pick what two boxes have in common out of one array and put it into the
// other. Nothing is packed by hand, and boxes may be of any sizes, also empty.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "session.h"

// Indices from `start` on, `size` of them, in three dimensions; elements lie densely, the last index fastest.
struct Box {
  std::array<int, 3> start, size;

  size_t elements() const { return static_cast<size_t>(size[0]) * size[1] * size[2]; }
};

inline Box common(const Box &a, const Box &b) {
  Box both;
  for (int d = 0; d < 3; ++d) {
    both.start[d] = std::max(a.start[d], b.start[d]);
    both.size[d] = std::max(0, std::min(a.start[d] + a.size[d], b.start[d] + b.size[d]) - both.start[d]);
  }
  return both;
}

class Redistribution {
 public:
  // Every one of `members` gives the box that it has, and the one that it is to get.
  Redistribution(MPI_Comm members, const Box &before, const Box &after, MPI_Datatype element)
      : members_(members) {
    struct Pair {
      Box before, after;
    };
    const Pair mine{before, after};
    int ranks;
    MPI_Comm_size(members, &ranks);
    std::vector<Pair> of(ranks);
    MPI_Allgather(&mine, sizeof mine, MPI_BYTE, of.data(), sizeof mine, MPI_BYTE, members);
    for (const Pair &other : of) {
      had_.add(before, common(before, other.after), element);
      get_.add(after, common(after, other.before), element);
    }
    starts_.resize(ranks);
  }

  // Arrays of the boxes before and after, which must not overlap.
  void forward(const void *before, void *after) const { exchange(had_, before, get_, after); }
  void backward(const void *after, void *before) const { exchange(get_, after, had_, before); }

 private:
  // What goes to, or comes from, each of the others.
  struct Pieces {
    std::vector<int> counts;
    std::vector<MPI_Datatype> types;

    Pieces() = default;
    Pieces(const Pieces &) = delete;
    ~Pieces() {
      for (size_t i = 0; i < types.size(); ++i)
        if (counts[i]) MPI_Type_free(&types[i]);
    }
    void add(const Box &whole, const Box &part, MPI_Datatype element) {
      MPI_Datatype type = element;
      if (part.elements()) {
        std::array<int, 3> offset;
        for (int d = 0; d < 3; ++d) offset[d] = part.start[d] - whole.start[d];
        MPI_Type_create_subarray(3, whole.size.data(), part.size.data(), offset.data(), MPI_ORDER_C, element,
                                 &type);
        MPI_Type_commit(&type);
      }
      counts.push_back(part.elements() > 0);
      types.push_back(type);
    }
  };

  void exchange(const Pieces &send, const void *from, const Pieces &receive, void *to) const {
    MPI_Alltoallw(from, send.counts.data(), starts_.data(), send.types.data(), to, receive.counts.data(),
                  starts_.data(), receive.types.data(), members_);
  }

  MPI_Comm members_;
  Pieces had_, get_;
  std::vector<int> starts_;  // zeros: the types say where the pieces lie
};
