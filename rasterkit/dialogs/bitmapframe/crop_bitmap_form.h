#pragma once

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
  /// Begins with `start` as the cut, in bitmap pixels, where that holds any pixel.
  TFormCropBitmap(TBitmap& bitmap, const TRect& start, QWidget* parent = nullptr);
  ~TFormCropBitmap() override;

  /// What is to stay of the bitmap: the cut, or the whole.
  TRect ChosenRect() const { return CropNumbersOf(*fBmpCutRect).Rect(); }
  TBmpCutRect& Tool() { return *fBmpCutRect; }

  void SpeedButtonFitClick();
  void SpeedButtonOrgSizeClick();
  void SpeedButtonUndoClick();
  void SpeedButtonWholeClick();
  /// One of the four numbers is another one.
  void SpEdChange();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectControls();
  void ShowState();
  void ShowNumbers();

  std::unique_ptr<Ui::FormCropBitmap> ui_;
  std::unique_ptr<TBmpCutRect> fBmpCutRect;
  bool isShowingNumbers_ = false;
};

}  // namespace rasterkit
