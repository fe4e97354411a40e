#pragma once

#include <QPushButton>
#include <QWidget>
#include <array>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The buttons of a navigator, in the order of the tab key.
enum TNavigateButton { nbPost, nbCancel, nbHelp, nbRefresh };

/// The bar of buttons that ends a dialog: post (OK), cancel, help, refresh. Refresh and help stand
/// at the left, OK and cancel at the right.
///
/// OK is the default button of the dialog, Enter presses it; F1 and F5 press help and refresh while
/// these are visible. Escape is the dialog's own. Names for screen readers and tooltips come along.
/// May stand in a Designer form as a promoted widget.
class RASTERKIT_EXPORT TNavigator : public QWidget {
  Q_OBJECT
  Q_PROPERTY(bool helpVisible READ isHelpVisible WRITE setHelpVisible)
  Q_PROPERTY(bool refreshVisible READ isRefreshVisible WRITE setRefreshVisible)
  Q_PROPERTY(bool compact READ isCompact WRITE setCompact)

 public:
  /// OK and cancel are visible; help and refresh must be asked for.
  explicit TNavigator(QWidget* parent = nullptr);

  /// A button, to enable it or to give it another text.
  QPushButton& Button(TNavigateButton button) const { return *buttons_[button]; }

  bool isHelpVisible() const { return !Button(nbHelp).isHidden(); }
  void setHelpVisible(bool visible) { Button(nbHelp).setVisible(visible); }
  bool isRefreshVisible() const { return !Button(nbRefresh).isHidden(); }
  void setRefreshVisible(bool visible) { Button(nbRefresh).setVisible(visible); }

  /// The width and height of a button of a compact bar.
  static constexpr int kCompactButton = 28;
  /// A compact bar shows the drawings without the texts, side by side: two buttons are 56 wide.
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
