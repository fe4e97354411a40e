#pragma once

#include <bit>
#include <cstdint>
#include <span>

#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// Reads consecutive little-endian fields. Every read is bounds-checked and throws FormatError if
/// the data ends; the player then skips the record and continues.
class MetafileBytes {
 public:
  explicit MetafileBytes(std::span<const uint8_t> bytes, size_t position = 0) : bytes_(bytes) {
    SetPosition(position);
  }

  size_t Position() const { return position_; }
  size_t Left() const { return bytes_.size() - position_; }
  void SetPosition(size_t position) {
    if (position > bytes_.size()) ThrowTooShort();
    position_ = position;
  }
  void Skip(size_t count) { Take(count); }

  uint8_t Byte() { return Take(1)[0]; }
  uint16_t Word() {
    const auto at = Take(2);
    return static_cast<uint16_t>(at[0] | at[1] << 8);
  }
  int16_t Short() { return static_cast<int16_t>(Word()); }
  uint32_t Long() {
    const auto at = Take(4);
    return uint32_t{at[0]} | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16 | uint32_t{at[3]} << 24;
  }
  int32_t Int() { return static_cast<int32_t>(Long()); }
  /// Reads a 32-bit float; non-finite values are read as 0.
  double Single() {
    const auto value = std::bit_cast<float>(Long());
    return value - value == 0 ? value : 0;
  }

  /// Reads the next `count` bytes.
  std::span<const uint8_t> Take(size_t count) {
    if (count > Left()) ThrowTooShort();
    const auto taken = bytes_.subspan(position_, count);
    position_ += count;
    return taken;
  }
  /// Returns the stated number of items of `itemBytes` bytes each. Throws FormatError if they
  /// exceed the data, so that no memory is allocated for missing items.
  size_t Count(uint64_t stated, size_t itemBytes) const {
    if (stated > Left() / itemBytes) ThrowTooShort();
    return static_cast<size_t>(stated);
  }

 private:
  [[noreturn]] static void ThrowTooShort() {
    throw FormatError("metafile: a record is too short for its fields");
  }

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
};

}  // namespace rasterkit::detail
