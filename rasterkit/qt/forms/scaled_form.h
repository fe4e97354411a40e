#pragma once

#include <QDialog>
#include <string>

#include <rasterkit/qt/forms/translate_texts.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Base of every form: a resizable modal window. It follows the scale of the screen and the style
/// of the host, stores its position under its object name, and closes cleanly when the host quits.
/// If the style is Fusion, outlines and the focus are drawn with more contrast.
///
/// A derived form owns the `Ui::...` of its Designer file and calls `SetUpForm(ui)` first in its
/// constructor. Its buttons close it with Qt's `accept()` and `reject()`.
class RASTERKIT_EXPORT TScaledForm : public QDialog {
  Q_OBJECT

 public:
  explicit TScaledForm(QWidget* parent = nullptr);

  /// Shows the form and returns when it is closed: mrOk after `accept()`, mrCancel after
  /// `reject()`, Escape, the close button of the frame or the end of the host's event loop.
  int ShowModal();

  /// Shows or hides the window, which opens large enough for its texts.
  void setVisible(bool visible) override;

  /// Stores the position under this name instead of the object name. For a form that has several
  /// sizes.
  void SetSettingsName(const std::string& name) { settingsName_ = name; }

 protected:
  /// Creates the widgets and translates their texts.
  template <typename Ui>
  void SetUpForm(Ui& ui) {
    ui.setupUi(this);
    TranslateTexts(*this);
  }

  bool event(QEvent* event) override;

 private:
  void FitToTexts();

  std::string settingsName_;
};

}  // namespace rasterkit
