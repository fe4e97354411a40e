#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// Operations of the dialog; all other numbers change nothing.
inline constexpr int32_t kOperationValues = 0;
inline constexpr int32_t kOperationBlackAndWhite = 5;

/// Codes of the tasks of operation 0, which are also the tags of their controls. An empty slot is
/// 0.
enum : int32_t { kTaskNone, kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors };

/// The order in which the tasks are applied.
using TaskSlots = std::array<int32_t, 4>;

/// Puts a task into the first empty slot, unless it is already in a slot before that or no slot is
/// empty.
void AddTask(TaskSlots& taskSlots, int32_t code);

/// All parameters of a change of a bitmap.
struct ValueChange {
  int32_t operation = kOperationValues;
  TaskSlots taskSlots{};
  int32_t lightness = 0, contrast = 0, sharpen = 0;
  int32_t red = 0, green = 0, blue = 0;
  /// The threshold of operation 5.
  int32_t grayValue = 0;
  /// The colors of operation 5 as a step of a picture (see StepOf).
  TColor dark = clBlack, light = clWhite;

  /// Changes the bitmap, on the calling thread.
  void ApplyTo(TBitmap& bitmap) const;
  /// Returns the number of surrounding pixels that affect the result for a part of a picture.
  int Margin() const;

  friend bool operator==(const ValueChange&, const ValueChange&) = default;

 private:
  void Run(int32_t task, TBitmap& bitmap) const;
};

}  // namespace rasterkit
