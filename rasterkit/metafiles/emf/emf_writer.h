#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/emf/emf_records.h>

namespace rasterkit::detail {

/// Builds the fields of a record, little-endian.
class EmfFields {
 public:
  EmfFields& Byte(int64_t value) { return Put(value, 1); }
  EmfFields& Word(int64_t value) { return Put(value, 2); }
  EmfFields& Long(int64_t value) { return Put(value, 4); }
  EmfFields& Longs(std::initializer_list<int64_t> values);
  /// Appends a 32-bit integer: rounded and clamped; NaN becomes 0.
  EmfFields& Number(double value);
  EmfFields& Single(double value) {
    return Long(std::bit_cast<int32_t>(static_cast<float>(value)));
  }
  EmfFields& Point(PointD point) { return Number(point.x).Number(point.y); }
  /// Appends left, top, right, bottom.
  EmfFields& Rect(const RectD& rect);
  /// Appends left, top, width, height.
  EmfFields& SizedRect(const RectD& rect);
  EmfFields& Append(std::span<const uint8_t> more);
  /// Appends zeros up to a multiple of four bytes.
  EmfFields& Pad();
  /// Appends zeros as the bounds of a drawing record, which players do not need.
  EmfFields& NoBounds() { return Longs({0, 0, 0, 0}); }

  size_t Size() const { return bytes_.size(); }
  std::span<const uint8_t> Bytes() const { return bytes_; }

 private:
  EmfFields& Put(int64_t value, int bytes);

  std::vector<uint8_t> bytes_;
};

/// The contents of a written header.
struct EmfPicture {
  /// Size of the picture and of the reference device, which are equal: in pixels and in 0.01 mm.
  int width = 0, height = 0, widthMm100 = 0, heightMm100 = 0;
  /// Bounding box of the painted pixels.
  std::optional<RectD> drawn;
  /// Number of handles, including the reserved handle 0.
  size_t handles = 1;
};

/// Builds an EMF file.
class EmfWriter {
 public:
  /// Appends a record. Throws LimitError if the file would exceed the picture memory budget.
  void Add(EmfType type, const EmfFields& fields = {});
  void Add(EmfType type, std::initializer_list<int64_t> longs) {
    Add(type, EmfFields().Longs(longs));
  }
  /// Returns the file with header and last record. Throws LimitError above 4 GiB, the most that a
  /// header can state.
  std::vector<uint8_t> Finish(const EmfPicture& picture);

 private:
  std::vector<uint8_t> records_;
  uint32_t count_ = 0;
};

}  // namespace rasterkit::detail
