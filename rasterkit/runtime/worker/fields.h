#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <rasterkit/runtime/export.h>

/// Fields of messages between processes. Numbers are little-endian with a fixed size; a text or a
/// list is its 32-bit length, then its content. There are no names and no padding: both sides call
/// the same functions in the same order.
namespace rasterkit::detail {

/// An enum class or a plain enum whose values start at 0.
template <class E>
concept FieldEnum = std::is_enum_v<E>;

/// Builds the bytes of a message. Throws LimitError if a text or a list has more than 2^32 - 1
/// items.
class RASTERKIT_EXPORT FieldWriter {
 public:
  void U8(uint8_t value) { bytes_.push_back(value); }
  void U16(uint16_t value) { Number(value, sizeof(value)); }
  void U32(uint32_t value) { Number(value, sizeof(value)); }
  void U64(uint64_t value) { Number(value, sizeof(value)); }
  void I32(int32_t value) { U32(static_cast<uint32_t>(value)); }
  void I64(int64_t value) { U64(static_cast<uint64_t>(value)); }
  /// All 64 bits, so that NaN and -0 stay what they are.
  void F64(double value);
  void Bool(bool value) { U8(value ? 1 : 0); }
  void Enum(FieldEnum auto value) { U32(static_cast<uint32_t>(value)); }
  /// UTF-8; the reader refuses other bytes.
  void Text(std::string_view text);
  /// A text from a file, which may be invalid UTF-8.
  void ByteText(std::string_view text);
  void Bytes(std::span<const uint8_t> bytes);

  /// The number of items that follow.
  void Count(size_t items);
  /// A count, then each item by `write(item)`.
  template <class Items, class Write>
  void List(const Items& items, Write write) {
    Count(items.size());
    for (const auto& item : items) write(item);
  }
  /// Whether there is a value, then the value by `write(value)`.
  template <class Value, class Write>
  void Optional(const std::optional<Value>& value, Write write) {
    Bool(value.has_value());
    if (value) write(*value);
  }

  std::span<const uint8_t> Written() const { return bytes_; }
  std::vector<uint8_t> Take() { return std::exchange(bytes_, {}); }

 private:
  void Number(uint64_t value, size_t size);

  std::vector<uint8_t> bytes_;
};

/// Reads the bytes of a message from an untrusted process. The caller keeps the bytes
/// alive. Each function throws FormatError if the field does not fit the bytes, its type or the
/// given limit, so no field is read past the end and no memory is allocated that the bytes cannot
/// fill.
class RASTERKIT_EXPORT FieldReader {
 public:
  explicit FieldReader(std::span<const uint8_t> bytes) : rest_(bytes) {}

  uint8_t U8() { return static_cast<uint8_t>(Number(sizeof(uint8_t))); }
  uint16_t U16() { return static_cast<uint16_t>(Number(sizeof(uint16_t))); }
  uint32_t U32() { return static_cast<uint32_t>(Number(sizeof(uint32_t))); }
  uint64_t U64() { return Number(sizeof(uint64_t)); }
  int32_t I32() { return static_cast<int32_t>(U32()); }
  int64_t I64() { return static_cast<int64_t>(U64()); }
  double F64();
  /// 0 or 1; other values are errors.
  bool Bool();
  /// An integer from `least` to `most`.
  int32_t I32In(int32_t least, int32_t most);
  uint32_t U32In(uint32_t least, uint32_t most);
  /// A value from 0 to `last`, the last enumerator.
  template <FieldEnum E>
  E Enum(E last) {
    return static_cast<E>(U32In(0, static_cast<uint32_t>(last)));
  }
  /// Valid UTF-8 of at most `mostBytes`.
  std::string Text(size_t mostBytes);
  /// Any bytes, at most `mostBytes`.
  std::string ByteText(size_t mostBytes);
  /// A part of the bytes given to the constructor, at most `mostBytes`.
  std::span<const uint8_t> Bytes(size_t mostBytes);

  /// A number of items, at most `most`. Each item needs at least `leastBytes` of what follows.
  size_t Count(size_t most, size_t leastBytes = 1);
  /// A count, then each item as the result of `read()`.
  template <class Read>
  auto List(size_t most, size_t leastBytes, Read read) {
    std::vector<decltype(read())> items;
    const size_t count = Count(most, leastBytes);
    items.reserve(count);
    for (size_t i = 0; i < count; ++i) items.push_back(read());
    return items;
  }
  /// Whether there is a value, then the value as the result of `read()`.
  template <class Read>
  auto Optional(Read read) -> std::optional<decltype(read())> {
    if (!Bool()) return std::nullopt;
    return read();
  }

  size_t Rest() const { return rest_.size(); }
  /// Throws FormatError if bytes are left.
  void RequireEnd() const;

 private:
  uint64_t Number(size_t size);
  std::span<const uint8_t> Take(size_t size);

  std::span<const uint8_t> rest_;
};

/// Throws FormatError for a message with impossible content; `what` names the content.
[[noreturn]] RASTERKIT_EXPORT void ThrowBadMessage(std::string_view what);

}  // namespace rasterkit::detail
