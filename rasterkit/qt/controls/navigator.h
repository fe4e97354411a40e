#pragma once

#include <QPushButton>
#include <QWidget>
#include <array>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The buttons of a navigator in tab order.
enum TNavigateButton { nbPost, nbCancel, nbHelp, nbRefresh };

/// The row of buttons that closes a dialog: post (OK), cancel, help, refresh. Refresh and help are
/// at the left, OK and cancel at the right.
///
/// OK is the default button of the dialog: Enter presses it. F1 and F5 press help and refresh while
/// these are visible. Escape is handled by the dialog. Names for screen readers and tooltips are
/// set. Can be a promoted widget in a Designer form.
class RASTERKIT_EXPORT TNavigator : public QWidget {
  Q_OBJECT
  Q_PROPERTY(bool helpVisible READ isHelpVisible WRITE setHelpVisible)
  Q_PROPERTY(bool refreshVisible READ isRefreshVisible WRITE setRefreshVisible)
  Q_PROPERTY(bool compact READ isCompact WRITE setCompact)

 public:
  /// OK and cancel are visible at first, help and refresh are hidden.
  explicit TNavigator(QWidget* parent = nullptr);

  /// A button, for enabling it or changing its text.
  QPushButton& Button(TNavigateButton button) const { return *buttons_[button]; }

  bool isHelpVisible() const { return !Button(nbHelp).isHidden(); }
  void setHelpVisible(bool visible) { Button(nbHelp).setVisible(visible); }
  bool isRefreshVisible() const { return !Button(nbRefresh).isHidden(); }
  void setRefreshVisible(bool visible) { Button(nbRefresh).setVisible(visible); }

  /// Width and height in pixels of a button of a compact bar.
  static constexpr int kCompactButton = 28;
  /// A compact bar shows icons without texts, side by side: two buttons are 56 pixels wide.
  bool isCompact() const { return isCompact_; }
  void setCompact(bool compact);

 Q_SIGNALS:
  /// Any button was pressed; one of the four below follows.
  void clicked(rasterkit::TNavigateButton button);
  void postClicked();
  void cancelClicked();
  void helpClicked();
  void refreshClicked();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void OnClicked(TNavigateButton button);

  std::array<QPushButton*, 4> buttons_{};
  bool isCompact_ = false;
};

}  // namespace rasterkit
