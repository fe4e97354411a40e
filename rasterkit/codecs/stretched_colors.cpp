#include <algorithm>
#include <utility>
#include <vector>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kColors = 3, kWithAlpha = 4;

/// Writes the grays of one band to every color that it is.
void PutBand(const ShownRow& row, const GraySteps& steps, size_t bands, size_t band, size_t pitch,
             uint8_t* target) {
  for (const uint64_t key : row.keys) {
    const uint8_t light = steps.Of(key);
    if (bands == 1) {
      std::fill_n(target, kColors, light);
    } else {
      target[kColors - 1 - band] = light;
    }
    target += pitch;
  }
}

class ColorsOfRange : public ShownRows {
 public:
  ColorsOfRange(ShownNumbers numbers, std::shared_ptr<const GraySteps> steps, bool hasRange)
      : numbers_(std::move(numbers)), steps_(std::move(steps)), hasRange_(hasRange) {}

  void Show(const Samples& samples, int y, uint8_t* target) override {
    const bool hasAlpha = HasAlphaBand(samples.Layout());
    const size_t pitch = hasAlpha ? kWithAlpha : kColors;
    const auto bands = static_cast<size_t>(numbers_.Bands());
    const auto width = static_cast<size_t>(samples.Width());
    isMeasured_.assign(width, 0);
    opacity_.resize(width);
    for (size_t band = 0; band < bands; ++band) {
      numbers_.Read(samples, y, static_cast<int>(band), row_);
      PutBand(row_, *steps_, bands, band, pitch, target);
      for (size_t x = 0; x < width; ++x) isMeasured_[x] |= row_.isMeasured[x];
    }
    if (hasAlpha) ReadOpacity(samples, y, opacity_.data());
    for (size_t x = 0; x < width; ++x) {
      const bool isShown = isMeasured_[x] != 0 && hasRange_;
      if (!isShown) std::fill_n(target + x * pitch, kColors, uint8_t{255});
      if (hasAlpha) target[x * pitch + kColors] = opacity_[x];
    }
  }

 private:
  const ShownNumbers numbers_;
  const std::shared_ptr<const GraySteps> steps_;
  const bool hasRange_;
  ShownRow row_;
  std::vector<uint8_t> isMeasured_, opacity_;
};

}  // namespace

NewShownRows RowsOfStretchedColors(const PixelLayout& layout, const std::string& noData,
                                   const FoundRange& found) {
  const ShownNumbers numbers(layout, noData);
  auto steps =
      std::make_shared<const GraySteps>(numbers.Type(), found.range.value_or(ShownRange()));
  return [numbers, steps = std::move(steps), hasRange = found.range.has_value()] {
    return std::make_unique<ColorsOfRange>(numbers, steps, hasRange);
  };
}

}  // namespace rasterkit::detail
