#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <rasterkit/codecs/exact_number.h>
#include <rasterkit/raster/number_type.h>
#include <rasterkit/runtime/export.h>

/// Numbers of every type as keys: whole numbers of as many bits as the type, in the order of the
/// numbers. Minus zero comes before zero; NaN lies beyond the infinities.
namespace rasterkit::detail {

/// Keys from `first` to `last`; none if `last` is less.
struct KeyRange {
  uint64_t first = 1, last = 0;
  bool Has(uint64_t key) const { return key >= first && key <= last; }
};

/// Reads the keys of `count` samples that lie `step` bytes apart.
void LoadKeys(NumberType type, const uint8_t* sample, size_t step, size_t count, uint64_t* keys);

/// 8 to 64.
RASTERKIT_EXPORT int KeyBitsOf(NumberType type);
/// Keys of all finite numbers.
RASTERKIT_EXPORT KeyRange FiniteKeys(NumberType type);
/// Keys of all numbers, infinite ones too; the others are NaN.
RASTERKIT_EXPORT KeyRange NumberKeys(NumberType type);

RASTERKIT_EXPORT uint64_t KeyOfDouble(double number);
/// The key must be one of a finite number.
RASTERKIT_EXPORT ExactNumber NumberOfKey(NumberType type, uint64_t key);
/// The shortest text that names the number among those of its type.
RASTERKIT_EXPORT std::string TextOfKey(NumberType type, uint64_t key);

/// Keys of a number that means "not measured".
struct MissingKeys {
  bool isKnown = false, isNan = false;
  KeyRange keys;
};
/// Reads the number from the text of a file, whole numbers of 64 bits exactly. A grid of floats or
/// halves has the one nearest to the text. Nothing is known for a text that is no number; a number
/// that the type does not have is known and never occurs.
RASTERKIT_EXPORT MissingKeys MissingKeysOf(const std::string& text, NumberType type);

}  // namespace rasterkit::detail
