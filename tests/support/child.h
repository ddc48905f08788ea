// Runs a function in a forked child with an environment of its own: for decisions that are made once a
// process.
#pragma once

#include <map>
#include <stdlib.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using Environment = std::map<std::string, std::string>;

// The function's result, which must lie in 0 to 127, or -1 when the child did not come to its end.
template <typename Function>
int in_child(const Environment &environment, Function function) {
  const pid_t child = fork();
  if (child == 0) {
    clearenv();
    for (const auto &[name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    _exit(function());
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
