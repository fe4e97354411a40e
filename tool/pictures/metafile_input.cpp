#include "tool/pictures/metafile_input.h"

#include <algorithm>
#include <cmath>

#include <fmt/core.h>

#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/interruption.h"

namespace rasterkit::tool {
namespace {

constexpr double kDefaultDpi = 96, kHundredthsPerInch = 2540;

int Pixels(int mm100, double dpi) {
  constexpr double kMost = 1e9;
  return static_cast<int>(std::clamp(std::round(mm100 * dpi / kHundredthsPerInch), 1.0, kMost));
}

/// The size stated by the file.
PictureSize OwnSize(const TMetafile& metafile, bool isForFacts) {
  constexpr double kMostPixels = 1 << 28, kMostForFacts = 1 << 24;
  const int width = metafile.Width(), height = metafile.Height();
  const double pixels = double{1} * width * height;
  if (isForFacts && pixels > kMostForFacts) {
    const double smaller = std::sqrt(kMostForFacts / pixels);
    return {std::max(1, static_cast<int>(width * smaller)),
            std::max(1, static_cast<int>(height * smaller))};
  }
  if (pixels <= kMostPixels && metafile.IsSizePlausible()) return {width, height};
  throw LimitError(fmt::format(
      "metafile: the drawing has {} x {} pixels; `rasterkit convert` with --size or --dpi "
      "makes it smaller",
      width, height));
}

PictureSize SizeOf(const TMetafile& metafile, const MetafileDrawing& drawing) {
  if (drawing.size.width > 0 || drawing.size.height > 0) {
    return drawing.size.For(metafile.Width(), metafile.Height());
  }
  if (drawing.dpi <= 0) return OwnSize(metafile, drawing.isForFacts);
  return {Pixels(metafile.MMWidth(), drawing.dpi), Pixels(metafile.MMHeight(), drawing.dpi)};
}

Resolution ResolutionOf(const TMetafile& metafile, const MetafileDrawing& drawing,
                        const PictureSize& size) {
  if (drawing.size.width == 0 && drawing.size.height == 0) {
    const double dpi = drawing.dpi > 0 ? drawing.dpi : kDefaultDpi;
    return {dpi, dpi};
  }
  return {size.width * kHundredthsPerInch / metafile.MMWidth(),
          size.height * kHundredthsPerInch / metafile.MMHeight()};
}

}  // namespace

DrawnMetafile DrawMetafile(const TMetafile& metafile, const MetafileDrawing& drawing) {
  const PictureSize size = SizeOf(metafile, drawing);
  const auto keepGoing = [] {
    StopIfInterrupted();
    return true;
  };
  DrawnMetafile drawn;
  const Raster rows =
      metafile.Draw(size.width, size.height, drawing.background, keepGoing, &drawn.warnings);
  drawn.rows = ConvertRaster(rows, pf24bit);
  drawn.rows.resolution = ResolutionOf(metafile, drawing, size);
  return drawn;
}

}  // namespace rasterkit::tool
