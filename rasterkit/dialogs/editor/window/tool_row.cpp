#include <QEvent>
#include <QFrame>
#include <QKeyEvent>
#include <QShortcut>

#include <rasterkit/dialogs/editor/window/tool_row.h>
#include <rasterkit/dialogs/editor/window/wrapped_row.h>

namespace rasterkit {
namespace {

constexpr int kMostLines = 3;
constexpr QSize kIconSize(20, 20);

}  // namespace

ToolRow::ToolRow(QWidget* parent) : QWidget(parent) {
  new WrappedRow(this, kMostLines);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  auto* shortcut = new QShortcut(QKeySequence(Qt::Key_F6), this);
  connect(shortcut, &QShortcut::activated, this, [this] {
    if (stop_ >= 0) tools_[stop_]->setFocus(Qt::ShortcutFocusReason);
  });
}

QToolButton* ToolRow::AddTool(QAction& action, const QString& name) {
  auto* button = new QToolButton(this);
  button->setObjectName(name);
  button->setDefaultAction(&action);
  button->setAutoRaise(true);
  button->setIconSize(kIconSize);
  button->setFocusPolicy(Qt::NoFocus);
  button->setAccessibleDescription(action.statusTip());
  button->installEventFilter(this);
  button->setVisible(action.isVisible());
  connect(&action, &QAction::changed, button,
          [button, &action] { button->setVisible(action.isVisible()); });
  layout()->addWidget(button);
  tools_ += button;
  if (stop_ < 0) SetStop(0);
  return button;
}

void ToolRow::AddLine() {
  auto* line = new QFrame(this);
  line->setFrameShape(QFrame::VLine);
  line->setFrameShadow(QFrame::Plain);
  line->setFixedHeight(kIconSize.height());
  layout()->addWidget(line);
}

bool ToolRow::IsUsable(int index) const {
  return tools_[index]->isEnabled() && !tools_[index]->isHidden();
}

int ToolRow::Next(int index, int step) const {
  for (int next = index + step; next >= 0 && next < tools_.size(); next += step) {
    if (IsUsable(next)) return next;
  }
  return index;
}

void ToolRow::SetStop(int index) {
  if (stop_ >= 0) tools_[stop_]->setFocusPolicy(Qt::NoFocus);
  stop_ = index;
  tools_[stop_]->setFocusPolicy(Qt::TabFocus);
  setFocusProxy(tools_[stop_]);
}

/// A pale button takes no focus, so another one must be the stop.
void ToolRow::KeepStopUsable() {
  if (stop_ < 0 || IsUsable(stop_)) return;
  const int after = Next(stop_, 1), before = Next(stop_, -1);
  if (after != stop_ || before != stop_) SetStop(after != stop_ ? after : before);
}

bool ToolRow::eventFilter(QObject* watched, QEvent* event) {
  const auto index = static_cast<int>(tools_.indexOf(static_cast<QToolButton*>(watched)));
  switch (event->type()) {
    case QEvent::EnabledChange:
    case QEvent::HideToParent:
    case QEvent::ShowToParent:
      KeepStopUsable();
      break;
    case QEvent::KeyPress:
      if (HandleKey(index, static_cast<QKeyEvent*>(event)->key())) return true;
      break;
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

bool ToolRow::HandleKey(int index, int key) {
  const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
  int next = index;
  switch (key) {
    case Qt::Key_Left:
      next = Next(index, isRightToLeft ? 1 : -1);
      break;
    case Qt::Key_Right:
      next = Next(index, isRightToLeft ? -1 : 1);
      break;
    case Qt::Key_Up:
      next = Next(index, -1);
      break;
    case Qt::Key_Down:
      next = Next(index, 1);
      break;
    case Qt::Key_Home:
      next = Next(-1, 1);
      break;
    case Qt::Key_End:
      next = Next(static_cast<int>(tools_.size()), -1);
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      tools_[index]->click();
      return true;
    default:
      return false;
  }
  if (next < 0 || next >= tools_.size()) return true;
  SetStop(next);
  tools_[next]->setFocus(Qt::TabFocusReason);
  return true;
}

}  // namespace rasterkit
