#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/bitmaptools/engine/seen_indexes.h>
#include <rasterkit/kernels/transfer/pick_pixels.h>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// Colors that a worker sees in the rows of any source, as pixels B G R, and which of them are
/// white. A repeated row (as most are when a picture grows) is processed once.
class ColorSource {
 public:
  /// `wantsWhite` tells whether `White` will be called.
  ColorSource(const TPixelThread& worker, const std::vector<int32_t>& columns, bool wantsWhite);

  void Read(const uint8_t* row);

  /// Colors of the row that was read last.
  const uint8_t* Colors() const { return colors_; }
  /// Three bytes per pixel: 255 if it is white.
  const uint8_t* White() const { return white_.data(); }

 private:
  void ReadColors(const uint8_t* row);
  void ReadIndexed(const uint8_t* row);
  void FindWhite(const uint8_t* indexes);

  const int32_t sourceBytes_, firstColumn_;
  const size_t count_;
  const bool wantsWhite_;
  std::optional<kernels::PixelPicker> picker_;
  std::optional<SeenIndexes> indexRows_;
  std::array<uint8_t, 1024> palette_;
  std::array<uint8_t, 256> whiteIndexes_;
  const uint8_t* lastRow_ = nullptr;
  const uint8_t* colors_ = nullptr;
  std::vector<uint8_t> buffer_, white_, indexWhite_;
};

}  // namespace detail
}  // namespace rasterkit
