#pragma once

#include <cstdint>

namespace rasterkit {

class TBitmap;

namespace detail {

/// What `RunRotation` works on and with.
struct RotationTask {
  /// Read only.
  const TBitmap& source;
  /// Has format, palette and size of the result; its pixels are undefined before.
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

/// How many workers a caller's number asks for: 1 to 100, as many as can be waited for at once.
int32_t RotationThreads(int32_t threadsCount);

/// Chooses the background, divides the rows among the threads and waits for all of them. Throws
/// when there are no bands or no further thread.
void RunRotation(const RotationTask& task);

}  // namespace detail
}  // namespace rasterkit
