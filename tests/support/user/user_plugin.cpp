#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "tests/support/user/user_script.h"

#include <QtGui/QGenericPlugin>

namespace rasterkit::test {
namespace {

/// Waits for modal windows and performs the steps in RASTERKIT_USER: steps are separated by
/// semicolons, windows by bars in the order in which they open ("type FlEdW 30; click ButtonOK |
/// key Escape"). A window that a step opens is handled before the next step. Instead of steps,
/// "action TEXT" runs a command of the program's own window, and "quit" closes it. A window that is
/// still open after its steps, or that was not expected, is reported on stderr and closed, so that
/// no program waits forever.
class User : public QObject {
 public:
  User() : scripts_(qEnvironmentVariable("RASTERKIT_USER").split(QLatin1Char('|'))) {
    constexpr int kMilliseconds = 20;
    startTimer(kMilliseconds);
  }

 protected:
  void timerEvent(QTimerEvent*) override {
    auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (window == nullptr) return Command();
    if (window == closing_) return WaitForTheEnd(*window);
    if (window == actsOn_ || !window->isVisible() || !IsReady(*window)) return;
    const QPointer<QDialog> before = std::exchange(actsOn_, window);
    // Not from here: the timer pauses during this event, and a step may open a window.
    const auto act = [this, before] {
      if (actsOn_) Act(*actsOn_);
      actsOn_ = before;
    };
    QMetaObject::invokeMethod(this, act, Qt::QueuedConnection);
  }

 private:
  /// Does not wait for the command, which opens its own windows.
  void Command() {
    if (actsOn_) return;
    const QString script = scripts_.value(next_).trimmed();
    const bool quits = script == QLatin1String("quit");
    if (!quits && !script.startsWith(QLatin1String("action "))) return;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
      if (!window->isVisible()) continue;
      ++next_;
      if (quits) return void(window->close());
      const QString text = script.section(QLatin1Char(' '), 1);
      for (QAction* const action : window->findChildren<QAction*>())
        if (action->text() == text) return QTimer::singleShot(0, action, &QAction::trigger);
      std::fprintf(stderr, "user: there is no action %s\n", qPrintable(text));
    }
  }

  /// Waits, with a limit, until the window was painted, so that its layout is final, is active, and
  /// is not busy. In a window that is not active yet, a field that is left does not learn of it and
  /// keeps what was typed to itself.
  bool IsReady(const QDialog& window) {
    if (std::exchange(seen_, &window) != &window) {
      waited_ = 0;
      return false;
    }
    const QString script = scripts_.value(next_);
    const bool canAct =
        window.isActiveWindow() && CanDoStep(window, script.section(QLatin1Char(';'), 0, 0));
    return ++waited_ > kLongest || canAct;
  }

  void Act(QDialog& window) {
    seen_ = nullptr;
    if (next_ >= scripts_.size())
      return Leave(window, QStringLiteral("this window was not expected"));
    const QString script = scripts_[next_++];
    for (const QString& step : script.split(QLatin1Char(';')))
      if (!DoStep(window, step))
        return Leave(window, QLatin1String("cannot do: ") + step.trimmed());
    closing_ = window.isVisible() ? &window : nullptr;
    waited_ = 0;
  }

  /// A window that is drawing a page closes when the page is given up.
  void WaitForTheEnd(QDialog& window) {
    if (!window.isVisible() || ++waited_ <= kLongest) return;
    closing_ = nullptr;
    Leave(window, QStringLiteral("the window is still there"));
  }

  /// A window that asks before it closes would ask again and again.
  void Leave(QDialog& window, const QString& reason) {
    constexpr int kMostTries = 4, kGaveUp = 9;
    std::fprintf(stderr, "user: %s\n", qPrintable(reason));
    if (++tries_ > kMostTries) std::_Exit(kGaveUp);
    window.reject();
  }

  /// Turns of the timer.
  static constexpr int kLongest = 500;

  QStringList scripts_;
  int next_ = 0, tries_ = 0;
  QPointer<QDialog> closing_;
  QPointer<QDialog> actsOn_;
  const QDialog* seen_ = nullptr;
  int waited_ = 0;
};

class UserPlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "user_plugin.json")

 public:
  QObject* create(const QString&, const QString&) override {
    return std::make_unique<User>().release();
  }
};

}  // namespace
}  // namespace rasterkit::test

#include "user_plugin.moc"
