#pragma once

#include <QWidget>
#include <string>
#include <vector>

/// Rules for screen readers and keyboard users. Each function lists the faults of a form that is
/// shown, one line per fault.
namespace rasterkit::test {

/// Goes through the form as screen readers do: every node has the role, the name and the states of
/// what it is, numbers tell value and limits, buttons can be pressed, and labels say what they
/// show.
std::vector<std::string> ReaderFaults(QWidget& form);

/// No two controls of one kind have the same name.
std::vector<std::string> TwinNames(QWidget& form);

/// Every control that the keyboard reaches can be called from afar: by a mnemonic of its own or of
/// its label, by keys of its own, because the window begins or ends with it, or because it stands
/// behind a control that has a mnemonic for both.
std::vector<std::string> ControlsWithoutKey(QWidget& form);

}  // namespace rasterkit::test
