#pragma once

#include <mutex>

namespace rasterkit {

/// Lets one thread at a time pass; the thread that is inside may enter again, and leaves as often
/// as it entered. Usable with `std::lock_guard` too.
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
