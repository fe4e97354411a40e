#pragma once

#include <mutex>

namespace rasterkit {

/// A recursive mutex. Works with `std::lock_guard`.
class TCriticalSection {
 public:
  void Enter() { mutex_.lock(); }
  void Leave() { mutex_.unlock(); }

  void lock() { mutex_.lock(); }
  void unlock() { mutex_.unlock(); }
  bool try_lock() { return mutex_.try_lock(); }

 private:
  std::recursive_mutex mutex_;
};

}  // namespace rasterkit
