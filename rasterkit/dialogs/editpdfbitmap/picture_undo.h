#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// The settings beside a picture.
struct EditState {
  int rotation = 0, resolution = 0, pageNumber = 0, page = 1;
  bool bmpChanged = false;
  std::string resolutionText, rotationText;
  /// In the order of kToggles.
  std::array<bool, 4> down{};
  std::optional<RDRect> cut;
};

/// The last change of the picture, to be taken back: one step.
class PictureUndo {
 public:
  struct Step {
    EditState state;
    std::unique_ptr<TBitmap> bitmap;
    /// Only where the change made a new one.
    std::unique_ptr<TGraphic> graphic;
    bool hasGraphic = false;
  };

  /// A new change begins; the one before can no longer be taken back.
  void Begin(EditState state);
  /// The bitmap as it was before; null when it could not be kept, which forgets the change.
  void KeepBitmap(std::unique_ptr<TBitmap> bitmap);
  /// The graphic as it was before the change, unless that and the bitmap are too much beside a
  /// picture of so many bytes: then the change is forgotten.
  void KeepGraphic(std::unique_ptr<TGraphic> graphic, uint64_t bytesOfPicture);
  void Forget() { step_.reset(); }
  /// The change is made.
  void Settle() { isNew_ = false; }

  bool HasStep() const { return step_ && step_->bitmap; }
  /// A change has begun and nothing is kept for it yet.
  bool AwaitsBitmap() const { return step_ && !step_->bitmap; }
  /// What is kept belongs to a change that is not settled yet.
  bool IsNew() const { return isNew_; }
  /// The step, which is then forgotten; only when there is one.
  Step Take();

 private:
  std::optional<Step> step_;
  bool isNew_ = false;
};

/// Memory of a graphic's rows in bytes, as far as it has any.
uint64_t PixelBytes(const TGraphic& graphic);

/// Whether a picture and what is kept of the one before stay within what one picture may take
/// (see PictureMemoryLimit).
bool MayKeep(uint64_t bytesBefore, uint64_t bytesOfPicture);

/// A copy to be kept for undoing; null where it would be too much, or there is no memory for it.
std::unique_ptr<TBitmap> CopyForUndo(const TBitmap* bitmap);

}  // namespace rasterkit
