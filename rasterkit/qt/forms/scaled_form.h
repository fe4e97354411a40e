#pragma once

#include <QDialog>
#include <string>

#include <rasterkit/qt/forms/translate_texts.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Base of every form: a modal window that stretches, follows the screen's scaling and the host's
/// style (where that is Fusion, with outlines and a focus that are seen), remembers its place under
/// its object name, and leaves cleanly when the host quits.
///
/// A derived form keeps the `Ui::...` that Designer describes and calls `SetUpForm(ui)` first thing
/// in its constructor. Its buttons end it with Qt's `accept()` and `reject()`.
class RASTERKIT_EXPORT TScaledForm : public QDialog {
  Q_OBJECT

 public:
  explicit TScaledForm(QWidget* parent = nullptr);

  /// Shows the form and returns when it was closed: mrOk after `accept()`, mrCancel after
  /// `reject()`, Escape, the window's frame or the end of the host's loop.
  int ShowModal();

  /// Keeps the place under this name instead of the object name; for a form that comes in several
  /// sizes.
  void SetSettingsName(const std::string& name) { settingsName_ = name; }

 protected:
  /// Builds the widgets and gives them the user's language.
  template <typename Ui>
  void SetUpForm(Ui& ui) {
    ui.setupUi(this);
    TranslateTexts(*this);
  }

  bool event(QEvent* event) override;

 private:
  std::string settingsName_;
};

}  // namespace rasterkit
