#pragma once

#include <QWidget>
#include <string>
#include <vector>

/// Whether a form that is shown can be seen by people who see little; measured in its photograph.
/// Each function lists the faults, a line a fault. What is disabled may be pale.
namespace rasterkit::test {

/// Texts have a contrast of 4.5 to 1 to their grounds.
std::vector<std::string> FaintTexts(QWidget& form);

/// Fields, buttons, boxes, the knobs of track bars, groups and panels have an outline or a face of
/// 3 to 1.
std::vector<std::string> FaintFrames(QWidget& form);

/// At least half of what a drawing on a button consists of has 3 to 1.
std::vector<std::string> FaintIcons(QWidget& form);

/// What gets the focus changes by a contrast of 3 to 1 in as many pixels as half of its outline
/// has.
std::vector<std::string> FaintFocus(QWidget& form);

}  // namespace rasterkit::test
