#include <algorithm>
#include <cmath>

#include <fmt/core.h>

#include <rasterkit/graphics/metafile_size.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr double kDefaultDpi = 96, kHundredthsPerInch = 2540;

int PixelsOf(int mm100, double dpi) {
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

/// The size that follows from the resolution and from the size that the file states.
PictureSize SizeAtDpi(const TMetafile& metafile, double dpi) {
  const int width = PixelsOf(metafile.MMWidth(), dpi), height = PixelsOf(metafile.MMHeight(), dpi);
  if (detail::IsDrawingPlausible(static_cast<uint64_t>(width), static_cast<uint64_t>(height),
                                 metafile.Bytes().size())) {
    return {width, height};
  }
  throw LimitError(fmt::format(
      "metafile: at {:g} dpi the drawing has {} x {} pixels, far too many for a file of {} bytes; "
      "`rasterkit convert` with --size draws it at any size",
      dpi, width, height, metafile.Bytes().size()));
}

PictureSize SizeOf(const TMetafile& metafile, const MetafileDrawing& drawing) {
  if (drawing.size.width > 0 || drawing.size.height > 0) {
    return drawing.size.For(metafile.Width(), metafile.Height());
  }
  if (drawing.dpi <= 0) return OwnSize(metafile, drawing.isForFacts);
  return SizeAtDpi(metafile, drawing.dpi);
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

DrawnSize DrawnSizeOf(const TMetafile& metafile, const MetafileDrawing& drawing) {
  const PictureSize size = SizeOf(metafile, drawing);
  return {size, ResolutionOf(metafile, drawing, size)};
}

DrawnMetafile DrawMetafile(const TMetafile& metafile, const MetafileDrawing& drawing,
                           const std::function<bool()>& keepGoing) {
  const DrawnSize size = DrawnSizeOf(metafile, drawing);
  DrawnMetafile drawn;
  const Raster rows = metafile.Draw(size.pixels.width, size.pixels.height, drawing.background,
                                    keepGoing, &drawn.warnings);
  drawn.rows = ConvertRaster(rows, pf24bit);
  drawn.rows.resolution = size.resolution;
  return drawn;
}

}  // namespace rasterkit
