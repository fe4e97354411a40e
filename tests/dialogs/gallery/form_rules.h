#pragma once

#include <QWidget>
#include <string>
#include <vector>

/// Rules for every form. Each function lists the faults of a form that is shown, one line per
/// fault.
namespace rasterkit::test {

/// Labels, buttons, group titles and number fields are large enough for their texts and inside
/// their parent.
std::vector<std::string> ClippedTexts(const QWidget& form);

/// Every control with keyboard focus has a name for screen readers (its own text, a label, or an
/// accessible name).
std::vector<std::string> NamelessControls(const QWidget& form);

/// Every control with keyboard focus has a tooltip; the buttons of a button box need none.
std::vector<std::string> ControlsWithoutTip(const QWidget& form);

/// No mnemonic belongs to two controls.
std::vector<std::string> SharedMnemonics(const QWidget& form);

}  // namespace rasterkit::test
