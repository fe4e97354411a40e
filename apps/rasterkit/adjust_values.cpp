#include "apps/rasterkit/adjust_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>

namespace rasterkit::tool {
namespace {

constexpr int kChannels = 3;

/// One thread would spare black and white, and the library wants rows for its threads.
int EngineThreads(const TBitmap& pixels, int threads) {
  constexpr int rowsOfThread = 4;
  return std::clamp(threads, 2, std::max(2, pixels.Height() / rowsOfThread));
}

/// A row with its outer pixels repeated, so that every pixel has neighbours.
void CopyPadded(const TBitmap& pixels, int y, std::vector<uint8_t>& row) {
  const uint8_t* const source = pixels.ScanLine(std::clamp(y, 0, pixels.Height() - 1));
  const size_t bytes = pixels.Content().RowBytes();
  row.resize(bytes + 2 * kChannels);
  std::copy_n(source, bytes, row.begin() + kChannels);
  std::copy_n(source, kChannels, row.begin());
  std::copy_n(source + bytes - kChannels, kChannels, row.end() - kChannels);
}

/// `weight` is in hundredths of the distance from the mean of nine.
uint8_t Sharpened(int value, int sumOfNine, int weight) {
  const int distance = (9 * value - sumOfNine) * weight;
  const int half = distance < 0 ? -450 : 450;
  return static_cast<uint8_t>(std::clamp(value + (distance + half) / 900, 0, 255));
}

uint8_t Scaled(uint8_t value, float factor) {
  return static_cast<uint8_t>(std::min(std::nearbyint(static_cast<float>(value) * factor), 255.0f));
}

using ChannelTable = std::array<uint8_t, 256>;

ChannelTable TableOf(int percent) {
  const float factor = static_cast<float>(percent) / 100 + 1;
  ChannelTable table{};
  for (size_t i = 0; i < table.size(); ++i) table[i] = Scaled(static_cast<uint8_t>(i), factor);
  return table;
}

}  // namespace

void ChangeContrast(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Kontrast(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

void ChangeBrightness(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Helligkeit(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

void Sharpen(TBitmap& pixels, int percent) {
  if (percent == 0 || pixels.Empty()) return;
  const int weight = percent > 0 ? 2 * percent : percent;
  // Above, at and below the row that is written.
  std::array<std::vector<uint8_t>, 3> rows;
  CopyPadded(pixels, 0, rows[1]);
  CopyPadded(pixels, 0, rows[2]);
  for (int y = 0; y < pixels.Height(); ++y) {
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    CopyPadded(pixels, y + 1, rows[2]);
    uint8_t* const target = pixels.ScanLine(y);
    for (size_t i = 0; i < pixels.Content().RowBytes(); ++i) {
      int sum = 0;
      for (const auto& row : rows) sum += row[i] + row[i + kChannels] + row[i + 2 * kChannels];
      target[i] = Sharpened(rows[1][i + kChannels], sum, weight);
    }
  }
}

void ShiftColors(TBitmap& pixels, int red, int green, int blue) {
  if (red == 0 && green == 0 && blue == 0) return;
  const ChannelTable reds = TableOf(red), greens = TableOf(green), blues = TableOf(blue);
  for (int y = 0; y < pixels.Height(); ++y) {
    auto* const row = reinterpret_cast<RGBrec*>(pixels.ScanLine(y));
    for (int x = 0; x < pixels.Width(); ++x)
      row[x] = {blues[row[x].b], greens[row[x].g], reds[row[x].r]};
  }
}

}  // namespace rasterkit::tool
