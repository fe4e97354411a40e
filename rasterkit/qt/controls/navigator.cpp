#include <QHBoxLayout>
#include <QPointer>
#include <QShortcut>

#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

struct Description {
  TNavigateButton button;
  const char* name;
  std::string_view text, toolTip;
  const char* icon;
  QKeySequence::StandardKey key;
};

constexpr Description kDescriptions[] = {
    {nbPost, "nbPost", rsOk, rsOkHint, "post", QKeySequence::UnknownKey},
    {nbCancel, "nbCancel", rsCancel, rsCancelHint, "cancel", QKeySequence::UnknownKey},
    {nbHelp, "nbHelp", rsHelp, rsHelpHint, "help", QKeySequence::HelpContents},
    {nbRefresh, "nbRefresh", rsRefresh, rsRefreshHint, "refresh", QKeySequence::Refresh},
};

/// "Shows help (F1)".
QString HintWithKey(const Description& description) {
  const QString hint = ResourceText(description.toolTip);
  const QString keys = QKeySequence(description.key).toString(QKeySequence::NativeText);
  return keys.isEmpty() ? hint : hint + " (" + keys + ")";
}

QPushButton* NewButton(const Description& description, QWidget* parent) {
  auto* button = new QPushButton(ResourceText(description.text), parent);
  button->setObjectName(description.name);
  button->setIcon(Icon(description.icon));
  button->setToolTip(HintWithKey(description));
  button->setAccessibleName(ResourceText(description.text));
  button->setAccessibleDescription(ResourceText(description.toolTip));
  button->setAutoDefault(description.button == nbPost || description.button == nbCancel);
  if (description.key != QKeySequence::UnknownKey) {
    // The shortcut of a hidden or disabled button is inactive.
    auto* shortcut = new QShortcut(description.key, button);
    QObject::connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
  }
  return button;
}

}  // namespace

TNavigator::TNavigator(QWidget* parent) : QWidget(parent) {
  for (const Description& description : kDescriptions) {
    QPushButton* button = NewButton(description, this);
    buttons_[description.button] = button;
    connect(button, &QPushButton::clicked, this,
            [this, which = description.button] { OnClicked(which); });
  }
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(buttons_[nbRefresh]);
  row->addWidget(buttons_[nbHelp]);
  row->addStretch(1);
  row->addWidget(buttons_[nbPost]);
  row->addWidget(buttons_[nbCancel]);
  setHelpVisible(false);
  setRefreshVisible(false);
  setFocusProxy(buttons_[nbPost]);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TNavigator::setCompact(bool compact) {
  if (compact == isCompact_) return;
  isCompact_ = compact;
  for (const Description& description : kDescriptions) {
    QPushButton& button = Button(description.button);
    button.setText(compact ? QString() : ResourceText(description.text));
    if (compact) {
      button.setFixedSize(kCompactButton, kCompactButton);
    } else {
      button.setMinimumSize(0, 0);
      button.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
  }
  layout()->setSpacing(compact ? 0 : -1);
  setSizePolicy(compact ? QSizePolicy::Fixed : QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TNavigator::showEvent(QShowEvent* event) {
  // Only now the dialog exists, which would otherwise choose the first button in tab order.
  Button(nbPost).setDefault(true);
  QWidget::showEvent(event);
}

void TNavigator::OnClicked(TNavigateButton button) {
  const QPointer<TNavigator> alive = this;
  Q_EMIT clicked(button);
  if (!alive) return;
  switch (button) {
    case nbPost:
      return Q_EMIT postClicked();
    case nbCancel:
      return Q_EMIT cancelClicked();
    case nbHelp:
      return Q_EMIT helpClicked();
    case nbRefresh:
      return Q_EMIT refreshClicked();
  }
}

}  // namespace rasterkit
