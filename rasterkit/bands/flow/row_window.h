#pragma once

#include <functional>
#include <memory>

#include <rasterkit/bands/flow/band_plan.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// The rows of one level that are in memory, in one block that is used again and again.
class RowWindow {
 public:
  /// `capacity`: the most rows at once. `like` must outlive the window.
  RowWindow(const Pixels& like, Sides picture, int capacity);
  /// Rows of a whole picture that somebody else keeps: nothing is moved.
  explicit RowWindow(Pixels& whole);

  int Capacity() const { return capacity_; }
  /// That this window takes, as soon as it has rows.
  uint64_t Bytes() const { return isWhole_ ? 0 : BytesOfPixels(like_, picture_.width, capacity_); }

  /// Makes room for `rows.wanted`. Those of them that are not missing are taken over from `before`,
  /// which may be this window.
  void Place(const LevelRows& rows, const RowWindow& before);

  /// The whole block, part of which has no meaning.
  Band& Rows() { return band_; }
  const Band& Rows() const { return band_; }

  /// Hands out rows of the window as pixels of their own: without a copy if the rows of one plane
  /// follow each other, else `isRead` and `isWritten` say which way they are copied.
  void With(RowRange rows, bool isRead, bool isWritten, const std::function<void(Pixels&)>& use);

 private:
  void Allocate();
  void TakeOver(RowRange rows, const RowWindow& before, int oldTop);

  const Pixels& like_;
  const Sides picture_;
  const int capacity_;
  bool isWhole_ = false;
  PixelMemory memory_;
  Band band_;
};

}  // namespace rasterkit::detail
