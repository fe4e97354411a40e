#pragma once

#include <QList>
#include <QWidget>
#include <string>

/// What a form consists of, for the rules.
namespace rasterkit::test {

/// The object name, else the class.
std::string NameOf(const QWidget& widget);

/// The visible widgets in a form, except Qt's internal ones.
QList<const QWidget*> Controls(const QWidget& form);

/// Those that the Tab key reaches.
QList<const QWidget*> KeyboardControls(const QWidget& form);

/// The text that a label, a button, a group or a number field shows.
QString TextOf(const QWidget& widget);

}  // namespace rasterkit::test
