#include <mutex>
#include <utility>
#include <vector>

#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/bands/colors/few_colors.h>
#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/adaptive_palette.h>
#include <rasterkit/raster/color_points.h>
#include <rasterkit/raster/exact_colors.h>
#include <rasterkit/raster/nearest_color.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kPixelBytes = 4;

/// Searchers of nearest colors, which remember what they found: each thread takes one and gives it
/// back.
class Searchers {
 public:
  explicit Searchers(HPALETTE palette) : palette_(std::move(palette)) {}

  std::unique_ptr<NearestColor> Take() {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) return std::make_unique<NearestColor>(palette_.Entries());
    std::unique_ptr<NearestColor> searcher = std::move(free_.back());
    free_.pop_back();
    return searcher;
  }
  void Give(std::unique_ptr<NearestColor> searcher) {
    const std::lock_guard lock(mutex_);
    free_.push_back(std::move(searcher));
  }

 private:
  const HPALETTE palette_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<NearestColor>> free_;
};

class FewColors : public RuleWork {
 public:
  FewColors(const Raster& like, Sides size, Raster made)
      : RuleWork({}, size, {}),
        reader_(std::make_shared<const ColorReader>(like, size.width)),
        made_(std::move(made)),
        exact_(std::make_shared<ExactColors>(made_.Format())),
        sample_(size.width, size.height) {}

  RowRange Looks() const override { return isDecided_ ? RowRange{} : RowRange{0, Size().height}; }

  void Look(const Band& rows, const StageRun&) override {
    const auto& raster = std::get<Raster>(rows.pixels);
    std::vector<RGBArec> pixels(reader_->Width());
    std::vector<uint8_t> scratch(3 * reader_->Width());
    for (int y = 0; y < raster.Height(); ++y) {
      RequireTime();
      const bool isSampled = sample_.Has(rows.top + y);
      if (!isExact_ && !isSampled) continue;
      Pixels32(*reader_, raster.Row(y), scratch.data(), pixels.data());
      isExact_ = isExact_ && exact_->Add(pixels.data(), pixels.size(), nullptr);
      if (isSampled) sample_.Add(pixels.data());
    }
  }

  void Decide() override {
    isDecided_ = true;
    if (isExact_) {
      made_.palette = exact_->Palette();
      return Set(SmallLike(made_, 1, 1), ExactRule());
    }
    const size_t count = size_t{1} << StoredBitsPerPixel(made_.Format());
    made_.palette = HPALETTE(ChooseAdaptivePalette(sample_.Points(), count));
    Set(SmallLike(made_, 1, 1), NearestRule());
  }

 private:
  static void Pixels32(const ColorReader& reader, const uint8_t* row, uint8_t* scratch,
                       RGBArec* pixels) {
    auto* const bgra = reinterpret_cast<uint8_t*>(pixels);
    if (reader.HasAlpha()) {
      reader.Painted(row, clWhite, scratch);
      return kernels::Row24To32(scratch, reader.Width(), bgra);
    }
    RowTo32(row, reader.Format(), static_cast<int>(reader.Width()), PixelTable(), pixels);
  }

  RowRule ExactRule() const {
    return [reader = reader_, exact = exact_, map = exact_->Indexes(), format = made_.Format()](
               const uint8_t* source, uint8_t* target, uint8_t* scratch) {
      const size_t width = reader->Width();
      auto* const pixels = reinterpret_cast<RGBArec*>(scratch);
      uint8_t* const indexes = scratch + kPixelBytes * width;
      Pixels32(*reader, source, indexes, pixels);
      exact->Find(pixels, width, indexes);
      for (size_t x = 0; x < width; ++x) indexes[x] = map[indexes[x]];
      PackIndexes(indexes, format, static_cast<int>(width), target);
    };
  }

  RowRule NearestRule() const {
    return [reader = reader_, searchers = std::make_shared<Searchers>(made_.palette),
            format = made_.Format()](const uint8_t* source, uint8_t* target, uint8_t* scratch) {
      const size_t width = reader->Width();
      auto* const pixels = reinterpret_cast<RGBArec*>(scratch);
      uint8_t* const indexes = scratch + kPixelBytes * width;
      Pixels32(*reader, source, indexes, pixels);
      std::unique_ptr<NearestColor> searcher = searchers->Take();
      searcher->OfRow(pixels, width, indexes);
      searchers->Give(std::move(searcher));
      PackIndexes(indexes, format, static_cast<int>(width), target);
    };
  }

  const std::shared_ptr<const ColorReader> reader_;
  Raster made_;
  const std::shared_ptr<ExactColors> exact_;
  ColorSample sample_;
  bool isExact_ = true, isDecided_ = false;
};

}  // namespace

std::unique_ptr<BandWork> MakeFewColors(const Raster& like, Sides size, Raster made) {
  return std::make_unique<FewColors>(like, size, std::move(made));
}

RowRule RuleOfPalette(std::shared_ptr<const ColorReader> reader, const HPALETTE& palette) {
  return [reader = std::move(reader), searchers = std::make_shared<Searchers>(palette)](
             const uint8_t* source, uint8_t* target, uint8_t* scratch) {
    const size_t width = reader->Width();
    uint8_t* const bgr = scratch + kPixelBytes * width;
    reader->Painted(source, clWhite, bgr);
    kernels::Row24To32(bgr, width, scratch);
    std::unique_ptr<NearestColor> searcher = searchers->Take();
    searcher->OfRow(reinterpret_cast<const RGBArec*>(scratch), width, target);
    searchers->Give(std::move(searcher));
  };
}

}  // namespace rasterkit::detail
