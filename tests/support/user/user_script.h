#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

namespace rasterkit::test {

/// Performs one step in a window:
///
///     click NAME            on the button of that object name, or else of that text
///     type NAME TEXT        into the field, replacing its text; in a list, the entry
///     enter NAME TEXT       the same, followed by Return
///     drag NAME X,Y X,Y     with the left button over the widget
///     press NAME KEY        a key for the widget: Home, End, Left ...
///     key Escape            Escape or Return for the window
///     close                 with the frame's close button
///     interrupt             Ctrl-C in the terminal behind the program
///
/// False if there is no such widget or step.
bool DoStep(QWidget& window, const QString& step);

/// Whether the widget of the step, if it has one, exists and is enabled.
bool CanDoStep(const QWidget& window, const QString& step);

}  // namespace rasterkit::test
