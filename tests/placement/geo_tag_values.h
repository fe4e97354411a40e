#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include <rasterkit/metadata/tag_value.h>

/// Tags as a codec reads them.
namespace rasterkit::test {

inline TagValue DoublesTag(uint16_t number, const std::vector<double>& values) {
  TagValue tag{number, 12, values.size(), std::vector<uint8_t>(values.size() * sizeof(double))};
  if (!values.empty()) std::memcpy(tag.bytes.data(), values.data(), tag.bytes.size());
  return tag;
}

inline TagValue WordsTag(uint16_t number, const std::vector<uint16_t>& values) {
  TagValue tag{number, 3, values.size(), std::vector<uint8_t>(values.size() * sizeof(uint16_t))};
  if (!values.empty()) std::memcpy(tag.bytes.data(), values.data(), tag.bytes.size());
  return tag;
}

/// With its zero byte.
inline TagValue TextTag(uint16_t number, std::string_view text) {
  TagValue tag{number, 2, text.size() + 1, {text.begin(), text.end()}};
  tag.bytes.push_back(0);
  return tag;
}

/// EPSG:25832 with its citation; pixels are areas or points.
inline std::vector<TagValue> KeyTags(bool pixelIsPoint) {
  const uint16_t rasterType = pixelIsPoint ? 2 : 1;
  return {WordsTag(34735, {1, 1,          0,    4,     1024, 0, 1,    1, 1025, 0,
                           1, rasterType, 1026, 34737, 24,   0, 3072, 0, 1,    25832}),
          TextTag(34737, "ETRS89 / UTM zone 32N  |")};
}

}  // namespace rasterkit::test
