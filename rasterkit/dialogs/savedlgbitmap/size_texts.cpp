#include <array>
#include <charconv>

#include <rasterkit/dialogs/savedlgbitmap/size_texts.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Like printf: halves are decided by the exact value of the double, not by a nearby decimal
/// number.
std::string Written(double value, std::chars_format format, int decimals) {
  // The largest float has 39 digits.
  std::array<char, 64> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, format, decimals).ptr;
  return {text.data(), end};
}

std::string Fixed(double value, int decimals) {
  return Written(value, std::chars_format::fixed, decimals);
}

/// Inserts the decimal mark of the texts.
std::string ForPeople(std::string number) {
  const size_t point = number.find('.');
  if (point != number.npos) number.replace(point, 1, DecimalMark());
  return number;
}

double WithSevenDigits(double value) {
  const std::string text = Written(value, std::chars_format::scientific, 6);
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace

BitmapSizeText TextOfBitmapSize(int bits, double width, double height) {
  const float bytes =
      static_cast<float>(bits) * static_cast<float>(width) * static_cast<float>(height) / 8;
  if (bytes <= 10000) return {Fixed(bytes, 0), rsUnitByte};
  if (bytes <= 1e6F) return {Fixed(bytes / 1000.0, 0), rsUnitKilobyte};
  return {ForPeople(Fixed(bytes / 1e6, 2)), rsUnitMegabyte};
}

std::string TextOfMillimeters(float millimeters) {
  constexpr float kSevenDigits = 9999999.0F;
  if (millimeters <= kSevenDigits) return Fixed(millimeters, 0);
  return Fixed(WithSevenDigits(millimeters), 0);
}

}  // namespace rasterkit
