#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// Rules of a pixel transfer, pixel by pixel, for every combination of formats. Used for rare
/// formats, and if the target's rows are the source's too or the source is written: then other
/// workers may access the same bytes, so each byte is read and written as a relaxed atomic.
class TransferRules {
 public:
  /// Uses and changes the worker's state; the caller sets its row pointers.
  explicit TransferRules(TPixelThread& worker) : w_(worker) {}

  /// Transfers target pixel x of the current rows, whose source column is `sx` (-1: none).
  void TransferPixel(int32_t x, int32_t sx);

  /// Transfers all pixels of the current rows from column `first` on, with their source columns.
  void TransferRow(int32_t first, const std::vector<int32_t>& columns);

 private:
  struct Color {
    uint8_t b, g, r;
  };

  /// Transfers between rows of 24 and 32 bits, whose source is written.
  template <size_t kTargetBytes, size_t kSourceBytes>
  void OverwriteSource(int32_t first, const std::vector<int32_t>& columns);

  bool TargetIsWhite(int32_t x);
  bool SourceIsWhite();
  bool PackedTargetIsWhite(int32_t x);
  bool PackedSourceIsWhite();
  bool IsNearWhite(const Color& color) const;

  void TakeOver(int32_t x);
  void TakeOverNibbles(int32_t x);

  void Combine(int32_t x);
  void BlackenNibble(int32_t x);
  void MixInto(int32_t x, const Color& source);
  Color SourceEntry() const;

  /// Into a byte of the target row.
  void StorePacked(int32_t byte, uint8_t value);
  const uint8_t* TargetRow() const;
  Color TargetColor(int32_t x) const;
  Color SourceColor() const;

  TPixelThread& w_;
};

}  // namespace detail
}  // namespace rasterkit
