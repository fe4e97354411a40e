#include <algorithm>
#include <cmath>
#include <mutex>
#include <string>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point kNoEnd = Clock::time_point::max();

std::mutex mutexOfDefault;
Limits defaultLimits;

bool IsCanceled(const CallLimits& call) {
  return std::any_of(call.cancel.begin(), call.cancel.end(),
                     [](const std::stop_token& token) { return token.stop_requested(); });
}

/// The innermost scope of this thread; null outside of calls. A pointer needs no destructor, so
/// that static objects may use it when the thread ends.
thread_local const CallLimits* current = nullptr;

Clock::time_point EndAfter(double seconds) {
  const Clock::time_point now = Clock::now();
  const std::chrono::duration<double> room = kNoEnd - now;
  // A number that is not finite has no end, and neither has one beyond the clock.
  if (!(seconds < room.count() / 2)) return kNoEnd;
  const std::chrono::duration<double> time(std::max(seconds, 0.0));
  return now + std::chrono::duration_cast<Clock::duration>(time);
}

double StricterTime(double a, double b) {
  if (std::isnan(a)) return b;
  return std::isnan(b) ? a : std::min(a, b);
}

CallLimits Narrowed(const Limits& limits) {
  CallLimits call = current != nullptr ? *current : CallLimits();
  call.limits = call.limits ? Stricter(*call.limits, limits) : limits;
  call.end = std::min(call.end, EndAfter(limits.seconds));
  return call;
}

CallLimits Cancelable(const Limits& limits, std::stop_token cancel, std::function<void()> onCheck) {
  CallLimits call = Narrowed(limits);
  if (cancel.stop_possible()) call.cancel.push_back(std::move(cancel));
  if (onCheck) call.onCheck = std::move(onCheck);
  return call;
}

[[noreturn]] void ThrowSizeError(LimitKind kind, std::string_view what, uint64_t need,
                                 uint64_t limit) {
  const char* unit = kind == LimitKind::side ? "pixels per side" : "pixels";
  throw LimitError(kind, fmt::format("{} has {} {}, the limit is {}", what, need, unit, limit));
}

}  // namespace

Limits Stricter(const Limits& a, const Limits& b) {
  Limits both;
  both.pictureBytes = std::min(a.pictureBytes, b.pictureBytes);
  both.processBytes = std::min(a.processBytes, b.processBytes);
  both.pixels = std::min(a.pixels, b.pixels);
  both.side = std::min(a.side, b.side);
  both.seconds = StricterTime(a.seconds, b.seconds);
  both.refuseImplausible = a.refuseImplausible || b.refuseImplausible;
  return both;
}

Limits DefaultLimits() {
  const std::lock_guard lock(mutexOfDefault);
  return defaultLimits;
}

void SetDefaultLimits(const Limits& limits) {
  const std::lock_guard lock(mutexOfDefault);
  defaultLimits = limits;
}

Limits CurrentLimits() {
  return current != nullptr && current->limits ? *current->limits : DefaultLimits();
}

CallLimits CurrentCall() {
  CallLimits call = current != nullptr ? *current : CallLimits();
  call.onCheck = nullptr;
  return call;
}

LimitsScope::LimitsScope(const Limits& limits) : call_(Narrowed(limits)), before_(current) {
  current = &call_;
}

LimitsScope::LimitsScope(const Limits& limits, std::stop_token cancel,
                         std::function<void()> onCheck)
    : call_(Cancelable(limits, std::move(cancel), std::move(onCheck))), before_(current) {
  current = &call_;
}

// The caller keeps its own, from which several threads start.
// NOLINTNEXTLINE(modernize-pass-by-value)
LimitsScope::LimitsScope(const CallLimits& call) : call_(call), before_(current) {
  current = &call_;
}

LimitsScope::~LimitsScope() {
  current = before_;
}

double SecondsLeft() {
  if (current == nullptr) return kNoTimeLimit;
  if (IsCanceled(*current)) return 0;
  if (current->end == kNoEnd) return kNoTimeLimit;
  const std::chrono::duration<double> left = current->end - Clock::now();
  return std::max(left.count(), 0.0);
}

void RequireTime() {
  if (current == nullptr) return;
  if (IsCanceled(*current)) throw CanceledError("canceled");
  if (current->onCheck) current->onCheck();
  if (current->end == kNoEnd || Clock::now() < current->end) return;
  throw TimeLimitError(
      fmt::format("the time limit of {} seconds is over", CurrentLimits().seconds));
}

void RequirePictureSize(uint64_t width, uint64_t height, std::string_view what) {
  const Limits limits = CurrentLimits();
  const uint64_t longer = std::max(width, height);
  if (longer > limits.side) ThrowSizeError(LimitKind::side, what, longer, limits.side);
  const uint64_t pixels = width != 0 && height > kNoLimit / width ? kNoLimit : width * height;
  if (pixels > limits.pixels) ThrowSizeError(LimitKind::pixels, what, pixels, limits.pixels);
}

}  // namespace rasterkit
