#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What is seen of a picture of any size through a window, kept so that painting it again costs no
/// more than the window's pixels.
///
/// A first view takes the nearest pixel of the picture for each pixel of the window: its time
/// depends on the window alone. `RefineRows` then replaces rows by the average of what they cover,
/// where the picture is shrunk and has no transparency. Memory: 8 bytes for each pixel of the
/// window.
class RASTERKIT_EXPORT PictureView {
 public:
  /// All in pixels of the window.
  struct Window {
    int width = 0, height = 0;
    /// Where the whole picture lies; may reach beyond the window as far as 2^29.
    TRect place;
    /// Shown beside the picture and through its transparent pixels.
    TColor background = 0;
  };

  /// Makes the view anew where the window, the picture or its `version` is another one, and also
  /// when the picture's pixels were changed behind its back as far as a sample of those that are
  /// seen tells. `picture` may be null.
  void Show(const TBitmap* picture, unsigned version, const Window& window);
  /// Whether there are rows that `RefineRows` would change.
  bool NeedsRefining() const;
  /// Averages the next rows; true while there are more.
  bool RefineRows(int count);
  /// Makes the next `Show` start over.
  void Forget();

  /// pf32bit, as large as the window.
  const TBitmap& Plain() const { return plain_; }
  /// The same with the picture darkened: byte for byte what the darkened picture would look like,
  /// as long as it is not refined or blended.
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
  /// For each column of the window: all ones where rows of `brightnessKind_` stay as they are.
  std::vector<uint32_t> brightness_;
  int brightnessKind_ = -1;
};

}  // namespace rasterkit
