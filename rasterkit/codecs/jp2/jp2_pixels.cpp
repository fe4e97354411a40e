#include <algorithm>
#include <cstring>
#include <limits>

#include <rasterkit/codecs/jp2/jp2_pixels.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

uint32_t FullOf(int bits) {
  return (uint32_t{1} << bits) - 1;
}

size_t ColorsOf(const PixelLayout& layout) {
  const bool hasAlpha =
      layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated;
  return static_cast<size_t>(layout.bands - layout.extraBands) - (hasAlpha ? 1 : 0);
}

bool IsSigned(NumberType type) {
  return type == NumberType::int8 || type == NumberType::int16 || type == NumberType::int32;
}

template <class Number>
void Store(const std::vector<std::vector<int32_t>>& row, uint8_t* target) {
  const size_t bands = row.size(), width = row.front().size();
  for (size_t x = 0; x < width; ++x) {
    for (size_t band = 0; band < bands; ++band, target += sizeof(Number)) {
      const auto number = static_cast<Number>(row[band][x]);
      std::memcpy(target, &number, sizeof number);
    }
  }
}

}  // namespace

Jp2Pixels::Jp2Pixels(const Jp2File& file, const Jp2Plan& plan)
    : file_(file), plan_(plan), row_(plan.channels.size()) {
  if (!plan.format) {
    samples_ = Samples(plan.layout, plan.width, plan.height);
    samples_.resolution = file.resolution;
    return;
  }
  raster_ = Raster(*plan.format, plan.width, plan.height);
  if (plan.layout.model == ColorModel::gray) raster_.palette = GrayPalette(1 << plan.layout.bits);
  if (plan.layout.model == ColorModel::palette) raster_.palette = plan.layout.palette;
  if (raster_.Format() == pf32bit) raster_.alphaFormat = afDefined;
  raster_.profile = plan.layout.profile;
  raster_.resolution = file.resolution;
}

Jp2Area Jp2Pixels::PixelsOf(const Jp2Area& tile) const {
  return tile.Every(plan_.stepX, plan_.stepY);
}

void Jp2Pixels::Put(const Jp2Tile& tile) {
  const Jp2Area area = PixelsOf(tile.area);
  if (area.Width() == 0) return;
  for (uint32_t y = area.top; y < area.bottom; ++y) {
    RequireTime();
    ReadRow(tile, y, area);
    WriteRow(static_cast<int>(area.left - plan_.firstX), static_cast<int>(y - plan_.firstY));
  }
}

void Jp2Pixels::PutMissing(const Jp2Area& tile) {
  const Jp2Area area = PixelsOf(tile);
  if (area.Width() == 0) return;
  for (auto& numbers : row_) numbers.resize(area.Width());
  FillWhite();
  for (uint32_t y = area.top; y < area.bottom; ++y) {
    RequireTime();
    WriteRow(static_cast<int>(area.left - plan_.firstX), static_cast<int>(y - plan_.firstY));
  }
}

void Jp2Pixels::FillWhite() {
  const PixelLayout& layout = plan_.layout;
  auto white =
      static_cast<int32_t>(IsSigned(layout.type) ? FullOf(layout.bits - 1) : FullOf(layout.bits));
  if (layout.model == ColorModel::cmyk) white = 0;
  if (layout.model == ColorModel::palette) {
    white = NearestEntry(layout.palette.Entries(), clWhite);
  }
  for (auto& numbers : row_) std::fill(numbers.begin(), numbers.end(), white);
}

void Jp2Pixels::ReadRow(const Jp2Tile& tile, uint32_t y, const Jp2Area& area) {
  const bool isColor = plan_.layout.model != ColorModel::gray;
  for (size_t i = 0; i < plan_.channels.size(); ++i) {
    const Jp2Channel& channel = plan_.channels[i];
    ReadChannel(tile, channel, y, area, row_[i]);
    const bool isExtra = i >= ColorsOf(plan_.layout) &&
                         i < ColorsOf(plan_.layout) + static_cast<size_t>(plan_.layout.extraBands);
    FitChannel(channel, isExtra || (!isColor && IsSigned(plan_.layout.type)), row_[i]);
  }
  if (plan_.isYcc) MixColors();
}

/// A coarser component gives the sample whose cell of the reference grid holds the pixel; at the
/// edges of a tile the nearest one that the tile has.
void Jp2Pixels::ReadChannel(const Jp2Tile& tile, const Jp2Channel& channel, uint32_t y,
                            const Jp2Area& area, std::vector<int32_t>& numbers) const {
  const Jp2TilePlane& plane = tile.planes[channel.component];
  const Jp2Component& component = file_.codestream.components[channel.component];
  numbers.assign(area.Width(), 0);
  if (plane.area.Width() == 0 || plane.area.Height() == 0) return;
  const auto place = [](uint32_t pixel, uint32_t step, uint32_t fine, uint32_t low, uint32_t high) {
    const auto cell = static_cast<uint32_t>(uint64_t{pixel} * fine / step);
    return std::clamp(cell, low, high - 1);
  };
  const uint32_t sampleY =
      place(y, component.stepY, plan_.stepY, plane.area.top, plane.area.bottom);
  for (uint32_t i = 0; i < area.Width(); ++i) {
    const uint32_t sampleX =
        place(area.left + i, component.stepX, plan_.stepX, plane.area.left, plane.area.right);
    numbers[i] = plane.At(sampleX, sampleY);
  }
  if (!channel.column) return;
  const auto last = static_cast<int32_t>(file_.palette.entries) - 1;
  for (int32_t& number : numbers) {
    number =
        file_.palette.Number(static_cast<size_t>(std::clamp(number, 0, last)), *channel.column);
  }
}

/// Colors and opacity fill the range of the picture's bits; other numbers stay.
void Jp2Pixels::FitChannel(const Jp2Channel& channel, bool isNumber,
                           std::vector<int32_t>& numbers) const {
  if (isNumber) return;
  const int64_t full = FullOf(channel.bits), target = FullOf(plan_.layout.bits);
  const int64_t shift = channel.isSigned ? int64_t{1} << (channel.bits - 1) : 0;
  if (plan_.layout.model == ColorModel::palette || (shift == 0 && full == target)) return;
  for (int32_t& number : numbers) {
    const int64_t light = std::clamp<int64_t>(number + shift, 0, full);
    number = static_cast<int32_t>((light * target * 2 + full) / (full * 2));
  }
}

/// BT.601, as JPEG has it, rounded to the nearest whole numbers.
void Jp2Pixels::MixColors() {
  constexpr int64_t kOne = 1'000'000, kRedOfCr = 1'402'000, kGreenOfCb = 344'136,
                    kGreenOfCr = 714'136, kBlueOfCb = 1'772'000;
  const int64_t full = FullOf(plan_.layout.bits);
  const int64_t middle = int64_t{1} << (plan_.layout.bits - 1);
  const auto rounded = [&](int64_t scaled) {
    const int64_t half = scaled >= 0 ? kOne / 2 : -kOne / 2;
    return static_cast<int32_t>(std::clamp<int64_t>((scaled + half) / kOne, 0, full));
  };
  for (size_t x = 0; x < row_[0].size(); ++x) {
    const int64_t light = row_[0][x] * kOne, cb = row_[1][x] - middle, cr = row_[2][x] - middle;
    row_[0][x] = rounded(light + kRedOfCr * cr);
    row_[1][x] = rounded(light - kGreenOfCb * cb - kGreenOfCr * cr);
    row_[2][x] = rounded(light + kBlueOfCb * cb);
  }
}

void Jp2Pixels::WriteRow(int x, int y) {
  if (!plan_.format) return WriteSamples(x, y);
  if (IsIndexed(*plan_.format)) return WriteIndexes(x, y);
  WriteColors(x, y);
}

void Jp2Pixels::WriteIndexes(int x, int y) {
  const int bits = StoredBitsPerPixel(raster_.Format());
  const auto full = static_cast<int32_t>(FullOf(bits));
  uint8_t* target = raster_.Row(y);
  for (const int32_t number : row_.front()) {
    const auto index = static_cast<unsigned>(std::clamp(number, 0, full));
    const int at = x++ * bits, shift = 8 - bits - at % 8;
    uint8_t& byte = target[at / 8];
    const auto mask = static_cast<unsigned>(full) << shift;
    byte = static_cast<uint8_t>((byte & ~mask) | index << shift);
  }
}

void Jp2Pixels::WriteColors(int x, int y) {
  const size_t pixelBytes = raster_.Format() == pf32bit ? 4 : 3;
  uint8_t* target = raster_.Row(y) + static_cast<size_t>(x) * pixelBytes;
  for (size_t i = 0; i < row_.front().size(); ++i, target += pixelBytes) {
    target[0] = static_cast<uint8_t>(row_[2][i]);
    target[1] = static_cast<uint8_t>(row_[1][i]);
    target[2] = static_cast<uint8_t>(row_[0][i]);
    if (pixelBytes == 4) target[3] = static_cast<uint8_t>(row_[3][i]);
  }
}

void Jp2Pixels::WriteSamples(int x, int y) {
  uint8_t* target = samples_.Row(y) + static_cast<size_t>(x) * samples_.PixelBytes();
  switch (BytesOf(plan_.layout.type)) {
    case 1:
      return Store<uint8_t>(row_, target);
    case 2:
      return Store<uint16_t>(row_, target);
    default:
      return Store<uint32_t>(row_, target);
  }
}

Pixels Jp2Pixels::Take() {
  if (!plan_.format) return std::move(samples_);
  raster_.ClearPadding();
  return std::move(raster_);
}

}  // namespace rasterkit::detail
