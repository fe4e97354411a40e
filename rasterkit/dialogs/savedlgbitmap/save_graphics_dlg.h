#pragma once

#include <cstdint>

#include <rasterkit/dialogs/savedlgbitmap/save_graphics_model.h>
#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>

namespace rasterkit {

/// What the options of a graphic show; see EditGraphicsParas.
struct ParasChoice {
  bool showResolution = false, showPixelSize = false;
  float sizeA = 0, sizeB = 0;
};

/// The save window for graphics: the chosen file type sets the extension and whether there are
/// options. The owner connects `FilterChange` with the filter-change event and one of the two click
/// handlers with the options button.
class TSaveGraphicsDlg : public TFormSaveDlgExt {
  Q_OBJECT

 public:
  explicit TSaveGraphicsDlg(const TrecSaveBitmap& rec, QWidget* parent = nullptr);

  SaveGraphicsModel& Model() { return model_; }
  void SetChoice(const ParasChoice& choice) { choice_ = choice; }

  void FilterChange();
  /// Opens the settings of the chosen type, without the type itself and without help.
  void OptionsClick();
  /// Opens the settings with the size in pixels of the model.
  void BmpSizeClick();

 private:
  SaveGraphicsModel model_;
  ParasChoice choice_;
};

}  // namespace rasterkit
