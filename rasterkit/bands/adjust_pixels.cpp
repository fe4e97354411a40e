#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include <rasterkit/bands/adjust_pixels.h>
#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/transfer/sharpen_rows.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kPixel = 3;
/// Rows are changed in parts that stay in the first-level cache.
constexpr size_t kPart = 1024;

/// Sharpens rows of any kind, which become 24-bit, or 32-bit where there is transparency.
class Sharpening : public BandWork {
 public:
  Sharpening(const Raster& like, Sides size, Raster made, const AdjustColors& values)
      : reader_(like, size.width),
        made_(std::move(made)),
        size_(size),
        adjuster_(values),
        share_(SharpenShare(values.sharpen)) {}

  const Pixels& Like() const override { return made_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override {
    const int first = std::max(0, target.top - 1);
    const int last = std::min(size_.height, target.top + target.height + 1);
    return {0, first, size_.width, last - first};
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    auto& to = std::get<Raster>(target.pixels);
    const size_t width = reader_.Width();
    // Rows above, at and below the row that is made, each with its outer pixels repeated.
    std::array<std::vector<uint8_t>, 3> around;
    for (auto& row : around) row.resize((width + 2) * kPixel);
    Read(source, rows.first - 1, around[1]);
    Read(source, rows.first, around[2]);
    std::vector<uint8_t> scratch(kScratchBytes * width);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      std::rotate(around.begin(), around.begin() + 1, around.end());
      Read(source, y + 1, around[2]);
      uint8_t* const row = to.Row(y - target.top);
      uint8_t* const made = to.Format() == pf24bit ? row : scratch.data();
      kernels::SharpenRow24(share_, around[0].data(), around[1].data(), around[2].data(), width,
                            made);
      adjuster_.Shift(made, width);
      if (made != row) PutWithOpacity(RowOf(source, y), scratch.data(), row);
      ClearRowEnd(to, y - target.top);
    }
  }

 private:
  static const uint8_t* RowOf(const Band& source, int y) {
    return std::get<Raster>(source.pixels).Row(y - source.top);
  }

  void Read(const Band& source, int y, std::vector<uint8_t>& row) const {
    const size_t bytes = reader_.Width() * kPixel;
    uint8_t* const pixels = row.data() + kPixel;
    reader_.To24(RowOf(source, std::clamp(y, 0, size_.height - 1)), pixels);
    adjuster_.Brighten(pixels, reader_.Width());
    std::memcpy(row.data(), pixels, kPixel);
    std::memcpy(pixels + bytes, pixels + bytes - kPixel, kPixel);
  }

  /// `scratch` begins with the colors of the result.
  void PutWithOpacity(const uint8_t* source, uint8_t* scratch, uint8_t* target) const {
    const size_t width = reader_.Width();
    kernels::Row24To32(scratch, width, target);
    uint8_t* const opacities = scratch + kPixel * width;
    reader_.Opacities(source, reader_.Colors(source, scratch), opacities);
    PutOpacities(opacities, width, target);
  }

  const ColorReader reader_;
  const Pixels made_;
  const Sides size_;
  const RowAdjuster adjuster_;
  const int16_t share_;
};

}  // namespace

RowAdjuster::RowAdjuster(const AdjustColors& values) {
  if (values.brightness != 0) {
    const float factor = BrightnessFactor(values.brightness);
    if (values.brightness < 0) {
      darkening_ = kernels::MakeByteMap(DarkenTable(values.brightness), factor, 0);
    } else {
      brightening_ = kernels::MakeBrightening(values.brightness, factor, BrightnessWeight(factor));
    }
  }
  if (values.contrast != 0) {
    constexpr int kMiddle = 128;
    contrast_ = kernels::MakeByteMap(ContrastTable(values.contrast),
                                     BrightnessFactor(values.contrast), kMiddle);
  }
  shifts_ = values.red != 0 || values.green != 0 || values.blue != 0;
  reds_ = ShiftTable(static_cast<float>(values.red));
  greens_ = ShiftTable(static_cast<float>(values.green));
  blues_ = ShiftTable(static_cast<float>(values.blue));
}

void RowAdjuster::Brighten(uint8_t* bgr, size_t width) const {
  for (size_t x = 0; x < width; x += kPart) {
    uint8_t* const pixels = bgr + kPixel * x;
    const size_t count = std::min(kPart, width - x);
    if (darkening_) kernels::MapBytes(*darkening_, pixels, kPixel * count);
    if (brightening_) kernels::BrightenRow24(*brightening_, pixels, count, pixels);
    if (contrast_) kernels::MapBytes(*contrast_, pixels, kPixel * count);
  }
}

void RowAdjuster::Shift(uint8_t* bgr, size_t width) const {
  if (!shifts_) return;
  for (const uint8_t* const end = bgr + kPixel * width; bgr != end; bgr += kPixel) {
    bgr[0] = blues_[bgr[0]];
    bgr[1] = greens_[bgr[1]];
    bgr[2] = reds_[bgr[2]];
  }
}

void AdjustPixels(TBitmap& pixels, const AdjustColors& values) {
  const RowAdjuster adjuster(values);
  const auto width = static_cast<size_t>(pixels.Width());
  for (int y = 0; y < pixels.Height(); ++y) adjuster.Brighten(pixels.ScanLine(y), width);
  Sharpen(&pixels, values.sharpen);
  for (int y = 0; y < pixels.Height(); ++y) adjuster.Shift(pixels.ScanLine(y), width);
}

std::unique_ptr<BandWork> MakeSharpening(const Raster& like, Sides size, Raster made,
                                         const AdjustColors& values) {
  return std::make_unique<Sharpening>(like, size, std::move(made), values);
}

}  // namespace rasterkit::detail
