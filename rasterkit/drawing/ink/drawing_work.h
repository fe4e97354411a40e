#pragma once

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

/// Thrown when a drawing exceeds its work budget. The context stays usable; every later paint call
/// throws again.
class DrawingWorkError : public LimitError {
 public:
  using LimitError::LimitError;
};

/// Counts the work of a drawing against a budget. A hostile file can describe the work of a whole
/// picture in a few bytes, millions of times.
///
/// The unit is one computed pixel, about one nanosecond.
class DrawingWork {
 public:
  /// Sets the budget for a drawing of `pixels` pixels.
  explicit DrawingWork(double pixels);

  /// Charges `cost` to the budget; call before doing the work. Throws DrawingWorkError if the
  /// budget is exceeded, TimeLimitError if the time of the call is over.
  void Charge(double cost) {
    RequireTime();
    spent_ += cost;
    if (!(spent_ <= limit_)) ThrowTooMuch();
  }
  /// Raises the budget by `more`.
  void Raise(double more);

  /// Least budget of a drawing, and budget per pixel of a large one.
  static constexpr double kLeastBudget = 5e9, kPerPixel = 50;
  /// Additional budget per byte of the file, as large files take longer.
  static constexpr double kPerByte = 300;

 private:
  [[noreturn]] void ThrowTooMuch() const;

  double limit_;
  double spent_ = 0;
};

/// Limits the budget of drawings that the calling thread starts during the lifetime of this object,
/// for tests and for callers with little time. Scopes nest.
class DrawingWorkScope {
 public:
  explicit DrawingWorkScope(double most);
  ~DrawingWorkScope();
  DrawingWorkScope(const DrawingWorkScope&) = delete;
  DrawingWorkScope& operator=(const DrawingWorkScope&) = delete;

 private:
  const double before_;
};

}  // namespace rasterkit::detail
