#pragma once

#include <csignal>
#include <cstdint>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Child processes, for what would harm the test program itself.
namespace rasterkit::test {

/// Runs `work` in a child process and returns its exit code; 128 when a signal ended it.
template <typename Work>
int RunInChild(Work work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

/// As a full disk: the system refuses every byte of a file from `bytes` on. For a child process.
inline void LimitFileSize(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace rasterkit::test
