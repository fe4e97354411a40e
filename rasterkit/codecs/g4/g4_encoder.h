#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/codecs/g4/g4_changes.h>
#include <rasterkit/codecs/g4/g4_codes.h>

namespace rasterkit::detail {

/// Encodes rows as strips of ITU-T T.6, byte for byte as libtiff does.
class G4Encoder {
 public:
  /// `width` is 1 to G4Decoder::kMostWidth.
  G4Encoder(int width, const G4Bits& bits);

  /// Adds a row of (width + 7) / 8 bytes, the first pixel in the high bit. Bits after the last
  /// pixel do not count.
  void Encode(const uint8_t* row);
  /// Adds `rows` rows.
  void Encode(const uint8_t* row, size_t stride, size_t rows);

  /// The bytes that are complete, and not taken yet.
  std::vector<uint8_t> TakeBytes();
  /// Ends the strip and returns its bytes that are not taken yet. The next row begins a new strip.
  std::vector<uint8_t> EndStrip();

 private:
  void ReserveRow();
  void FindChanges();
  void CodeRow();
  void PutOnes(int count);
  void PutRun(bool isBlack, int run);
  void Put(const G4Code& code);
  void Put(uint64_t bits, int length);

  const G4Bits bits_;
  const int width_;
  /// Of the row above and of the row that is coded, and their pixels, black as 1.
  G4Changes above_, here_;
  std::vector<uint64_t> words_, wordsAbove_;
  std::vector<uint8_t> bytes_;
  size_t used_ = 0;
  /// The lowest `pending_` bits are not written yet: less than 32.
  uint64_t window_ = 0;
  int pending_ = 0;
};

}  // namespace rasterkit::detail
