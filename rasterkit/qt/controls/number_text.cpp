#include <algorithm>
#include <cmath>

#include <rasterkit/qt/controls/number_text.h>

namespace rasterkit::detail {
namespace {

constexpr QChar kMinusSign(0x2212);

bool IsPoint(QChar c) {
  return c == u'.' || c == u',' || c == QChar(0x066B);
}

/// Removes all spaces and replaces the locale's decimal mark by one that IsPoint recognizes.
QString Plain(const QString& text, const QLocale& locale) {
  QString own = text;
  const QString point = locale.decimalPoint();
  if (point.size() == 1 && !IsPoint(point[0])) own.replace(point, u"."_qs);
  own.removeIf([](QChar c) { return c.isSpace() || !c.isPrint(); });
  return own;
}

/// Removes digit grouping ("1,234.5", "1.234,5"): marks that differ from the last one.
void RemoveGrouping(QString& text) {
  const auto last = std::find_if(text.crbegin(), text.crend(), IsPoint);
  if (last == text.crend()) return;
  const QChar kept = *last;
  text.removeIf([kept](QChar c) { return IsPoint(c) && c != kept; });
}

/// Returns the number in ASCII, or nothing if the text has other characters.
std::optional<QByteArray> InAscii(const QString& plain) {
  QByteArray ascii;
  bool hasPoint = false;
  for (const QChar c : plain) {
    if (c.digitValue() >= 0) {
      ascii += static_cast<char>('0' + c.digitValue());
    } else if (IsPoint(c) && !hasPoint) {
      hasPoint = true;
      ascii += '.';
    } else if ((c == u'-' || c == kMinusSign) && ascii.isEmpty()) {
      ascii += '-';
    } else if (c == u'+' && ascii.isEmpty()) {
      ascii += '+';
    } else {
      return std::nullopt;
    }
  }
  return ascii;
}

qsizetype DecimalsOf(const QByteArray& ascii) {
  const qsizetype point = ascii.indexOf('.');
  return point < 0 ? 0 : ascii.size() - point - 1;
}

QValidator::State StateInRange(double value, double minimum, double maximum) {
  // A further digit moves the number away from 0.
  if (value > maximum) return value > 0 ? QValidator::Invalid : QValidator::Intermediate;
  if (value < minimum) return value < 0 ? QValidator::Invalid : QValidator::Intermediate;
  return QValidator::Acceptable;
}

}  // namespace

QString NumberText::Format(double value) const {
  QLocale plain = locale;
  plain.setNumberOptions(QLocale::OmitGroupSeparator);
  const QString zero = plain.toString(0.0, 'f', decimals);
  const QString shown = plain.toString(value, 'f', decimals);
  // -0.3 without decimals is 0.
  const bool isZero = std::none_of(shown.cbegin(), shown.cend(),
                                   [](QChar c) { return c.isDigit() && c.digitValue() != 0; });
  return isZero ? zero : shown;
}

QValidator::State NumberText::Check(QString& text) const {
  QString plain = Plain(text, locale);
  RemoveGrouping(plain);
  const std::optional<QByteArray> ascii = InAscii(plain);
  if (!ascii) return QValidator::Invalid;
  if (ascii->contains('.') && decimals == 0) return QValidator::Invalid;
  if (DecimalsOf(*ascii) > decimals) return QValidator::Invalid;
  if (ascii->startsWith('-') && minimum >= 0) return QValidator::Invalid;
  const QString point = locale.decimalPoint();
  const auto place = std::find_if(plain.cbegin(), plain.cend(), IsPoint);
  if (place != plain.cend()) plain.replace(place - plain.cbegin(), 1, point);
  text = plain;

  bool isNumber = false;
  const double value = ascii->toDouble(&isNumber);
  if (std::isinf(value)) return QValidator::Invalid;
  if (!isNumber) return ascii->size() <= 2 ? QValidator::Intermediate : QValidator::Invalid;
  return StateInRange(value, minimum, maximum);
}

std::optional<double> NumberText::Read(QString text) const {
  if (Check(text) != QValidator::Acceptable) return std::nullopt;
  const std::optional<QByteArray> ascii = InAscii(Plain(text, locale));
  if (!ascii) return std::nullopt;
  const double value = ascii->toDouble();
  return value == 0 ? 0 : value;
}

bool HeldNumber::Set(double wanted) {
  if (!std::isfinite(wanted)) return false;
  const QString before = text.Format(value);
  value = std::clamp(wanted, text.minimum, text.maximum);
  return text.Format(value) != before;
}

bool HeldNumber::Type(const QString& typed) {
  const std::optional<double> number = text.Read(typed);
  if (!number || *number == value) return false;
  value = *number;
  return true;
}

double HeldNumber::Stepped(double step, int steps) const {
  const double shown = text.Read(text.Format(value)).value_or(value);
  return shown + step * steps;
}

bool HeldNumber::IsShownBy(const QString& shown) const {
  const std::optional<double> number = text.Read(shown);
  return number && text.Format(*number) == text.Format(value);
}

}  // namespace rasterkit::detail
