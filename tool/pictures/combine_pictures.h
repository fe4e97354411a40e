#pragma once

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

enum class CombineMode { key, transparent, shadow, overwrite, intoWhite };

struct CombineOptions {
  CombineMode mode = CombineMode::key;
  /// 0 to 100; see CombineMode for its meaning.
  int percent = 0;
  /// For `transparent` and `shadow`: use the gray values of the picture below.
  bool gray = false;
};

/// Lays `over`, stretched, over the whole of `under`, which becomes 24-bit; `under` must not be
/// transparent.
///
/// - key: all of `over` except pure white, or except what is transparent if it has transparency;
///   `percent` of the picture below show through.
/// - transparent: a mix with `percent` of the picture below; near white of `over` is skipped.
/// - shadow: each pixel of `over` except near white is shaded by the picture below, which is first
///   brightened by `percent`.
/// - overwrite: all of `over` except near white.
/// - intoWhite: `over` only where the picture below is near white.
///
/// Near white has all channels above 250.
void CombinePictures(TBitmap& under, const TBitmap& over, const CombineOptions& options,
                     int threads, const TProgressEvent& progress);

}  // namespace rasterkit::tool
