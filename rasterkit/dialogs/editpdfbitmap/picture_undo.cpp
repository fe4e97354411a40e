#include <new>
#include <utility>

#include <rasterkit/dialogs/editpdfbitmap/picture_undo.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

void PictureUndo::Begin(EditState state) {
  step_ = Step{std::move(state), nullptr, nullptr, false};
  isNew_ = true;
}

void PictureUndo::KeepBitmap(std::unique_ptr<TBitmap> bitmap) {
  if (!step_) return;
  step_->bitmap = std::move(bitmap);
  if (!step_->bitmap) Forget();
}

void PictureUndo::KeepGraphic(std::unique_ptr<TGraphic> graphic, uint64_t bytesOfPicture) {
  if (!HasStep()) return;
  const uint64_t bytes = PixelBytes(*step_->bitmap) + (graphic ? PixelBytes(*graphic) : 0);
  if (!MayKeep(bytes, bytesOfPicture)) return Forget();
  step_->graphic = std::move(graphic);
  step_->hasGraphic = true;
}

PictureUndo::Step PictureUndo::Take() {
  Step step = std::move(*step_);
  step_.reset();
  return step;
}

uint64_t PixelBytes(const TGraphic& graphic) {
  const Raster* rows = graphic.Rows();
  return rows == nullptr ? 0 : static_cast<uint64_t>(rows->Stride()) * rows->Height();
}

bool MayKeep(uint64_t bytesBefore, uint64_t bytesOfPicture) {
  const uint64_t limit = PictureMemoryLimit();
  return bytesBefore <= limit && bytesOfPicture <= limit - bytesBefore;
}

std::unique_ptr<TBitmap> CopyForUndo(const TBitmap* bitmap) {
  if (bitmap == nullptr || !MayKeep(PixelBytes(*bitmap), PixelBytes(*bitmap))) return nullptr;
  try {
    return bitmap->Clone();
  } catch (const LimitError&) {
    return nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace rasterkit
