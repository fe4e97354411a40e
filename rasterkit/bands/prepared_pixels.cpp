#include <algorithm>
#include <cstring>
#include <utility>

#include <rasterkit/bands/corner_fill.h>
#include <rasterkit/bands/prepared_pixels.h>

namespace rasterkit::detail {
namespace {

/// A pixel of zeros.
Pixels PixelLike(const Pixels& like) {
  Pixels pixel = NewPixels(like, 1, 1);
  if (auto* raster = std::get_if<Raster>(&pixel)) {
    std::memset(raster->Row(0), 0, raster->Stride());
  } else {
    auto& samples = std::get<Samples>(pixel);
    for (int plane = 0; plane < samples.Planes(); ++plane) {
      std::memset(samples.Row(0, plane), 0, samples.Stride());
    }
  }
  return pixel;
}

std::vector<uint8_t> BytesOfPixel(uint32_t pixel, int bits) {
  std::vector<uint8_t> bytes;
  for (int i = 0; i < std::max(1, bits / 8); ++i) {
    bytes.push_back(static_cast<uint8_t>(pixel >> (8 * i)));
  }
  return bytes;
}

/// A marked color would be mixed with others. An index that means "not measured" becomes the color
/// of its entry, as the indexes of the picture do.
Resampling FillFor(Resampling how, AveragedForm form, const Raster& raster) {
  const bool isNoData = how.fill.kind == Fill::Kind::noData || how.fill.kind == Fill::Kind::usual;
  const bool isIndex = isNoData && form != AveragedForm::none && IsIndexed(raster.Format()) &&
                       how.noData >= 0 && how.noData < raster.palette.Entries().size();
  if (isIndex) {
    const auto index = static_cast<int>(*how.noData);
    how.fill = {Fill::Kind::color, EntryColor(raster.palette.Entry(index))};
  }
  if (form != AveragedForm::none && how.fill.kind == Fill::Kind::automatic) {
    how.fill.kind = Fill::Kind::transparent;
  }
  return how;
}

/// Entries may be added to a palette, and colors marked, without a change of any pixel.
bool PixelsDiffer(const Pixels& before, const Pixels& after, AveragedForm form) {
  if (const auto* samples = std::get_if<Samples>(&before)) {
    return samples->Layout().bands != std::get<Samples>(after).Layout().bands;
  }
  const auto &from = std::get<Raster>(before), &to = std::get<Raster>(after);
  const bool hasOtherGrays = form == AveragedForm::gray && !IsGrayRamp(from.palette);
  return hasOtherGrays || from.Format() != to.Format() || from.alphaFormat != to.alphaFormat;
}

}  // namespace

PreparedPixels PreparedPixels::ForResize(const Pixels& like, Sides from, Sides to, Filter filter) {
  PreparedPixels made;
  const auto* raster = std::get_if<Raster>(&like);
  made.form_ = FormForResize(LayoutOf(like), raster != nullptr, from, to, filter);
  made.hasNumbers_ =
      raster == nullptr || (raster->Format() == pf8bit && made.form_ == AveragedForm::gray);
  made.like_ = made.Apply(PixelLike(like));
  made.changes_ = PixelsDiffer(like, made.like_, made.form_);
  return made;
}

PreparedPixels PreparedPixels::ForTurn(const Pixels& like, const Resampling& how) {
  PreparedPixels made;
  made.isTurn_ = true;
  made.how_ = how;
  const auto* raster = std::get_if<Raster>(&like);
  made.form_ = FormForTurn(LayoutOf(like), raster != nullptr, how.filter);
  made.hasNumbers_ =
      raster == nullptr || (raster->Format() == pf8bit && made.form_ == AveragedForm::gray);
  made.like_ = PixelLike(like);
  if (raster != nullptr) {
    made.how_ = FillFor(how, made.form_, *raster);
    auto& prepared = std::get<Raster>(made.like_);
    BringToForm(prepared, made.form_);
    const uint32_t pixel = PrepareFill(prepared, made.how_);
    made.fill_ = BytesOfPixel(pixel, StoredBitsPerPixel(prepared.Format()));
  } else {
    made.fill_ = PrepareFill(std::get<Samples>(made.like_), how);
  }
  made.changes_ = PixelsDiffer(like, made.like_, made.form_);
  return made;
}

Pixels PreparedPixels::Apply(Pixels pixels) const {
  if (auto* raster = std::get_if<Raster>(&pixels)) {
    BringToForm(*raster, form_);
    if (isTurn_) PrepareFill(*raster, how_);
  } else if (isTurn_) {
    PrepareFill(std::get<Samples>(pixels), how_);
  }
  return pixels;
}

}  // namespace rasterkit::detail
