#include <QFontMetrics>
#include <QKeyEvent>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/number_text.h>

namespace rasterkit {
namespace {

/// Integers up to this limit are exact in a double and fit into a field.
constexpr double kWidestRange = 1e15;
constexpr int kPageSteps = 10;
/// One notch of the wheel, in eighths of a degree.
constexpr int kNotch = 120;

bool EndsEditing(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// Validates and corrects typed text with the rules of a field.
class NumberValidator : public QValidator {
 public:
  NumberValidator(const detail::NumberText& rules, QObject* parent)
      : QValidator(parent), rules_(rules) {}

  State validate(QString& text, int& cursor) const override {
    const State state = rules_.Check(text);
    cursor = std::min(cursor, static_cast<int>(text.size()));
    return state;
  }

 private:
  const detail::NumberText& rules_;
};

std::unique_ptr<detail::HeldNumber> NewNumber(const QWidget& field) {
  auto number = std::make_unique<detail::HeldNumber>();
  number->text = {field.locale(), 2, -kWidestRange, kWidestRange};
  return number;
}

}  // namespace

TFloatEdit::TFloatEdit(QWidget* parent) : QLineEdit(parent), number_(NewNumber(*this)) {
  setFocusPolicy(Qt::WheelFocus);
  setInputMethodHints(Qt::ImhFormattedNumbersOnly);
  ShowValue();
  setValidator(new NumberValidator(number_->text, this));
  connect(this, &QLineEdit::textChanged, this, &TFloatEdit::OnTextChanged);
}

TFloatEdit::~TFloatEdit() {
  // The validator refers to the number, which is destroyed first.
  setValidator(nullptr);
}

double TFloatEdit::value() const {
  return number_->value;
}

void TFloatEdit::setValue(double value) {
  const bool changed = number_->Set(value);
  ShowValueIfOther();
  if (changed) Q_EMIT valueChanged(number_->value);
}

int TFloatEdit::decimals() const {
  return number_->text.decimals;
}

void TFloatEdit::setDecimals(int decimals) {
  number_->text.decimals = std::clamp(decimals, 0, detail::NumberText::kMostDecimals);
  ShowValue();
}

bool TFloatEdit::isNegativeAllowed() const {
  return number_->text.minimum < 0;
}

void TFloatEdit::setNegativeAllowed(bool allowed) {
  // With a maximum of 0 there are no negative numbers in either case.
  SetRange(allowed ? -maximum() : 0, maximum());
}

double TFloatEdit::maximum() const {
  return number_->text.maximum;
}

void TFloatEdit::setMaximum(double maximum) {
  if (!std::isfinite(maximum) || maximum < 0) return;
  SetRange(isNegativeAllowed() ? -maximum : 0, maximum);
}

void TFloatEdit::setSingleStep(double step) {
  if (std::isfinite(step)) singleStep_ = step;
}

void TFloatEdit::SetRange(double minimum, double maximum) {
  number_->text.minimum = minimum;
  number_->text.maximum = maximum;
  setValue(number_->value);
}

void TFloatEdit::OnTextChanged(const QString& text) {
  if (!isShowing_ && number_->Type(text)) Q_EMIT valueChanged(number_->value);
}

void TFloatEdit::StepBy(int steps) {
  setValue(number_->Stepped(singleStep_, steps));
  ShowValue();
  selectAll();
}

void TFloatEdit::ShowValue() {
  isShowing_ = true;
  setText(number_->text.Format(number_->value));
  isShowing_ = false;
}

void TFloatEdit::ShowValueIfOther() {
  if (!number_->IsShownBy(text())) ShowValue();
}

void TFloatEdit::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
  const bool isUp = key == Qt::Key_Up || key == Qt::Key_PageUp;
  if (!isReadOnly() && (isPage || isUp || key == Qt::Key_Down)) {
    StepBy((isUp ? 1 : -1) * (isPage ? kPageSteps : 1));
    event->accept();
    return;
  }
  if (EndsEditing(*event)) ShowValue();
  QLineEdit::keyPressEvent(event);
}

void TFloatEdit::wheelEvent(QWheelEvent* event) {
  if (isReadOnly()) return QLineEdit::wheelEvent(event);
  // Fine wheels and touch pads send parts of a notch.
  wheelRest_ += event->angleDelta().y();
  const int notches = wheelRest_ / kNotch;
  wheelRest_ -= notches * kNotch;
  const bool isPage = event->modifiers().testFlag(Qt::ControlModifier);
  if (notches != 0) StepBy(notches * (isPage ? kPageSteps : 1));
  event->accept();
}

void TFloatEdit::focusOutEvent(QFocusEvent* event) {
  // A menu or another window on top does not end the editing.
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) {
    ShowValue();
  }
  wheelRest_ = 0;
  QLineEdit::focusOutEvent(event);
}

void TFloatEdit::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LocaleChange && number_) {
    number_->text.locale = locale();
    ShowValue();
  }
  QLineEdit::changeEvent(event);
}

TSpinEditInt::TSpinEditInt(QWidget* parent) : QSpinBox(parent) {
  setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

TSpinEditReal::TSpinEditReal(QWidget* parent)
    : QAbstractSpinBox(parent), number_(NewNumber(*this)) {
  setInputMethodHints(Qt::ImhFormattedNumbersOnly);
  ShowValue();
  connect(lineEdit(), &QLineEdit::textChanged, this, &TSpinEditReal::OnTextChanged);
}

TSpinEditReal::~TSpinEditReal() = default;

double TSpinEditReal::value() const {
  return number_->value;
}

void TSpinEditReal::setValue(double value) {
  const bool changed = number_->Set(value);
  ShowValueIfOther();
  // The arrows follow the limits.
  update();
  if (changed) Q_EMIT valueChanged(number_->value);
}

int TSpinEditReal::decimals() const {
  return number_->text.decimals;
}

void TSpinEditReal::setDecimals(int decimals) {
  number_->text.decimals = std::clamp(decimals, 0, detail::NumberText::kMostDecimals);
  ShowValue();
  updateGeometry();
}

double TSpinEditReal::minimum() const {
  return number_->text.minimum;
}

double TSpinEditReal::maximum() const {
  return number_->text.maximum;
}

void TSpinEditReal::setMinimum(double minimum) {
  setRange(minimum, std::max(minimum, maximum()));
}

void TSpinEditReal::setMaximum(double maximum) {
  setRange(std::min(minimum(), maximum), maximum);
}

void TSpinEditReal::setRange(double minimum, double maximum) {
  if (!std::isfinite(minimum) || !std::isfinite(maximum)) return;
  number_->text.minimum = minimum;
  number_->text.maximum = std::max(minimum, maximum);
  setValue(number_->value);
  updateGeometry();
}

void TSpinEditReal::setSingleStep(double step) {
  if (std::isfinite(step)) singleStep_ = step;
}

void TSpinEditReal::OnTextChanged(const QString& text) {
  if (isShowing_ || !number_->Type(text)) return;
  update();
  Q_EMIT valueChanged(number_->value);
}

void TSpinEditReal::ShowValue() {
  isShowing_ = true;
  lineEdit()->setText(number_->text.Format(number_->value));
  isShowing_ = false;
}

void TSpinEditReal::ShowValueIfOther() {
  if (!number_->IsShownBy(lineEdit()->text())) ShowValue();
}

QSize TSpinEditReal::SizeFor(double least, double greatest) const {
  const QFontMetrics metrics(fontMetrics());
  const auto width = [&](double value) {
    return metrics.horizontalAdvance(number_->text.Format(value) + u' ');
  };
  // Room for the cursor.
  const int room = std::max(width(least), width(greatest)) + 2;
  QStyleOptionSpinBox option;
  initStyleOption(&option);
  return style()->sizeFromContents(QStyle::CT_SpinBox, &option,
                                   QSize(room, lineEdit()->sizeHint().height()), this);
}

QSize TSpinEditReal::sizeHint() const {
  ensurePolished();
  // A range without practical limits gets the width of usual numbers.
  constexpr double kEveryday = 1e9;
  return SizeFor(std::max(minimum(), -kEveryday), std::min(maximum(), kEveryday));
}

QSize TSpinEditReal::minimumSizeHint() const {
  ensurePolished();
  constexpr double kSmall = 999;
  return SizeFor(std::max(minimum(), -kSmall), std::min(maximum(), kSmall));
}

QValidator::State TSpinEditReal::validate(QString& input, int& pos) const {
  const QValidator::State state = number_->text.Check(input);
  pos = std::min(pos, static_cast<int>(input.size()));
  return state;
}

void TSpinEditReal::fixup(QString& input) const {
  input = number_->text.Format(number_->value);
}

void TSpinEditReal::stepBy(int steps) {
  setValue(number_->Stepped(singleStep_, steps));
  ShowValue();
  selectAll();
}

QAbstractSpinBox::StepEnabled TSpinEditReal::stepEnabled() const {
  StepEnabled enabled;
  if (isReadOnly()) return enabled;
  enabled.setFlag(StepUpEnabled, number_->value < maximum());
  enabled.setFlag(StepDownEnabled, number_->value > minimum());
  return enabled;
}

void TSpinEditReal::keyPressEvent(QKeyEvent* event) {
  if (EndsEditing(*event)) ShowValue();
  QAbstractSpinBox::keyPressEvent(event);
}

void TSpinEditReal::focusOutEvent(QFocusEvent* event) {
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) {
    ShowValue();
  }
  QAbstractSpinBox::focusOutEvent(event);
}

void TSpinEditReal::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LocaleChange && number_) {
    number_->text.locale = locale();
    ShowValue();
  }
  QAbstractSpinBox::changeEvent(event);
}

}  // namespace rasterkit
