#pragma once

#include <cstdint>

namespace rasterkit {

class TBitmap;

namespace detail {

/// Arguments of `RunRotation`.
struct RotationTask {
  /// Read only.
  const TBitmap& source;
  /// Has format, palette and size of the result; its pixels are undefined on entry.
  TBitmap& target;
  int32_t bytesPerPixel;
  int32_t bitsPerPixel;
  /// The source was made from a 1-bit bitmap.
  bool wasMono;
  /// -1 for the automatic choice, which also makes the target transparent.
  int32_t background;
  int32_t threadsCount;
  /// Degrees.
  float angle;
};

/// Number of workers for a caller's number: 1 to 100, the most that can be waited for at once.
int32_t RotationThreads(int32_t threadsCount);

/// Chooses the background, divides the rows among the threads and waits for all of them. Throws if
/// there are no bands or a thread cannot be created.
void RunRotation(const RotationTask& task);

}  // namespace detail
}  // namespace rasterkit
