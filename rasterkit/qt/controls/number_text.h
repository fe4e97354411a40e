#pragma once

#include <QLocale>
#include <QString>
#include <QValidator>
#include <optional>

/// Numbers as people type and read them. Internal to the room; the fields of edits.h stand on it.
namespace rasterkit::detail {

/// How a number is written: fixed point with `decimals` digits, the locale's decimal point and no
/// grouping.
struct NumberText {
  /// A double shows no more digits than these truthfully.
  static constexpr int mostDecimals = 15;

  QLocale locale;
  int decimals = 0;
  double minimum = 0, maximum = 0;

  QString Format(double value) const;

  /// What may stand in a field. Spaces are taken out of `text`, a point or a comma becomes the
  /// locale's decimal point, and what groups digits goes where a decimal point follows it.
  ///
  /// Invalid: letters, two signs, more decimals than there are, a number that no further key brings
  /// back into the range. Intermediate: the beginning of a number ("", "-", ".").
  QValidator::State Check(QString& text) const;

  /// The number in the text when Check finds it acceptable; always finite and in the range.
  std::optional<double> Read(QString text) const;
};

/// A number in a field: the double that was set, whatever part of it the display shows.
struct HeldNumber {
  NumberText text;
  double value = 0;

  /// Takes `wanted`, kept in the range; what is no number is left out. True when it shows otherwise
  /// than before.
  bool Set(double wanted);
  /// Takes what was typed where that is a number; true when the value is another one now.
  bool Type(const QString& typed);
  /// The value that `steps` of this width lead to from what is shown.
  double Stepped(double step, int steps) const;
  /// False where a field shows something else than the value and must be written anew. Different
  /// ways to write the shown number ("7.", "007") count as the same.
  bool IsShownBy(const QString& shown) const;
};

}  // namespace rasterkit::detail
