#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_process.h>

#ifndef CLONE_PIDFD
#define CLONE_PIDFD 0x00001000
#endif
#ifndef P_PIDFD
#define P_PIDFD 3
#endif

namespace rasterkit::detail {
namespace {

/// The child between clone and exec runs in this process's memory: only system calls, no code that
/// a sanitizer watches.
#if defined(__clang__)
#define RASTERKIT_UNWATCHED __attribute__((no_sanitize("address", "thread", "undefined")))
#else
#define RASTERKIT_UNWATCHED \
  __attribute__((no_sanitize("address"), no_sanitize("thread"), no_sanitize("undefined")))
#endif

constexpr int kWorkerSocket = 3;
constexpr size_t kChildStackBytes = 64 * 1024;
/// Bytes of the kernel's signal set.
constexpr size_t kSignalSetBytes = 8;
/// No process has descriptors above, unless an administrator raised the kernel's own limit.
constexpr rlim_t kMostFiles = 1 << 20;
/// Freeing a large process can take longer than a user should wait.
constexpr int kWaitForEndMilliseconds = 30;

struct ChildWork {
  const char* program;
  char* const* arguments;
  char* const* environment;
  int socket;
  int null;
  /// No descriptor is above.
  int mostFiles;
  /// In memory that both processes share.
  int* error;
};

/// Older kernels cannot close a range, and filters around a container may forbid it.
RASTERKIT_UNWATCHED bool CloseFrom(int first, int most) {
  if (syscall(SYS_close_range, first, UINT_MAX, 0) == 0) return true;
  if (errno != ENOSYS && errno != EPERM) return false;
  for (int handle = first; handle < most; ++handle) syscall(SYS_close, handle);
  return true;
}

RASTERKIT_UNWATCHED int ChildMain(void* given) {
  auto* const work = static_cast<ChildWork*>(given);
  // A session of its own: no terminal, and none of its signals.
  syscall(SYS_setsid);
  // A zeroed action of the kernel is the default one; its size differs by processor.
  alignas(16) const unsigned char kDefault[64] = {};
  for (int signal = 1; signal < NSIG; ++signal) {
    syscall(SYS_rt_sigaction, signal, kDefault, nullptr, kSignalSetBytes);
  }
#ifdef RASTERKIT_SANITIZED
  // Reports of a sanitizer go where the program's own ones go.
  const bool keepsErrors = true;
#else
  const bool keepsErrors = false;
#endif
  const bool isSetUp = syscall(SYS_dup3, work->socket, kWorkerSocket, 0) == kWorkerSocket &&
                       syscall(SYS_dup3, work->null, 0, 0) == 0 &&
                       syscall(SYS_dup3, work->null, 1, 0) == 1 &&
                       (keepsErrors || syscall(SYS_dup3, work->null, 2, 0) == 2) &&
                       CloseFrom(kWorkerSocket + 1, work->mostFiles);
  if (isSetUp) {
    syscall(SYS_rt_sigprocmask, SIG_SETMASK, kDefault, nullptr, kSignalSetBytes);
    syscall(SYS_execve, work->program, work->arguments, work->environment);
  }
  *work->error = errno;
  syscall(SYS_exit_group, 127);
  return 0;
}

/// A handle above those that the child replaces.
SystemFile HighHandle(int handle) {
  SystemFile high(fcntl(handle, F_DUPFD_CLOEXEC, kWorkerSocket + 1));
  if (!high.IsOpen()) throw Error(std::string("too many open files: ") + std::strerror(errno));
  return high;
}

/// Stack of the child, which needs it until it runs its own program, and its error number.
class ChildStack {
 public:
  ChildStack()
      : memory_(mmap(nullptr, kChildStackBytes, PROT_READ | PROT_WRITE,
                     MAP_SHARED | MAP_ANONYMOUS | MAP_STACK, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
  }
  ~ChildStack() { munmap(memory_, kChildStackBytes); }
  ChildStack(const ChildStack&) = delete;
  ChildStack& operator=(const ChildStack&) = delete;

  void* Top() const { return static_cast<char*>(memory_) + kChildStackBytes; }
  int* Error() const { return static_cast<int*>(memory_); }

 private:
  void* memory_;
};

/// No handler of this process may run in the child, which shares its memory.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_{};
};

/// Returns the number of the new process; it has run its program, or has ended, by then.
pid_t Clone(const ChildStack& stack, ChildWork& work, int& handle) {
#ifdef RASTERKIT_SANITIZED
  // The thread sanitizer takes part in `clone` and cannot follow a child in the same memory.
  const unsigned long flags = CLONE_VFORK | CLONE_PIDFD | SIGCHLD;
  const auto process = static_cast<pid_t>(syscall(SYS_clone, flags, nullptr, &handle, nullptr, 0));
  static_cast<void>(stack);
  if (process == 0) ChildMain(&work);
  return process;
#else
  const int flags = CLONE_VM | CLONE_VFORK | CLONE_PIDFD | SIGCHLD;
  return clone(ChildMain, stack.Top(), flags, &work, &handle);
#endif
}

ProcessEnd Collect(int process) {
  siginfo_t info{};
  int result = 0;
  do {
    result =
        waitid(static_cast<idtype_t>(P_PIDFD), static_cast<id_t>(process), &info, WEXITED | __WALL);
  } while (result != 0 && errno == EINTR);
  if (result != 0) return {};
  const bool exited = info.si_code == CLD_EXITED;
  return {exited ? ProcessEnd::Kind::exited : ProcessEnd::Kind::signaled, info.si_status};
}

int MostFiles() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return kMostFiles;
  return static_cast<int>(std::min(limit.rlim_max, kMostFiles));
}

/// Returns the handle of the new process.
SystemFile Start(const std::string& program, int socket, int null) {
  std::string name = program;
  std::array<char*, 2> arguments{name.data(), nullptr};
  const ChildStack stack;
  ChildWork work{program.c_str(), arguments.data(), environ, socket, null,
                 MostFiles(),     stack.Error()};
  int handle = -1;
  int error = 0;
  {
    const BlockedSignals blocked;
    if (Clone(stack, work, handle) < 0) error = errno;
  }
  SystemFile process(handle);
  if (error == 0 && *work.error == 0) return process;
  if (process.IsOpen()) {
    Collect(handle);
    error = *work.error;
  }
  throw Error(program + " cannot be started: " + std::generic_category().message(error));
}

bool IsReadable(int handle, int milliseconds) {
  pollfd wait{handle, POLLIN, 0};
  return poll(&wait, 1, milliseconds) > 0;
}

}  // namespace

WorkerProcess::WorkerProcess(const std::string& program) : owner_(getpid()) {
  auto [here, there] = WorkerChannel::Pair();
  const SystemFile socket = HighHandle(there.Handle());
  there.Close();
  const SystemFile opened = OpenAt(AT_FDCWD, "/dev/null", O_RDWR);
  if (!opened.IsOpen()) ThrowSystemError("cannot be opened", errno, "/dev/null");
  const SystemFile null = HighHandle(opened.Handle());
  process_ = Start(program, socket.Handle(), null.Handle());
  channel_ = std::move(here);
}

WorkerProcess::~WorkerProcess() {
  // A copy of this process, made by fork, owns none of its children.
  if (owner_ == getpid()) End();
}

ProcessEnd WorkerProcess::End() {
  if (std::exchange(hasEnded_, true)) return {};
  channel_.Close();
  syscall(SYS_pidfd_send_signal, process_.Handle(), SIGKILL, nullptr, 0);
  if (IsReadable(process_.Handle(), kWaitForEndMilliseconds)) return Collect(process_.Handle());
  try {
    const int handle = process_.Handle();
    std::thread([handle] {
      const SystemFile process(handle);
      Collect(process.Handle());
    }).detach();
  } catch (const std::exception&) {
    return Collect(process_.Handle());
  }
  // The handle belongs to the thread now.
  process_.Release();
  return {};
}

}  // namespace rasterkit::detail
