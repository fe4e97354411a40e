#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stop_token>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/export.h>

/// What one call may use: memory, pixels and time.
///
/// Every call works under the limits of its thread. These are the default limits of the process, or
/// those of a `LimitsScope` around the call. Decoders check sizes before memory is allocated, and
/// time between rows. The error of an exceeded limit is LimitError; its message states the limit
/// and the need.
namespace rasterkit {

/// A number of bytes, pixels or pixels per side without a limit.
inline constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();
/// A time without a limit.
inline constexpr double kNoTimeLimit = std::numeric_limits<double>::infinity();
/// Bytes that one picture may take by default: 4 GiB.
inline constexpr uint64_t kDefaultPictureBytes = uint64_t{4} << 30;

/// Limits of a call. A need equal to a limit is allowed.
struct Limits {
  /// Bytes of the decoded rows of one picture.
  uint64_t pictureBytes = kDefaultPictureBytes;
  /// Bytes of all pictures that the process holds at the same time, on all threads.
  uint64_t processBytes = kNoLimit;
  /// Width times height of a picture.
  uint64_t pixels = kNoLimit;
  /// Width and height of a picture, in pixels.
  uint64_t side = kNoLimit;
  /// Seconds that one call may take; fractions count. The time starts with the scope, or with the
  /// call if there is none.
  double seconds = kNoTimeLimit;
  /// Refuse a picture above 256 MiB if the bytes of its file cannot hold it.
  bool refuseImplausible = true;

  bool operator==(const Limits&) const = default;
};

/// Returns the stricter value of each field.
RASTERKIT_EXPORT Limits Stricter(const Limits& a, const Limits& b);

/// Returns the limits of the process. May be called on any thread.
RASTERKIT_EXPORT Limits DefaultLimits();
/// Sets the limits of the process, for calls that start later. May be called on any thread.
RASTERKIT_EXPORT void SetDefaultLimits(const Limits& limits);

/// Returns the limits of the calling thread: those of its scopes, or the default limits.
RASTERKIT_EXPORT Limits CurrentLimits();

namespace detail {
class MemoryJob;
}

/// The limits of a running call with the time at which it must end. For handing them to the threads
/// that work for the call.
struct CallLimits {
  /// No value: the default limits.
  std::optional<Limits> limits;
  std::chrono::steady_clock::time_point end = std::chrono::steady_clock::time_point::max();
  /// The job that the memory of the call belongs to; null if there is none.
  std::shared_ptr<detail::MemoryJob> job;
  /// Each of them can end the call.
  std::vector<std::stop_token> cancel;
  /// Called by RequireTime on the thread of the scope that set it; never handed to other threads.
  std::function<void()> onCheck;
};

/// Returns the limits of the call on this thread.
RASTERKIT_EXPORT CallLimits CurrentCall();

/// Limits the calling thread during the lifetime of this object. The outermost scope replaces the
/// default limits. Within another scope the stricter value of each field counts, and the earlier
/// end. Threads that Rasterkit starts for a call work under the limits of the call (see TThread).
/// Scopes must be destroyed on their thread, in reverse order.
class RASTERKIT_EXPORT LimitsScope {
 public:
  /// Keeps the limits of the thread and starts their time, unless it runs. Every call that decodes,
  /// draws or encodes does this.
  LimitsScope() : LimitsScope(CurrentLimits()) {}
  /// The time of `limits.seconds` starts now.
  explicit LimitsScope(const Limits& limits);
  /// A stop of `cancel` ends the call: RequireTime throws CanceledError then. `onCheck`, if set, is
  /// called by each RequireTime on this thread.
  LimitsScope(const Limits& limits, std::stop_token cancel, std::function<void()> onCheck = {});
  /// Joins a call that runs on another thread. Replaces what this thread has.
  explicit LimitsScope(const CallLimits& call);
  ~LimitsScope();
  LimitsScope(const LimitsScope&) = delete;
  LimitsScope& operator=(const LimitsScope&) = delete;

 private:
  const CallLimits call_;
  const CallLimits* const before_;
};

/// Returns the seconds that are left for the call on this thread: 0 if its time is over or it was
/// canceled, kNoTimeLimit without a limit.
RASTERKIT_EXPORT double SecondsLeft();

/// Throws TimeLimitError if the time of the call on this thread is over, CanceledError if the call
/// was canceled (see LimitsScope). Quick enough for each row.
RASTERKIT_EXPORT void RequireTime();

/// Throws LimitError if a picture of this size has more pixels, or a longer side, than the limits
/// of this thread allow. `what` names it: "PNG picture of 100 x 200 pixels".
RASTERKIT_EXPORT void RequirePictureSize(uint64_t width, uint64_t height, std::string_view what);

}  // namespace rasterkit
