#include "samples/grid_tiff.h"

#include <bit>
#include <cmath>

namespace rasterkit::samples {
namespace {

enum FieldType : uint16_t { ascii = 2, words = 3, longs = 4, doubles = 12 };

void Append(std::vector<uint8_t>& bytes, uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

struct Entry {
  uint16_t tag;
  FieldType type;
  uint32_t count;
  std::vector<uint8_t> value;
};

Entry Words(uint16_t tag, const std::vector<int>& values) {
  Entry entry{tag, words, static_cast<uint32_t>(values.size()), {}};
  for (const int value : values) Append(entry.value, static_cast<uint64_t>(value), 2);
  return entry;
}

Entry Long(uint16_t tag, uint64_t value) {
  Entry entry{tag, longs, 1, {}};
  Append(entry.value, value, 4);
  return entry;
}

Entry Doubles(uint16_t tag, const std::vector<double>& values) {
  Entry entry{tag, doubles, static_cast<uint32_t>(values.size()), {}};
  for (const double value : values) Append(entry.value, std::bit_cast<uint64_t>(value), 8);
  return entry;
}

Entry Text(uint16_t tag, const std::string& text) {
  Entry entry{tag, ascii, static_cast<uint32_t>(text.size() + 1), {text.begin(), text.end()}};
  entry.value.push_back(0);
  return entry;
}

constexpr uint64_t kHeaderBytes = 8;

/// In ascending order of tags, as readers want them.
std::vector<Entry> Entries(const GridTiff& grid) {
  std::vector<Entry> entries = {Long(256, static_cast<uint64_t>(grid.width)),
                                Long(257, static_cast<uint64_t>(grid.height)),
                                Words(258, {grid.bits}),
                                Words(259, {1}),
                                Words(262, {grid.isWhiteZero ? 0 : 1}),
                                Long(273, kHeaderBytes)};
  if (grid.orientation != 0) entries.push_back(Words(274, {grid.orientation}));
  entries.push_back(Words(277, {1}));
  entries.push_back(Long(278, static_cast<uint64_t>(grid.height)));
  entries.push_back(Long(279, grid.values.size()));
  entries.push_back(Words(339, {grid.sampleFormat}));
  if (!grid.pixelScale.empty()) entries.push_back(Doubles(33550, grid.pixelScale));
  if (!grid.tiePoints.empty()) entries.push_back(Doubles(33922, grid.tiePoints));
  if (!grid.transformation.empty()) entries.push_back(Doubles(34264, grid.transformation));
  if (grid.pixelIsPoint) entries.push_back(Words(34735, {1, 1, 0, 1, 1025, 0, 1, 2}));
  if (!grid.noData.empty()) entries.push_back(Text(42113, grid.noData));
  return entries;
}

}  // namespace

std::vector<uint8_t> GridTiffBytes(const GridTiff& grid) {
  const std::vector<Entry> entries = Entries(grid);
  std::vector<uint8_t> pixels = grid.values, far;
  if (pixels.size() % 2 != 0) pixels.push_back(0);
  std::vector<uint8_t> file = {'I', 'I', 42, 0};
  Append(file, kHeaderBytes + pixels.size(), 4);
  file.insert(file.end(), pixels.begin(), pixels.end());
  const uint64_t farBegin = file.size() + 2 + entries.size() * 12 + 4;
  Append(file, entries.size(), 2);
  for (const Entry& entry : entries) {
    Append(file, entry.tag, 2);
    Append(file, entry.type, 2);
    Append(file, entry.count, 4);
    std::vector<uint8_t> field = entry.value;
    if (field.size() > 4) {
      field.clear();
      Append(field, farBegin + far.size(), 4);
      far.insert(far.end(), entry.value.begin(), entry.value.end());
      if (far.size() % 2 != 0) far.push_back(0);
    }
    field.resize(4);
    file.insert(file.end(), field.begin(), field.end());
  }
  Append(file, 0, 4);
  file.insert(file.end(), far.begin(), far.end());
  return file;
}

GridTiff MakeTerrain(int width, int height) {
  GridTiff grid;
  grid.width = width;
  grid.height = height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double east = static_cast<double>(x) / width, south = static_cast<double>(y) / height;
      const double hill = 120 / (1 + 20 * std::hypot(east - 0.3, south - 0.4));
      const double lake = std::hypot(east - 0.8, (south - 0.7) * 0.7);
      const auto value = static_cast<float>(lake < 0.1 ? -9999 : 510 + hill + 40 * lake);
      Append(grid.values, std::bit_cast<uint32_t>(value), 4);
    }
  }
  grid.pixelScale = {2, 2, 0};
  grid.tiePoints = {0, 0, 0, 4468000, 5334000, 0};
  grid.noData = "-9999";
  return grid;
}

}  // namespace rasterkit::samples
