#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include <rasterkit/raster/number_type.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The value that means "not measured", exact for every number type.
class RASTERKIT_EXPORT NoData {
 public:
  /// No such value.
  NoData() = default;
  /// Parses the text of the file's tag. A float32 picture holds the float nearest to the number; a
  /// number that the type cannot hold (-9999 of bytes, half a unit of whole numbers) never occurs
  /// in the picture. "nan" is valid.
  NoData(const std::string& text, NumberType type);

  /// True if the type can hold the value.
  bool Occurs() const { return isNan_ || value_.index() != 0; }
  /// True if the text is not a number.
  bool IsUnreadable() const { return isUnreadable_; }

  /// Compares a sample of any type, exactly.
  template <class T>
  bool Is(T value) const {
    if constexpr (std::is_floating_point_v<T>) {
      return IsNumber(static_cast<double>(value));
    } else if constexpr (std::is_signed_v<T>) {
      return IsSigned(value);
    } else {
      return IsUnsigned(value);
    }
  }

  /// The value as one sample of the type given to the constructor, in the byte order of the
  /// processor: to fill areas without a measurement. Nothing if the type cannot hold it.
  std::optional<std::vector<uint8_t>> Sample() const;

 private:
  bool IsNumber(double value) const;
  bool IsSigned(int64_t value) const;
  bool IsUnsigned(uint64_t value) const;
  void SetWhole(const std::string& text, double value);

  NumberType type_ = NumberType::float64;
  /// Whole numbers up to 64 bits are kept exactly.
  std::variant<std::monostate, double, int64_t, uint64_t> value_;
  bool isNan_ = false;
  bool isUnreadable_ = false;
};

}  // namespace rasterkit
