#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The visible part of a picture of any size in a window, kept so that painting it again costs only
/// the window's pixels.
///
/// The first version takes the nearest picture pixel for each window pixel: its time depends only
/// on the window. `RefineRows` then replaces rows by averages if the picture is shrunk and has no
/// transparency. Memory: 8 bytes per pixel of the window.
class RASTERKIT_EXPORT PictureView {
 public:
  /// All in pixels of the window.
  struct Window {
    int width = 0, height = 0;
    /// Position of the whole picture; may reach up to 2^29 beyond the window.
    TRect place;
    /// Shown beside the picture and through its transparent pixels.
    TColor background = 0;
  };

  /// Rebuilds the view if the window, the picture or its `version` changed, or if a sample of the
  /// visible pixels differs. `picture` may be null.
  void Show(const TBitmap* picture, unsigned version, const Window& window);
  /// Whether `RefineRows` would change any rows.
  bool NeedsRefining() const;
  /// Averages the next rows; true while there are more.
  bool RefineRows(int count);
  /// Makes the next `Show` rebuild the view.
  void Forget();

  /// pf32bit, with the size of the window.
  const TBitmap& Plain() const { return plain_; }
  /// Returns the view with the picture darkened: byte-identical to a view of the darkened picture
  /// unless it is refined or blended.
  const TBitmap& Darkened(const DarkedBitmap& darkening);

 private:
  void Draw();
  bool CanRefine() const;
  TRect RowsToRefine() const;
  uint64_t SampleDigest() const;
  void DarkenRow(int y, const DarkedBitmap& darkening);
  void MakeBrightness(int sourceY, const DarkedBitmap& darkening);

  const TBitmap* picture_ = nullptr;
  unsigned version_ = 0;
  Window window_;
  uint64_t digest_ = 0;
  bool isDrawn_ = false;
  TBitmap plain_;
  int refinedRows_ = 0;

  TBitmap darkened_;
  std::optional<DarkedBitmap> darkening_;
  /// A mask per column of the window: all ones where rows of `brightnessKind_` keep their
  /// brightness.
  std::vector<uint32_t> brightness_;
  int brightnessKind_ = -1;
};

}  // namespace rasterkit
