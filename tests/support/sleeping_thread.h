#pragma once

#include <condition_variable>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

#include <sys/types.h>
#include <unistd.h>

/// To tell a thread that waits from one that asks again and again, without a clock.
namespace rasterkit::test {

/// The calling thread's number for `FallsAsleep`.
inline pid_t ThisThread() {
  return gettid();
}

/// 'R' while the thread runs or is ready to run, 'S' while it sleeps in the system.
inline char ThreadState(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string line;
  std::getline(file, line);
  const size_t nameEnd = line.rfind(") ");
  return nameEnd == std::string::npos ? '?' : line[nameEnd + 2];
}

/// Returns true as soon as the thread sleeps; false when it has never been seen asleep.
inline bool FallsAsleep(pid_t thread) {
  for (int look = 0; look < 500000; ++look) {
    if (ThreadState(thread) == 'S') return true;
    std::this_thread::yield();
  }
  return false;
}

/// Lets others through, one for each `Open`.
class Gate {
 public:
  void Pass() {
    std::unique_lock lock(mutex_);
    opened_.wait(lock, [this] { return places_ > 0; });
    --places_;
  }
  void Open() {
    const std::lock_guard lock(mutex_);
    ++places_;
    opened_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  int places_ = 0;
};

}  // namespace rasterkit::test
