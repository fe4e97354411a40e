#pragma once

#include <QAbstractSpinBox>
#include <QLineEdit>
#include <QSpinBox>
#include <memory>

#include <rasterkit/runtime/export.h>

/// Fields for numbers. Their value is always a finite number within the range, regardless of what
/// is typed or pasted: keys that cannot be part of a number are ignored. A field that is left empty
/// or unfinished shows its last value again when the user leaves it or presses Enter.
///
/// The arrow keys and the mouse wheel change the number by one step; Page Up, Page Down and the
/// wheel with Ctrl change it by ten. Point and comma are both accepted as the decimal mark and
/// shown as the locale requires. Each class can be a promoted widget in a Designer form. The names
/// follow Qt's spin boxes.
namespace rasterkit {

namespace detail {
struct HeldNumber;
}

/// A line edit for a number. Its value is a double; only the display is rounded to `decimals`
/// digits.
class RASTERKIT_EXPORT TFloatEdit : public QLineEdit {
  Q_OBJECT
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)
  Q_PROPERTY(int decimals READ decimals WRITE setDecimals)
  Q_PROPERTY(bool negativeAllowed READ isNegativeAllowed WRITE setNegativeAllowed)
  Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
  Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)

 public:
  /// Starts at 0 with two decimals and the range -10^15 to 10^15.
  explicit TFloatEdit(QWidget* parent = nullptr);
  ~TFloatEdit() override;

  /// Returns the number that was set or typed last.
  double value() const;
  /// Sets the number, clamped to the range; infinities and NaN are ignored. Emits `valueChanged`
  /// only if the display changes, so that two fields that set each other come to rest.
  void setValue(double value);

  /// Digits after the decimal mark, 0 to 15. More digits cannot be typed.
  int decimals() const;
  void setDecimals(int decimals);

  /// Whether negative numbers are allowed: the minimum is -maximum then, else 0.
  bool isNegativeAllowed() const;
  void setNegativeAllowed(bool allowed);

  /// The largest value; finite and not negative.
  double maximum() const;
  void setMaximum(double maximum);

  /// The step of an arrow key or a wheel notch; 1 by default.
  double singleStep() const { return singleStep_; }
  void setSingleStep(double step);

 Q_SIGNALS:
  /// Emitted if the value was changed by typing, a step or setValue().
  void valueChanged(double value);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void OnTextChanged(const QString& text);
  void StepBy(int steps);
  void ShowValue();
  void ShowValueIfOther();
  void SetRange(double minimum, double maximum);

  std::unique_ptr<detail::HeldNumber> number_;
  double singleStep_ = 1;
  int wheelRest_ = 0;
  bool isShowing_ = false;
};

/// A spin box for an integer; the default range is that of 32 bits.
class RASTERKIT_EXPORT TSpinEditInt : public QSpinBox {
  Q_OBJECT

 public:
  explicit TSpinEditInt(QWidget* parent = nullptr);
};

/// A spin box for a double. Only the display is rounded to `decimals` digits.
class RASTERKIT_EXPORT TSpinEditReal : public QAbstractSpinBox {
  Q_OBJECT
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
  Q_PROPERTY(int decimals READ decimals WRITE setDecimals)
  Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
  Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
  Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)

 public:
  /// Starts at 0 with two decimals and the range -10^15 to 10^15.
  explicit TSpinEditReal(QWidget* parent = nullptr);
  ~TSpinEditReal() override;

  double value() const;
  /// Like TFloatEdit::setValue.
  void setValue(double value);

  /// Digits after the decimal mark, 0 to 15.
  int decimals() const;
  void setDecimals(int decimals);

  double minimum() const;
  double maximum() const;
  /// Sets a limit; the other limit moves with it if they would cross. NaN and infinities are
  /// ignored.
  void setMinimum(double minimum);
  void setMaximum(double maximum);
  void setRange(double minimum, double maximum);

  double singleStep() const { return singleStep_; }
  void setSingleStep(double step);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  QValidator::State validate(QString& input, int& pos) const override;
  void fixup(QString& input) const override;
  void stepBy(int steps) override;

 Q_SIGNALS:
  void valueChanged(double value);

 protected:
  StepEnabled stepEnabled() const override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void OnTextChanged(const QString& text);
  void ShowValue();
  void ShowValueIfOther();
  QSize SizeFor(double least, double greatest) const;

  std::unique_ptr<detail::HeldNumber> number_;
  double singleStep_ = 1;
  bool isShowing_ = false;
};

}  // namespace rasterkit
