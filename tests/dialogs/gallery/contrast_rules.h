#pragma once

#include <QWidget>
#include <string>
#include <vector>

/// Contrast rules for a form that is shown, for people with low vision; measured in its photograph.
/// Each function lists the faults, one line per fault. Disabled controls may be pale.
namespace rasterkit::test {

/// Texts have a contrast of 4.5 to 1 to their background.
std::vector<std::string> FaintTexts(QWidget& form);

/// Fields, buttons, boxes, the knobs of track bars, groups and panels have an outline or a face of
/// 3 to 1.
std::vector<std::string> FaintFrames(QWidget& form);

/// At least half of a drawing on a button has a contrast of 3 to 1.
std::vector<std::string> FaintIcons(QWidget& form);

/// A control that gets the focus changes by a contrast of 3 to 1 in at least half as many pixels as
/// its outline has.
std::vector<std::string> FaintFocus(QWidget& form);

}  // namespace rasterkit::test
