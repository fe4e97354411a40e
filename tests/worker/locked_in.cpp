// Locks itself in as the worker program does and then tries what an attacker would: the argument
// names the attempt. Exit code 0: it worked; otherwise the system's error number. 200: the system
// has no such protection. 201: it refuses to go on without a filter of system calls, 202: without
// something else. An argument that begins with "no-" names what the system is made to refuse.

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>

#include "worker/sandbox.h"

namespace {

constexpr int kNoProtection = 200;
constexpr int kNoFilter = 201;
constexpr int kNotLockedIn = 202;

constexpr scmp_arg_cmp FirstIs(uint64_t value) {
  return {0, SCMP_CMP_EQ, value, 0};
}

/// Makes the system refuse what locks a process in. Returns false if it cannot.
bool Refuse(const std::string& what) {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
  const uint32_t refused = SCMP_ACT_ERRNO(EINVAL);
  int result = 0;
  if (what == "no-filter") {
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(seccomp), 0);
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(prctl), 1, FirstIs(PR_SET_SECCOMP));
  }
  if (what == "no-limits") {
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(setrlimit), 0);
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(prlimit64), 0);
  }
  if (what == "no-undumpable") {
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(prctl), 1, FirstIs(PR_SET_DUMPABLE));
  }
  if (what == "no-privileges") {
    result |= seccomp_attr_set(filter, SCMP_FLTATR_CTL_NNP, 0);
    result |= seccomp_rule_add(filter, refused, SCMP_SYS(prctl), 1, FirstIs(PR_SET_NO_NEW_PRIVS));
  }
  return result == 0 && seccomp_load(filter) == 0;
}

int Result(long result) {
  return result < 0 ? errno : 0;
}

int Open(const char* name, int flags) {
  return Result(open(name, flags, 0600));
}

int TakeMemory(size_t bytes) {
  void* const memory =
      mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? errno : 0;
}

int ShareMemory() {
  void* const memory =
      mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? errno : 0;
}

int OpenMemoryFiles(int count) {
  for (int i = 0; i < count; ++i) {
    if (memfd_create("x", 0) < 0) return errno;
  }
  return 0;
}

int GrowMemoryFile(off_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  return Result(ftruncate(memfd_create("x", 0), bytes));
}

int MakeCode() {
  void* const page =
      mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return Result(mprotect(page, 4096, PROT_READ | PROT_EXEC));
}

int StartThread() {
  int done = 0;
  std::thread([&] { done = 1; }).join();
  return done == 1 ? 0 : 1;
}

int Try(const std::string& what) {
  char* const arguments[] = {nullptr};
  if (what == "read-password") return Open("/etc/passwd", O_RDONLY);
  if (what == "read-fonts") return Open("/usr/share/fonts", O_RDONLY | O_DIRECTORY);
  if (what == "write-new") return Open("/tmp/rasterkit-locked-in", O_WRONLY | O_CREAT);
  if (what == "write-null") return Open("/dev/null", O_WRONLY);
  if (what == "truncate") return Result(truncate("/tmp", 0));
  if (what == "remove") return Result(unlink("/tmp/rasterkit-locked-in"));
  if (what == "socket") return Result(socket(AF_INET, SOCK_STREAM, 0));
  if (what == "socket-pair") {
    int ends[2];
    return Result(socketpair(AF_UNIX, SOCK_STREAM, 0, ends));
  }
  if (what == "fork")
    return Result(syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr));
  if (what == "clone3") return Result(syscall(SYS_clone3, nullptr, 0));
  if (what == "execute") return Result(execve("/bin/true", arguments, arguments));
  if (what == "trace") return Result(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr));
  if (what == "kill-parent") return Result(kill(getppid(), 0));
  if (what == "code") return MakeCode();
  if (what == "core") return Result(prctl(PR_SET_DUMPABLE, 1, 0, 0, 0));
  if (what == "thread") return StartThread();
  if (what == "memory-1-mib") return TakeMemory(size_t{1} << 20);
  if (what == "memory-1-gib") return TakeMemory(size_t{1} << 30);
  if (what == "shared-memory") return ShareMemory();
  if (what == "memory-files") return OpenMemoryFiles(24);
  if (what == "memory-file") return GrowMemoryFile(off_t{1} << 20);
  if (what == "large-memory-file") return GrowMemoryFile(off_t{1} << 30);
  return 255;
}

}  // namespace

int main(int, char** arguments) {
  using namespace rasterkit;
  const std::string what = arguments[1];
  detail::WorkerSetup setup;
  setup.limits.pictureBytes = uint64_t{64} << 20;
  if (what.starts_with("no-") && !Refuse(what)) return kNoProtection;
  detail::WorkerProtection protection;
  try {
    protection = worker::LockIn(setup);
  } catch (const UnsupportedError&) {
    _exit(kNoFilter);
  } catch (const Error&) {
    _exit(kNotLockedIn);
  }
  if (what == "read-password" && protection.landlockVersion == 0) return kNoProtection;
  // The leak sanitizer would start a process at a normal exit.
  _exit(Try(what));
}
