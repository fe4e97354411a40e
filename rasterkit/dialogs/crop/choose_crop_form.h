#pragma once

#include <array>
#include <functional>
#include <memory>
#include <utility>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>
#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/crop/crop_settings.h>
#include <rasterkit/dialogs/crop/crop_window_model.h>
#include <rasterkit/qt/forms/scaled_form.h>

class QComboBox;

namespace Ui {
class FormChooseCrop;
}

namespace rasterkit {

class TUnitField;

/// The crop window for people: the picture, the rectangle in units, its ratio, guides and facts
/// about the result. The bitmap must outlive it.
class TFormChooseCrop : public TScaledForm {
  Q_OBJECT

 public:
  /// `start` in pixels belongs to `options.start`; both or none.
  TFormChooseCrop(TBitmap& bitmap, const CropFacts& facts, const ChooseCropOptions& options,
                  const std::optional<TRect>& start, const CropSettings& settings,
                  QWidget* parent = nullptr);
  ~TFormChooseCrop() override;

  TBmpCutRect& Tool() { return *tool_; }
  CropWindowModel& Model() { return *model_; }
  /// What is worth remembering.
  CropSettings Settings() const;

  /// Shows everything again after a change of the model.
  void ShowAll();

  void ShowFitted();
  void ShowActualSize();
  void Undo();
  void Redo();
  void KeepWhole();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::array<std::pair<TUnitField*, CropField>, 4> Fields() const;
  void SetUpTool(TBitmap& bitmap);
  void SetUpLists(const ChooseCropOptions& options);
  void ConnectButtons();
  void ConnectBox();
  void ConnectFields();
  void ConnectRatio();
  void PaintOver(TPaintBox& box, QPainter& painter);
  void TakeMouse(TPaintBox& box, QMouseEvent& event);
  void TakeRatio();
  void ShowUnits();
  void ShowRatio();
  void ShowState();
  void ShowMouse();
  void ShowLossless();

  std::unique_ptr<Ui::FormChooseCrop> ui_;
  std::unique_ptr<TBmpCutRect> tool_;
  std::unique_ptr<CropWindowModel> model_;
  std::function<bool(const CropStep& part)> isLossless_;
  std::optional<TPoint> mouse_;
  bool showsUnits_, showsRatios_, showsGuides_;
  /// What was remembered before.
  CropSettings settings_;
  bool isShowing_ = false;
};

}  // namespace rasterkit
