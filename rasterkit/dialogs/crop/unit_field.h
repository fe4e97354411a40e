#pragma once

#include <functional>

#include <rasterkit/qt/controls/edits.h>

namespace rasterkit {

/// A field for a number that its owner rounds: the owner learns of a number when it is complete,
/// and of steps by their count.
class TUnitField : public TSpinEditReal {
  Q_OBJECT

 public:
  explicit TUnitField(QWidget* parent = nullptr);

  /// Called with a typed number after Enter or when the field is left.
  std::function<void(double value)> OnTyped;
  /// Called for arrow keys, buttons and the wheel. If empty, the number changes by its own step.
  std::function<void(int steps)> OnStep;

  void stepBy(int steps) override;

 protected:
  /// Undo and redo belong to the window unless a number is being typed.
  bool event(QEvent* event) override;

 private:
  bool isTyped_ = false;
};

}  // namespace rasterkit
