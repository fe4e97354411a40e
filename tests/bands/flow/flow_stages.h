#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rasterkit/bands/stage/stage.h>

/// Simple stages of every sort for pixels of all kinds. Each works on rows as bytes or moves whole
/// pixels.
namespace rasterkit::test {

/// What a test stage does.
enum class Doing {
  /// Left and right are exchanged; makes parts.
  mirrored,
  /// A row is combined with those above and below it.
  reachOne,
  /// Top and bottom are exchanged.
  reversed,
  /// Columns become rows; makes parts.
  transposed,
  /// The same, but only from rows in full width.
  transposedRows,
  /// Every third row.
  everyThird,
  /// Looks at all rows, then at the last one, before it changes the first byte of each row.
  twoPasses,
  /// Looks at the last row alone.
  lastRow,
  /// Without the two outer rows above and below and columns left and right; makes parts.
  cropped,
  /// Works on whole pictures only.
  whole,
  /// Fails in the row 17 of its result.
  failing
};

inline constexpr Doing kEveryDoing[] = {
    Doing::mirrored,   Doing::reachOne,  Doing::reversed, Doing::transposed, Doing::transposedRows,
    Doing::everyThird, Doing::twoPasses, Doing::lastRow,  Doing::cropped,    Doing::whole};

std::string NameOf(Doing doing);
std::shared_ptr<const Stage> TestStage(Doing doing, Sides source);
/// Of the result.
Sides SizeAfter(Doing doing, Sides source);

/// Stages for what is done one after the other.
Stages StagesFor(const std::vector<Doing>& doings, Sides source);

}  // namespace rasterkit::test
