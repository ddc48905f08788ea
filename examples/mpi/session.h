// What the programs of this folder share: the life of MPI, equal parts of some work, and an end for all ranks
// when one fails. Errors of MPI itself end the program, which is its default.
#pragma once
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mpi.h>
#include <string>

class Session {
 public:
  Session(int *argc, char ***argv) {
    MPI_Init(argc, argv);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks_);
  }
  ~Session() { MPI_Finalize(); }
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  int rank() const { return rank_; }
  int ranks() const { return ranks_; }

 private:
  int rank_, ranks_;
};

[[noreturn]] inline void fail(const std::string &message) {
  std::fprintf(stderr, "%s\n", message.c_str());
  MPI_Abort(MPI_COMM_WORLD, 1);
  std::abort();
}

inline void check(int32_t status, const char *what) {
  if (status != 0) fail(std::string(what) + ": status " + std::to_string(status));
}

// Where part number `part` of `parts` begins, when `count` things are dealt out as evenly as they go. It ends
// where the next one begins.
inline int part_start(int count, int part, int parts) {
  return static_cast<int>(static_cast<int64_t>(count) * part / parts);
}
