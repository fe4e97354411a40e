#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <rasterkit/codecs/g4/g4_changes.h>
#include <rasterkit/codecs/g4/g4_codes.h>

namespace rasterkit::detail {

/// Decodes a strip of ITU-T T.6 row by row: rows as libtiff gives them without an error or a
/// warning, or none. It stops at the first thing that is not as an encoder writes it: an unknown
/// code word, an extension, a row that is not exactly full, an empty run, an early end. What
/// follows the last row that is decoded is not looked at.
class G4Decoder {
 public:
  /// The next compressed bytes, which stay valid until the next call; empty at the end.
  using NextBytes = std::function<std::span<const uint8_t>()>;

  /// `width` is 1 to kMostWidth.
  G4Decoder(std::span<const uint8_t> strip, int width, const G4Bits& bits);
  G4Decoder(NextBytes next, int width, const G4Bits& bits);

  /// Rows decoded so far.
  uint64_t Row() const { return row_; }
  /// Writes the next row: (width + 7) / 8 bytes, the first pixel in the high bit, white after the
  /// last pixel. False, with nothing written, if the row is irregular; then no more rows follow.
  bool Decode(uint8_t* target);
  /// Decodes `rows` rows. Returns the number of regular ones.
  size_t Decode(uint8_t* target, size_t stride, size_t rows);

  /// More takes libtiff, with its limits.
  static constexpr int kMostWidth = 1 << 24;

 private:
  bool ReadRow();
  template <bool isLowBitFirst>
  bool ReadChanges();
  template <bool isLowBitFirst>
  struct Window;
  bool NextPiece();

  const G4Bits bits_;
  const int width_;
  NextBytes next_;
  std::span<const uint8_t> piece_;
  bool isAtEnd_ = false, isIrregular_ = false;
  /// The next bits, from the highest on, and how many of them are taken from the pieces.
  uint64_t window_ = 0;
  int there_ = 0;
  uint64_t row_ = 0;
  G4Changes above_, here_;
  /// The pixels of the last row.
  std::vector<uint64_t> words_;
};

}  // namespace rasterkit::detail
