#include "worker/call_filter.h"

#include <array>
#include <cerrno>
#include <memory>

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <unistd.h>

namespace rasterkit::worker {
namespace {

using Filter = std::remove_pointer_t<scmp_filter_ctx>;

/// Calls without a condition. Names that a processor does not have are skipped by the library.
constexpr int kAllowed[] = {
    // Files that are open, and asking about names.
    SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(readv), SCMP_SYS(preadv), SCMP_SYS(preadv2),
    SCMP_SYS(write), SCMP_SYS(pwrite64), SCMP_SYS(writev), SCMP_SYS(lseek), SCMP_SYS(_llseek),
    SCMP_SYS(close), SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(newfstatat), SCMP_SYS(fstatat64),
    SCMP_SYS(stat), SCMP_SYS(stat64), SCMP_SYS(lstat), SCMP_SYS(lstat64), SCMP_SYS(statx),
    SCMP_SYS(statfs), SCMP_SYS(statfs64), SCMP_SYS(fstatfs), SCMP_SYS(fstatfs64), SCMP_SYS(access),
    SCMP_SYS(faccessat), SCMP_SYS(faccessat2), SCMP_SYS(readlink), SCMP_SYS(readlinkat),
    SCMP_SYS(getdents), SCMP_SYS(getdents64), SCMP_SYS(getcwd), SCMP_SYS(dup), SCMP_SYS(fadvise64),
    SCMP_SYS(fadvise64_64),
    // Memory without a name.
    SCMP_SYS(memfd_create), SCMP_SYS(ftruncate), SCMP_SYS(ftruncate64), SCMP_SYS(fallocate),
    SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise), SCMP_SYS(membarrier),
    // The socket to the host.
    SCMP_SYS(sendmsg), SCMP_SYS(recvmsg), SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(ppoll_time64),
    SCMP_SYS(eventfd2), SCMP_SYS(pipe2),
    // Threads, time and signals.
    SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(set_robust_list), SCMP_SYS(get_robust_list),
    SCMP_SYS(rseq), SCMP_SYS(set_tid_address), SCMP_SYS(set_thread_area), SCMP_SYS(arch_prctl),
    SCMP_SYS(gettid), SCMP_SYS(getpid), SCMP_SYS(getppid), SCMP_SYS(getuid), SCMP_SYS(geteuid),
    SCMP_SYS(getgid), SCMP_SYS(getegid), SCMP_SYS(getuid32), SCMP_SYS(geteuid32),
    SCMP_SYS(getgid32), SCMP_SYS(getegid32), SCMP_SYS(sched_yield), SCMP_SYS(sched_getaffinity),
    SCMP_SYS(sched_getparam), SCMP_SYS(sched_getscheduler), SCMP_SYS(sched_get_priority_max),
    SCMP_SYS(sched_get_priority_min), SCMP_SYS(getcpu), SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_gettime64), SCMP_SYS(clock_getres), SCMP_SYS(clock_getres_time64),
    SCMP_SYS(clock_nanosleep), SCMP_SYS(clock_nanosleep_time64), SCMP_SYS(nanosleep),
    SCMP_SYS(gettimeofday), SCMP_SYS(time), SCMP_SYS(getrusage), SCMP_SYS(times),
    SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigreturn),
    SCMP_SYS(sigaltstack), SCMP_SYS(restart_syscall), SCMP_SYS(exit), SCMP_SYS(exit_group),
    SCMP_SYS(getrlimit), SCMP_SYS(ugetrlimit), SCMP_SYS(uname), SCMP_SYS(sysinfo),
    SCMP_SYS(getrandom)};

/// Nothing that reads files tries these by chance.
constexpr int kDeadly[] = {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(ptrace),
                           SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev)};

class CallFilter {
 public:
  CallFilter() : filter_(seccomp_init(SCMP_ACT_ERRNO(EPERM))) {}
  ~CallFilter() {
    if (filter_ != nullptr) seccomp_release(filter_);
  }
  CallFilter(const CallFilter&) = delete;
  CallFilter& operator=(const CallFilter&) = delete;

  template <class... Conditions>
  void Rule(uint32_t action, int call, Conditions... conditions) {
    const std::array<scmp_arg_cmp, sizeof...(conditions)> array{conditions...};
    isWhole_ = isWhole_ && filter_ != nullptr &&
               seccomp_rule_add_array(filter_, action, call, array.size(), array.data()) == 0;
  }

  /// For all threads: a library may have started one.
  bool Load() {
    return isWhole_ && seccomp_attr_set(filter_, SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           seccomp_load(filter_) == 0;
  }

 private:
  scmp_filter_ctx filter_;
  bool isWhole_ = true;
};

constexpr scmp_arg_cmp HasNone(unsigned int argument, uint64_t bits) {
  return {argument, SCMP_CMP_MASKED_EQ, bits, 0};
}

constexpr scmp_arg_cmp Is(unsigned int argument, uint64_t value) {
  return {argument, SCMP_CMP_EQ, value, 0};
}

void AllowReading(CallFilter& filter) {
  constexpr uint64_t kWriting =
      O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(open), HasNone(1, kWriting));
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(openat), HasNone(2, kWriting));
  // Its flags are behind a pointer, so callers must fall back to openat.
  filter.Rule(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(openat2));
  for (const int command :
       {F_GETFD, F_SETFD, F_GETFL, F_DUPFD, F_DUPFD_CLOEXEC, F_ADD_SEALS, F_GET_SEALS}) {
    filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(fcntl), Is(1, static_cast<uint64_t>(command)));
    filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(fcntl64), Is(1, static_cast<uint64_t>(command)));
  }
}

/// RLIMIT_DATA does not count shared memory.
void AllowMemory(CallFilter& filter) {
  constexpr uint64_t kMapType = 0x0F;
  constexpr scmp_arg_cmp kIsPrivate{3, SCMP_CMP_MASKED_EQ, kMapType, MAP_PRIVATE};
  for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mmap2)}) {
    filter.Rule(SCMP_ACT_ALLOW, call, HasNone(2, PROT_EXEC), kIsPrivate);
    filter.Rule(SCMP_ACT_ALLOW, call, HasNone(2, PROT_EXEC), HasNone(3, MAP_ANONYMOUS));
  }
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(mprotect), HasNone(2, PROT_EXEC));
}

void AllowThreads(CallFilter& filter) {
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(clone),
              scmp_arg_cmp{0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD});
  // Its flags are behind a pointer, so the C library must fall back to clone.
  filter.Rule(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3));
}

/// `abort` signals itself. The own limits may be asked and lowered.
void AllowUponItself(CallFilter& filter) {
  const auto self = static_cast<uint64_t>(getpid());
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), Is(0, self));
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(kill), Is(0, self));
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), Is(0, 0));
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(setrlimit));
  constexpr uint64_t kNameThread = 15;
  filter.Rule(SCMP_ACT_ALLOW, SCMP_SYS(prctl), Is(0, kNameThread));
}

}  // namespace

bool FilterCalls() {
  CallFilter filter;
  for (const int call : kAllowed) filter.Rule(SCMP_ACT_ALLOW, call);
  for (const int call : kDeadly) filter.Rule(SCMP_ACT_KILL_PROCESS, call);
  AllowReading(filter);
  AllowMemory(filter);
  AllowThreads(filter);
  AllowUponItself(filter);
  return filter.Load();
}

}  // namespace rasterkit::worker
