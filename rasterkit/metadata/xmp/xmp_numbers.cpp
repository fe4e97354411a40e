#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include <rasterkit/metadata/xmp/xmp_numbers.h>

namespace rasterkit::detail {
namespace {

std::optional<double> Plain(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

std::optional<double> XmpNumber(std::string_view text) {
  const size_t slash = text.find('/');
  if (slash == std::string_view::npos) return Plain(text);
  const auto above = Plain(text.substr(0, slash)), below = Plain(text.substr(slash + 1));
  if (!above || !below || *below == 0) return std::nullopt;
  return *above / *below;
}

std::string XmpText(double value) {
  std::string text = fmt::format("{:.6f}", value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

std::string XmpFraction(double value) {
  constexpr double kParts = 10000;
  if (value == std::round(value)) return fmt::format("{:.0f}/1", value);
  return fmt::format("{:.0f}/{:.0f}", value * kParts, kParts);
}

}  // namespace rasterkit::detail
