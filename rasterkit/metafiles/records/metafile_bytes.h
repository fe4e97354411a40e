#pragma once

#include <bit>
#include <cstdint>
#include <span>

#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// Reads little-endian fields one after another. Every read is checked against the bytes that are
/// there; one that needs more throws FormatError, which ends the record and not the picture.
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
  /// A single; numbers that are none count as 0, so that no arithmetic has to think of them.
  double Single() {
    const auto value = std::bit_cast<float>(Long());
    return value - value == 0 ? value : 0;
  }

  /// The next `count` bytes themselves.
  std::span<const uint8_t> Take(size_t count) {
    if (count > Left()) ThrowTooShort();
    const auto taken = bytes_.subspan(position_, count);
    position_ += count;
    return taken;
  }
  /// As many items of `itemBytes` bytes as are stated; throws before anybody reserves memory for
  /// items that are not there.
  size_t Count(uint64_t stated, size_t itemBytes) const {
    if (stated > Left() / itemBytes) ThrowTooShort();
    return static_cast<size_t>(stated);
  }

 private:
  [[noreturn]] static void ThrowTooShort() {
    throw FormatError("metafile: a record ends before its fields do");
  }

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
};

}  // namespace rasterkit::detail
