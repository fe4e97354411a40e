#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

namespace rasterkit::test {

/// Does one step in a window:
///
///     click NAME            on the button of that object name, or else of that text
///     type NAME TEXT        into the field, in place of what it holds; in a list, the entry
///     enter NAME TEXT       the same, with Return at its end
///     drag NAME X,Y X,Y     with the left button over the widget
///     press NAME KEY        a key on the widget: Home, End, Left ...
///     key Escape            Escape or Return, into the window
///     close                 by the window's frame
///     interrupt             Ctrl-C in the terminal behind the program
///
/// False when there is no such widget or step.
bool DoStep(QWidget& window, const QString& step);

/// Whether the widget that the step names, if it names one, is there and enabled.
bool CanDoStep(const QWidget& window, const QString& step);

}  // namespace rasterkit::test
