#include "worker/last_words.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <vector>

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <rasterkit/runtime/worker/worker_errors.h>

namespace rasterkit::worker {
namespace {

/// Packed in advance: there is no memory for it when it is needed.
std::vector<uint8_t> outOfMemory;
int socketToHost = -1;

/// A stack that is too long ends in a signal, whose handler needs another one.
[[maybe_unused]] alignas(16) std::array<unsigned char, 64 * 1024> handlerStack;

[[noreturn]] void EndOutOfMemory() {
  iovec piece{outOfMemory.data(), outOfMemory.size()};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  sendmsg(socketToHost, &header, MSG_NOSIGNAL | MSG_DONTWAIT);
  _exit(EXIT_FAILURE);
}

bool IsMemoryUsedUp() {
  constexpr size_t kProbeBytes = size_t{16} << 20;
  void* const probe =
      mmap(nullptr, kProbeBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (probe == MAP_FAILED) return true;
  munmap(probe, kProbeBytes);
  return false;
}

/// Only calls that are safe in a signal handler.
extern "C" void OnSignal(int signal) {
  if (IsMemoryUsedUp()) EndOutOfMemory();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void OnTerminate() {
  if (const std::exception_ptr error = std::current_exception()) {
    try {
      std::rethrow_exception(error);
    } catch (const std::bad_alloc&) {
      EndOutOfMemory();
    } catch (...) {
      std::abort();
    }
  }
  std::abort();
}

}  // namespace

void PrepareLastWords(int socket) {
  socketToHost = socket;
  outOfMemory = detail::PackWorkerMessage(detail::FailedMessage(
      detail::WorkerError{detail::WorkerErrorClass::outOfMemory, 0, "out of memory"}));
  std::set_terminate(OnTerminate);
#ifndef RASTERKIT_WORKER_SANITIZED
  stack_t stack{};
  stack.ss_sp = handlerStack.data();
  stack.ss_size = handlerStack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_ONSTACK;
  for (const int signal : {SIGABRT, SIGILL, SIGTRAP, SIGSEGV, SIGBUS}) {
    sigaction(signal, &action, nullptr);
  }
#endif
}

}  // namespace rasterkit::worker
