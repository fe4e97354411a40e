#include "tests/placement/geo_tiff_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <tiffio.h>

#include <rasterkit/placement/geo_keys.h>

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

template <class T>
void Append(std::vector<uint8_t>& bytes, T value) {
  const auto* const first = reinterpret_cast<const uint8_t*>(&value);
  bytes.insert(bytes.end(), first, first + sizeof value);
}

TagValue Long(uint16_t tag, uint32_t value) {
  TagValue result{tag, 4, 1, {}};
  Append(result.bytes, value);
  return result;
}

}  // namespace

std::vector<uint8_t> TiffWithTags(int width, int height, std::vector<TagValue> tags) {
  const auto pixels = static_cast<uint32_t>(width * height);
  constexpr uint32_t kHeader = 8;
  for (const auto& [tag, value] :
       std::initializer_list<std::pair<uint16_t, uint32_t>>{{256, static_cast<uint32_t>(width)},
                                                            {257, static_cast<uint32_t>(height)},
                                                            {258, 8},
                                                            {259, 1},
                                                            {262, 1},
                                                            {273, kHeader},
                                                            {277, 1},
                                                            {278, static_cast<uint32_t>(height)},
                                                            {279, pixels}}) {
    tags.push_back(Long(tag, value));
  }
  std::sort(tags.begin(), tags.end(), [](const auto& a, const auto& b) { return a.tag < b.tag; });
  std::vector<uint8_t> bytes = {'I', 'I', 42, 0};
  const uint32_t directory = (kHeader + pixels + 1) / 2 * 2;
  Append(bytes, directory);
  bytes.resize(directory);
  std::vector<uint8_t> behind;
  const auto start = static_cast<uint32_t>(directory + 2 + 12 * tags.size() + 4);
  Append(bytes, static_cast<uint16_t>(tags.size()));
  for (const TagValue& tag : tags) {
    Append(bytes, tag.tag);
    Append(bytes, tag.type);
    Append(bytes, static_cast<uint32_t>(tag.count));
    std::vector<uint8_t> value = tag.bytes;
    if (value.size() > 4) {
      Append(bytes, static_cast<uint32_t>(start + behind.size()));
      value.resize((value.size() + 1) / 2 * 2);
      behind.insert(behind.end(), value.begin(), value.end());
    } else {
      value.resize(4);
      bytes.insert(bytes.end(), value.begin(), value.end());
    }
  }
  Append(bytes, uint32_t{0});
  bytes.insert(bytes.end(), behind.begin(), behind.end());
  return bytes;
}

std::vector<TagValue> PositionTagsIn(const std::string& file) {
  std::vector<TagValue> tags;
  TIFFSetWarningHandler(nullptr);
  TIFFSetErrorHandler(nullptr);
  TIFF* const tiff = TIFFOpen(file.c_str(), "r");
  if (tiff == nullptr) return tags;
  for (const uint16_t number : {33550, 33922, 34264, 34735, 34736, 34737, 42113, 50844}) {
    const TIFFField* const field = TIFFFindField(tiff, number, TIFF_ANY);
    uint32_t count = 0;
    const void* data = nullptr;
    if (field == nullptr || TIFFGetField(tiff, number, &count, &data) != 1) continue;
    const TIFFDataType type = TIFFFieldDataType(field);
    TagValue tag{number, static_cast<uint16_t>(type), count, {}};
    tag.bytes.resize(static_cast<size_t>(count) * static_cast<size_t>(TIFFDataWidth(type)));
    std::memcpy(tag.bytes.data(), data, tag.bytes.size());
    tags.push_back(std::move(tag));
  }
  TIFFClose(tiff);
  return tags;
}

bool HasProgram(const std::string& name) {
  return !OutputOf("command -v " + name).empty();
}

std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* const pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return output;
  char buffer[4096];
  for (size_t count; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    output.append(buffer, count);
  }
  pclose(pipe);
  return output;
}

GdalPlace AskGdal(const std::string& file, const std::string& options) {
  GdalPlace place;
  const auto info = nlohmann::json::parse(OutputOf("gdalinfo -json " + options + " '" + file + "'"),
                                          nullptr, false);
  if (!info.is_object()) return place;
  place.isRead = true;
  place.width = info["size"][0];
  place.height = info["size"][1];
  if (info.contains("geoTransform")) place.transform = info["geoTransform"];
  std::string wkt;
  if (info.contains("coordinateSystem")) wkt = info["coordinateSystem"].value("wkt", "");
  if (info.contains("gcps")) {
    for (const auto& point : info["gcps"]["gcpList"]) {
      place.points.push_back({point["pixel"], point["line"], point["x"], point["y"]});
    }
    if (info["gcps"].contains("coordinateSystem")) {
      wkt = info["gcps"]["coordinateSystem"].value("wkt", "");
    }
  }
  place.epsg = detail::ReadWktHead(wkt).epsg;
  if (info.contains("metadata") && info["metadata"].contains("RPC")) {
    const auto& model = info["metadata"]["RPC"];
    place.hasRationalModel = true;
    place.lineOffset = std::stod(model.value("LINE_OFF", "nan"));
    place.sampleOffset = std::stod(model.value("SAMP_OFF", "nan"));
  }
  return place;
}

}  // namespace rasterkit::test
