#pragma once

#include <functional>
#include <memory>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>
#include <rasterkit/dialogs/bitmapframe/crop_numbers.h>
#include <rasterkit/qt/forms/scaled_form.h>

namespace Ui {
class FormCropBitmap;
}

namespace rasterkit {

/// The window around the crop tool: the picture, the rectangle in numbers, zoom and undo. The
/// bitmap must outlive it.
class TFormCropBitmap : public TScaledForm {
  Q_OBJECT

 public:
  /// Starts with `start` as the cut, in bitmap pixels, if it contains any pixel.
  TFormCropBitmap(TBitmap& bitmap, const TRect& start, QWidget* parent = nullptr);
  ~TFormCropBitmap() override;

  /// Returns the part of the bitmap to keep: the cut, or the whole bitmap.
  TRect ChosenRect() const { return CropNumbersOf(*fBmpCutRect).Rect(); }
  TBmpCutRect& Tool() { return *fBmpCutRect; }
  /// Shows for each part whether its compressed pixels can be kept.
  void SetIsLossless(std::function<bool(const TRect& part)> isLossless);

  void SpeedButtonFitClick();
  void SpeedButtonOrgSizeClick();
  void SpeedButtonUndoClick();
  void SpeedButtonWholeClick();
  /// Called if one of the four numbers changed.
  void SpEdChange();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectControls();
  void ShowState();
  void ShowNumbers();
  void ShowIsLossless();

  std::unique_ptr<Ui::FormCropBitmap> ui_;
  std::unique_ptr<TBmpCutRect> fBmpCutRect;
  std::function<bool(const TRect& part)> isLossless_;
  bool isShowingNumbers_ = false;
};

}  // namespace rasterkit
