#pragma once

#include <QWidget>
#include <string>
#include <vector>

/// What holds for every form; each function lists the faults of a form that is shown, a line a
/// fault.
namespace rasterkit::test {

/// Labels, buttons, group titles and number fields have the room that their texts want, inside of
/// what they stand on.
std::vector<std::string> ClippedTexts(const QWidget& form);

/// Whatever takes the keyboard has a name for screen readers (its own text, a label that belongs to
/// it, or one given to it).
std::vector<std::string> NamelessControls(const QWidget& form);

/// Whatever takes the keyboard says in a tooltip what it does; the buttons of a button box
/// say enough themselves.
std::vector<std::string> ControlsWithoutTip(const QWidget& form);

/// No letter calls two controls.
std::vector<std::string> SharedMnemonics(const QWidget& form);

}  // namespace rasterkit::test
