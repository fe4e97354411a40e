#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace rasterkit::detail {

/// A strip or tile of rows of 1 bit, as libtiff takes and gives them: black is 1, rows follow each
/// other without padding beyond whole bytes.
struct G4Strip {
  uint32_t width = 0;
  uint32_t rows = 0;
  /// The first compressed bit is the lowest of its byte.
  bool isLowBitFirst = false;

  /// False for sides that only libtiff takes, with its limits.
  bool IsUsual() const;
  size_t RowBytes() const { return (size_t{width} + 7) / 8; }
};

/// Decodes a strip that is regular from the first to the last row: libtiff gives the same rows
/// without an error or a warning. False for any other; the rows are then undefined, and libtiff
/// decides. The bits after the last pixel of a row become those of `edge`.
bool DecodeG4Strip(std::span<const uint8_t> bytes, const G4Strip& strip, uint8_t edge,
                   uint8_t* target);

/// Encodes rows to the bytes that libtiff makes of them. The strip must be usual.
std::vector<uint8_t> EncodeG4Strip(std::span<const uint8_t> rows, const G4Strip& strip);

}  // namespace rasterkit::detail
