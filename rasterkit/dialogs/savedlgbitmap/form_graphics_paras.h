#pragma once

#include <memory>
#include <optional>

#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_model.h>
#include <rasterkit/qt/forms/scaled_form.h>

class QGroupBox;
class QLabel;

namespace Ui {
class FormGraphicsParas;
}

namespace rasterkit {

/// The window "Graphics settings". It opens with the help button; its model sets what is shown.
class TFormGraphicsParas : public TScaledForm, private GraphicsParasView {
  Q_OBJECT

 public:
  explicit TFormGraphicsParas(QWidget* parent = nullptr);
  ~TFormGraphicsParas() override;

  GraphicsParasModel& Model() { return *model_; }
  /// Leaves only OK and Cancel in the navigator.
  void HideHelp();

  /// Shows or hides the window; the model prepares it before it is first shown.
  void setVisible(bool visible) override;

 private:
  std::string Title(ParasGroup group) const override;
  void SetTitle(ParasGroup group, const std::string& title) override;
  int Height(ParasGroup group) const override;
  void SetVisible(ParasGroup group, bool visible) override;
  int WindowHeight() const override { return height(); }
  void SetWindowHeight(int height) override;
  std::string Text(ParasText text) const override;
  void SetText(ParasText text, const std::string& content) override;
  void ShowPixelEdits(bool shown) override;
  void SetSize(SizeEdit edit, double pixels) override;
  void SelectType(int position) override;
  void SelectColors(int position) override;
  void SetDpi(double dpi) override;
  void SetTrackBar(int position) override;

  QWidget& PanelOf(ParasGroup group) const;
  QGroupBox& BoxOf(ParasGroup group) const;
  QLabel& LabelOf(ParasText text) const;
  void ConnectControls();

  std::unique_ptr<Ui::FormGraphicsParas> ui_;
  std::unique_ptr<GraphicsParasModel> model_;
  /// The height of the groups, until the window is shown.
  std::optional<int> heightToShow_;
};

}  // namespace rasterkit
