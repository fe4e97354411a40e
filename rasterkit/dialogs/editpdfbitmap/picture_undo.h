#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// The settings that belong to a picture.
struct EditState {
  int rotation = 0, resolution = 0, pageNumber = 0, page = 1;
  bool bmpChanged = false;
  std::string resolutionText, rotationText;
  /// In the order of kToggles.
  std::array<bool, 4> down{};
  std::optional<RDRect> cut;
};

/// The last change of the picture, for undo: one step.
class PictureUndo {
 public:
  struct Step {
    EditState state;
    std::unique_ptr<TBitmap> bitmap;
    /// Null unless the change made a new one.
    std::unique_ptr<TGraphic> graphic;
    bool hasGraphic = false;
  };

  /// Begins a new change; the previous one can no longer be undone.
  void Begin(EditState state);
  /// Stores the bitmap of before; null if it could not be kept, which discards the step.
  void KeepBitmap(std::unique_ptr<TBitmap> bitmap);
  /// Stores the graphic of before. Discards the step if the graphic and the bitmap need too much
  /// memory in addition to a picture of `bytesOfPicture` bytes.
  void KeepGraphic(std::unique_ptr<TGraphic> graphic, uint64_t bytesOfPicture);
  void Forget() { step_.reset(); }
  /// Ends the change.
  void Settle() { isNew_ = false; }

  bool HasStep() const { return step_ && step_->bitmap; }
  /// Whether a change has begun and nothing is stored for it yet.
  bool AwaitsBitmap() const { return step_ && !step_->bitmap; }
  /// Whether the stored step belongs to a change that has not ended.
  bool IsNew() const { return isNew_; }
  /// Returns and removes the step; requires that there is one.
  Step Take();

 private:
  std::optional<Step> step_;
  bool isNew_ = false;
};

/// Returns the memory of a graphic's rows in bytes; 0 if it has none.
uint64_t PixelBytes(const TGraphic& graphic);

/// Whether a picture and the stored previous one together fit into the memory limit of one picture
/// (see PictureMemoryLimit).
bool MayKeep(uint64_t bytesBefore, uint64_t bytesOfPicture);

/// Returns a copy for undo; null if it would need too much memory or allocation fails.
std::unique_ptr<TBitmap> CopyForUndo(const TBitmap* bitmap);

}  // namespace rasterkit
