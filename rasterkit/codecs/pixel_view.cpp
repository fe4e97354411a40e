#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/pixel_view.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

void NoteLosses(const PixelLayout& layout, Changes& changes) {
  constexpr const char* kWhy = "the pixels are shown with 8 bits";
  if (layout.bits > 8) {
    changes.Lose(LossKind::bits, fmt::format("{} to 8 bits per sample", layout.bits), kWhy);
  } else if (layout.type == NumberType::int8) {
    changes.Lose(LossKind::bits, "the numbers with a sign", kWhy);
  }
  if (layout.model == ColorModel::cmyk) {
    changes.Lose(LossKind::colors, "CMYK to RGB", "the pixels are shown in RGB");
  } else if (layout.model == ColorModel::lab || layout.model == ColorModel::iccLab) {
    changes.Lose(LossKind::colors, "L*a*b* to RGB", "the pixels are shown in RGB");
  }
  if (layout.extraBands > 0) {
    changes.Lose(LossKind::colors, fmt::format("{} of {} bands", layout.extraBands, layout.bands),
                 "they are no colors");
  }
}

/// The profile of the samples if it describes the raster too.
ColorProfile ProfileFor(const Raster& raster, const PixelLayout& layout) {
  const bool isGray = raster.Format() == pf8bit;
  const bool isSame =
      isGray || layout.model == ColorModel::rgb || layout.model == ColorModel::palette;
  const auto space = isGray ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  return isSame && detail::ProfileFits(layout.profile, space) ? layout.profile : nullptr;
}

/// A small raster of the kind that shows samples.
Raster KindOf(const Samples& like) {
  const PixelLayout& layout = like.Layout();
  const bool hasAlpha = detail::HasAlphaBand(layout);
  const TPixelFormat format = detail::IsSingleBand(layout) ? pf8bit : hasAlpha ? pf32bit : pf24bit;
  Raster raster(format, 1, 1);
  if (format == pf8bit) raster.palette = GrayPalette(256);
  if (format == pf32bit) raster.alphaFormat = afDefined;
  std::memset(raster.Row(0), 0, raster.Stride());
  raster.resolution = like.resolution;
  raster.profile = ProfileFor(raster, layout);
  return raster;
}

/// Sets what stands after the last pixel of rows of whole bytes to 0.
void ClearEnd(Raster& raster, int y) {
  std::memset(raster.Row(y) + raster.RowBytes(), 0, raster.Stride() - raster.RowBytes());
}

}  // namespace

class PixelView::State {
 public:
  State(const Samples& like, const std::string& noDataText, const NumberStretch& stretch)
      : layout(like.Layout()), noData(noDataText), kind(KindOf(like)) {
    isNumbers = detail::IsSingleBand(layout) && detail::IsStretched(layout);
    const bool isRanged =
        isNumbers || (!detail::IsSingleBand(layout) && detail::IsStretchedColor(layout, stretch));
    if (isRanged) {
      finder = std::make_unique<detail::RangeFinder>(layout, noData, stretch);
      if (!finder->NeedsPass()) Settle();
    } else if (detail::IsSingleBand(layout)) {
      newRows = detail::RowsOfBytes(layout);
    } else {
      newRows = detail::RowsOfColors(layout, notes);
    }
  }

  void Settle() {
    const detail::FoundRange found = finder->Found();
    detail::NoteRange(found, notes);
    newRows = isNumbers ? detail::RowsOfNumbers(layout, noData, found)
                        : detail::RowsOfStretchedColors(layout, noData, found);
  }

  std::unique_ptr<detail::ShownRows> Take() {
    const std::lock_guard lock(mutex);
    if (free.empty()) return newRows();
    std::unique_ptr<detail::ShownRows> rows = std::move(free.back());
    free.pop_back();
    return rows;
  }
  void Give(std::unique_ptr<detail::ShownRows> rows) {
    const std::lock_guard lock(mutex);
    free.push_back(std::move(rows));
  }

  const PixelLayout layout;
  const std::string noData;
  const Raster kind;
  bool isNumbers = false;
  std::unique_ptr<detail::RangeFinder> finder;
  detail::NewShownRows newRows;
  Changes notes;
  std::mutex mutex;
  /// Rows that no thread uses: they remember colors.
  std::vector<std::unique_ptr<detail::ShownRows>> free;
};

PixelView::PixelView(const Samples& like, const std::string& noData, const NumberStretch& stretch)
    : state_(std::make_unique<State>(like, noData, stretch)) {}

PixelView::~PixelView() = default;

bool PixelView::NeedsPass() const {
  return state_->finder && state_->finder->NeedsPass();
}

void PixelView::Look(const Samples& rows, int first, int last) {
  state_->finder->Look(rows, first, last);
}

void PixelView::EndPass() {
  state_->finder->EndPass();
  if (!state_->finder->NeedsPass()) state_->Settle();
}

const Raster& PixelView::Like() const {
  return state_->kind;
}

void PixelView::Show(const Samples& rows, int from, int count, Raster& target, int to) const {
  std::unique_ptr<detail::ShownRows> shown = state_->Take();
  for (int y = 0; y < count; ++y) {
    RequireTime();
    shown->Show(rows, from + y, target.Row(to + y));
    ClearEnd(target, to + y);
  }
  state_->Give(std::move(shown));
}

void PixelView::Report(Changes& changes) const {
  for (const std::string& note : state_->notes.notes) changes.Note(note);
  const PixelLayout& layout = state_->layout;
  const bool isLost = detail::IsSingleBand(layout) && layout.bits > 8 &&
                      detail::MissingKeysOf(state_->noData, layout.type).isKnown;
  if (isLost) {
    changes.Lose(LossKind::noData, "the number " + state_->noData + " for missing values",
                 "it is shown white");
  }
  NoteLosses(layout, changes);
}

}  // namespace rasterkit
