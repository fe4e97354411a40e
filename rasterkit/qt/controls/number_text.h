#pragma once

#include <QLocale>
#include <QString>
#include <QValidator>
#include <optional>

/// Numbers as people type and read them, for the fields of edits.h. Internal to this folder.
namespace rasterkit::detail {

/// The text form of a number: fixed-point with `decimals` digits, the locale's decimal mark and no
/// digit grouping.
struct NumberText {
  /// A double shows no more digits than these truthfully.
  static constexpr int kMostDecimals = 15;

  QLocale locale;
  int decimals = 0;
  double minimum = 0, maximum = 0;

  QString Format(double value) const;

  /// Checks the text of a field. Removes spaces from `text`, replaces a point or comma by the
  /// locale's decimal mark, and removes digit grouping if a decimal mark follows.
  ///
  /// Invalid: letters, two signs, too many decimals, a number that no further key can bring back
  /// into the range. Intermediate: the beginning of a number ("", "-", ".").
  QValidator::State Check(QString& text) const;

  /// Returns the number in the text if Check() accepts it; always finite and in the range.
  std::optional<double> Read(QString text) const;
};

/// The number in a field: the double that was set, even if the display rounds it.
struct HeldNumber {
  NumberText text;
  double value = 0;

  /// Sets the number, clamped to the range; NaN and infinities are ignored. True if the display
  /// changes.
  bool Set(double wanted);
  /// Takes the typed text if it is a number; true if the value changes.
  bool Type(const QString& typed);
  /// Returns the shown number changed by `steps` steps of the given width.
  double Stepped(double step, int steps) const;
  /// False if the field shows something else than the value and must be updated. Different
  /// notations of the shown number ("7.", "007") count as equal.
  bool IsShownBy(const QString& shown) const;
};

}  // namespace rasterkit::detail
