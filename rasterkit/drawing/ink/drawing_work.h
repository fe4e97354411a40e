#pragma once

#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// A drawing asks for more work than is done for one. It may be used on, and is told the same again
/// by everything that paints.
class DrawingWorkError : public LimitError {
 public:
  using LimitError::LimitError;
};

/// Adds up what a drawing costs. A few bytes of a file may ask for as much work as a whole picture
/// is, and there may be millions of them; no picture shows so much.
///
/// The unit is one pixel that is computed, which takes about a nanosecond.
class DrawingWork {
 public:
  /// For a drawing on so many pixels.
  explicit DrawingWork(double pixels);

  /// Before work is done that costs so much. Throws DrawingWorkError when that is too much.
  void Take(double cost) {
    spent_ += cost;
    if (!(spent_ <= limit_)) ThrowTooMuch();
  }
  /// Lets the drawing cost more.
  void Allow(double more);

  /// Every drawing may cost so much, and a large one so much for each of its pixels.
  static constexpr double kLeast = 5e9, kPerPixel = 50;
  /// And so much more for each byte of the file: a large one is expected to take its time.
  static constexpr double kPerByte = 300;

 private:
  [[noreturn]] void ThrowTooMuch() const;

  double limit_;
  double spent_ = 0;
};

/// Lets drawings that the calling thread begins cost no more than this, for as long as it lives:
/// for tests and for whoever cannot wait. Scopes nest.
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
