#pragma once

#include <QAbstractSpinBox>
#include <QLineEdit>
#include <QSpinBox>
#include <memory>

#include <rasterkit/runtime/export.h>

/// Fields for numbers. Whatever is typed or pasted into them, their value is a finite number within
/// the range: keys that cannot belong to a number do nothing, and a field that was left empty or
/// unfinished shows its last value again when the user leaves it or presses Enter.
///
/// The arrow keys and the mouse wheel change the number by a step, Page Up and Page Down and the
/// wheel with Ctrl by ten. Point and comma both are the decimal point, shown as the locale has it.
/// Each class may stand in a Designer form as a promoted widget; names follow Qt's spin boxes.
namespace rasterkit {

namespace detail {
struct HeldNumber;
}

/// A line edit for a number. Its value is a double; the display is rounded to `decimals` digits,
/// the value is not.
class RASTERKIT_EXPORT TFloatEdit : public QLineEdit {
  Q_OBJECT
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)
  Q_PROPERTY(int decimals READ decimals WRITE setDecimals)
  Q_PROPERTY(bool negativeAllowed READ isNegativeAllowed WRITE setNegativeAllowed)
  Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
  Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)

 public:
  /// Shows 0, with two decimals, between -10^15 and 10^15.
  explicit TFloatEdit(QWidget* parent = nullptr);
  ~TFloatEdit() override;

  /// The number that was set, or that was typed last.
  double value() const;
  /// Sets the number, kept in the range; infinities and what is no number are ignored. Fires
  /// `valueChanged` only when the display changes: two fields that set each other come to rest.
  void setValue(double value);

  /// Digits behind the decimal point, 0 to 15. More of them cannot be typed.
  int decimals() const;
  void setDecimals(int decimals);

  /// Without negative numbers the least value is 0, else it is -maximum.
  bool isNegativeAllowed() const;
  void setNegativeAllowed(bool allowed);

  /// The greatest value; finite and not negative.
  double maximum() const;
  void setMaximum(double maximum);

  /// What an arrow key or a notch of the wheel adds to the number shown; 1 at first.
  double singleStep() const { return singleStep_; }
  void setSingleStep(double step);

 Q_SIGNALS:
  /// The value is another one: typed, stepped or set.
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

/// A spin box for a whole number, at first any of 32 bits.
class RASTERKIT_EXPORT TSpinEditInt : public QSpinBox {
  Q_OBJECT

 public:
  explicit TSpinEditInt(QWidget* parent = nullptr);
};

/// A spin box for a double, which keeps it unrounded: the display has `decimals` digits.
class RASTERKIT_EXPORT TSpinEditReal : public QAbstractSpinBox {
  Q_OBJECT
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
  Q_PROPERTY(int decimals READ decimals WRITE setDecimals)
  Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
  Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
  Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)

 public:
  /// Shows 0, with two decimals, between -10^15 and 10^15.
  explicit TSpinEditReal(QWidget* parent = nullptr);
  ~TSpinEditReal() override;

  double value() const;
  /// As TFloatEdit::setValue.
  void setValue(double value);

  /// Digits behind the decimal point, 0 to 15.
  int decimals() const;
  void setDecimals(int decimals);

  double minimum() const;
  double maximum() const;
  /// A limit beyond the other one takes that one along; limits that are no numbers are ignored.
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
