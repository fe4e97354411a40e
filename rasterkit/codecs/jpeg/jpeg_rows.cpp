#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>
#include <rasterkit/codecs/jpeg/jpeg_rows.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

JpegColors ColorsOf(const Raster& raster) {
  if (raster.Format() == pf24bit) return JpegColors::rgb;
  if (raster.Format() == pf8bit && IsGrayRamp(raster.palette)) return JpegColors::gray;
  throw UnsupportedError("JPEG: only 24-bit colors and 8-bit grays can be written");
}

JpegColors ColorsOf(const PixelLayout& layout) {
  const bool isPlain = layout.type == NumberType::uint8 && layout.bits == 8 &&
                       layout.alpha == AlphaKind::none && layout.extraBands == 0;
  if (isPlain && layout.bands == 1 && layout.model == ColorModel::gray) return JpegColors::gray;
  if (isPlain && layout.bands == 3 && layout.model == ColorModel::rgb) return JpegColors::rgb;
  if (isPlain && layout.bands == 4 && layout.model == ColorModel::cmyk) return JpegColors::cmyk;
  throw UnsupportedError("JPEG: only gray, RGB and CMYK of 8 bits per sample can be written");
}

}  // namespace

JpegRows::JpegRows(const Pixels& like, int width, int height) : width_(width), height_(height) {
  const auto* raster = std::get_if<Raster>(&like);
  colors_ = raster != nullptr ? ColorsOf(*raster) : ColorsOf(std::get<Samples>(like).Layout());
  isBgr_ = raster != nullptr && colors_ == JpegColors::rgb;
  if (width == 0 || height == 0) throw FormatError("JPEG: an empty picture cannot be written");
  if (width > JPEG_MAX_DIMENSION || height > JPEG_MAX_DIMENSION) {
    throw LimitError(
        fmt::format("JPEG: {} x {} pixels are more than {} per side, the limit of the format",
                    width, height, JPEG_MAX_DIMENSION));
  }
}

const uint8_t* JpegRows::Row(const Pixels& pixels, int y, bool inverted) {
  if (const auto* raster = std::get_if<Raster>(&pixels)) return raster->Row(y);
  const auto& samples = std::get<Samples>(pixels);
  const bool isJoined = samples.Planes() == 1;
  if (isJoined && !inverted) return samples.Row(y);
  const auto bands = static_cast<size_t>(samples.Layout().bands);
  const auto width = static_cast<size_t>(samples.Width());
  const uint8_t flip = inverted ? 0xFF : 0;
  std::vector<uint8_t>& target = converted_[y % kKept];
  target.resize(width * bands);
  for (size_t band = 0; band < bands; band++) {
    const uint8_t* source =
        isJoined ? samples.Row(y) + band : samples.Row(y, static_cast<int>(band));
    const size_t step = isJoined ? bands : 1;
    for (size_t x = 0; x < width; x++) target[x * bands + band] = source[x * step] ^ flip;
  }
  return target.data();
}

}  // namespace rasterkit::detail
