#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// Little-endian fields, one after another.
class FieldBytes {
 public:
  FieldBytes() = default;
  /// Longs.
  FieldBytes(std::initializer_list<int64_t> longs) {
    for (const int64_t value : longs) Long(value);
  }

  FieldBytes& Byte(int value) { return Put(static_cast<uint64_t>(value), 1); }
  FieldBytes& Word(int64_t value) { return Put(static_cast<uint64_t>(value), 2); }
  FieldBytes& Long(int64_t value) { return Put(static_cast<uint64_t>(value), 4); }
  FieldBytes& Single(float value) {
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return Put(bits, 4);
  }
  FieldBytes& Words(std::initializer_list<int64_t> values) {
    for (const int64_t value : values) Word(value);
    return *this;
  }
  FieldBytes& Longs(std::initializer_list<int64_t> values) {
    for (const int64_t value : values) Long(value);
    return *this;
  }
  FieldBytes& Singles(std::initializer_list<float> values) {
    for (const float value : values) Single(value);
    return *this;
  }
  FieldBytes& Text(std::u16string_view text) {
    for (const char16_t unit : text) Word(unit);
    return *this;
  }
  FieldBytes& Text(std::string_view text) {
    for (const char c : text) Byte(c);
    return *this;
  }
  FieldBytes& Bytes(const std::vector<uint8_t>& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
  }
  /// Zeros up to a multiple of `unit` bytes.
  FieldBytes& PadTo(size_t unit) {
    while (bytes.size() % unit != 0) bytes.push_back(0);
    return *this;
  }
  /// Zeros up to `size` bytes.
  FieldBytes& FillTo(size_t size) {
    if (bytes.size() < size) bytes.resize(size);
    return *this;
  }

  std::vector<uint8_t> bytes;

 private:
  FieldBytes& Put(uint64_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return *this;
  }
};

}  // namespace rasterkit::test
