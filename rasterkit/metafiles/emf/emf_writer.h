#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/metafiles/emf/emf_records.h>

namespace rasterkit::detail {

/// Fields of a record, little-endian, one after another.
class EmfFields {
 public:
  EmfFields& Byte(int64_t value) { return Put(value, 1); }
  EmfFields& Word(int64_t value) { return Put(value, 2); }
  EmfFields& Long(int64_t value) { return Put(value, 4); }
  EmfFields& Longs(std::initializer_list<int64_t> values);
  /// Rounded to whole numbers; what does not fit 32 bits becomes the nearest that does, and what is
  /// no number 0.
  EmfFields& Number(double value);
  EmfFields& Single(double value) {
    return Long(std::bit_cast<int32_t>(static_cast<float>(value)));
  }
  EmfFields& Point(PointD point) { return Number(point.x).Number(point.y); }
  /// Left, top, right, bottom.
  EmfFields& Rect(const RectD& rect);
  /// Left, top, width, height.
  EmfFields& SizedRect(const RectD& rect);
  EmfFields& Append(std::span<const uint8_t> more);
  /// Zeros up to a multiple of four bytes.
  EmfFields& Pad();
  /// Zeros in place of the bounds of a drawing record, which players may do without.
  EmfFields& NoBounds() { return Longs({0, 0, 0, 0}); }

  size_t Size() const { return bytes_.size(); }
  std::span<const uint8_t> Bytes() const { return bytes_; }

 private:
  EmfFields& Put(int64_t value, int bytes);

  std::vector<uint8_t> bytes_;
};

/// What the header of a written file says.
struct EmfPicture {
  /// The reference device is exactly as large as the picture: pixels and 0.01 mm.
  int width = 0, height = 0, widthMm100 = 0, heightMm100 = 0;
  /// What is painted, pixels.
  std::optional<RectD> drawn;
  /// Handles in use, number 0, which no object has, included.
  size_t handles = 1;
};

/// Puts an enhanced metafile together.
class EmfWriter {
 public:
  /// Throws LimitError when the file would be larger than the picture memory budget.
  void Add(EmfType type, const EmfFields& fields = {});
  void Add(EmfType type, std::initializer_list<int64_t> longs) {
    Add(type, EmfFields().Longs(longs));
  }
  /// The file, header and last record included. Throws LimitError beyond the 4 GiB that a header
  /// can state.
  std::vector<uint8_t> Finish(const EmfPicture& picture);

 private:
  std::vector<uint8_t> records_;
  uint32_t count_ = 0;
};

}  // namespace rasterkit::detail
