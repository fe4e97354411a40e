#include <utility>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/pixel_view.h>
#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

NumberStretch SettledStretch(const Samples& samples, const std::string& noData,
                             const NumberStretch& stretch) {
  const PixelLayout& layout = samples.Layout();
  const bool isRead = detail::IsSingleBand(layout) ? detail::IsStretched(layout)
                                                   : detail::IsStretchedColor(layout, stretch);
  if (!isRead) return stretch;
  const detail::FoundRange found = detail::FindRange(samples, noData, stretch);
  if (!found.range) return stretch;
  NumberStretch settled;
  settled.kind = NumberStretch::Kind::fixed;
  settled.least = detail::DoubleOf(found.range->black);
  settled.greatest = detail::DoubleOf(found.range->white);
  return settled;
}

Raster VisiblePixels(Pixels pixels, const std::string& noData, Changes& changes,
                     const NumberStretch& stretch) {
  if (auto* rows = std::get_if<Raster>(&pixels)) return std::move(*rows);
  const LimitsScope limits;
  const Samples& samples = std::get<Samples>(pixels);
  PixelView view(samples, noData, stretch);
  while (view.NeedsPass()) {
    view.Look(samples, 0, samples.Height());
    view.EndPass();
  }
  Raster raster(view.Like().Format(), samples.Width(), samples.Height());
  raster.CopyProperties(view.Like());
  view.Show(samples, 0, samples.Height(), raster, 0);
  view.Report(changes);
  return raster;
}

}  // namespace rasterkit
