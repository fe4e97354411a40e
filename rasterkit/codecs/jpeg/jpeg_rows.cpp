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

JpegRows::JpegRows(const Pixels& pixels)
    : pixels_(pixels),
      raster_(std::get_if<Raster>(&pixels)),
      samples_(std::get_if<Samples>(&pixels)) {
  colors_ = raster_ != nullptr ? ColorsOf(*raster_) : ColorsOf(samples_->Layout());
  if (Width() == 0 || Height() == 0) {
    throw FormatError("JPEG: an empty picture cannot be written");
  }
  if (Width() > JPEG_MAX_DIMENSION || Height() > JPEG_MAX_DIMENSION) {
    throw LimitError(
        fmt::format("JPEG: {} x {} pixels are more than {} per side, the limit of the format",
                    Width(), Height(), JPEG_MAX_DIMENSION));
  }
}

const uint8_t* JpegRows::Row(int y, bool inverted) {
  if (raster_ != nullptr) return raster_->Row(y);
  const bool isJoined = samples_->Planes() == 1;
  if (isJoined && !inverted) return samples_->Row(y);
  const auto bands = static_cast<size_t>(samples_->Layout().bands);
  const auto width = static_cast<size_t>(samples_->Width());
  const uint8_t flip = inverted ? 0xFF : 0;
  std::vector<uint8_t>& target = converted_[y % kKept];
  target.resize(width * bands);
  for (size_t band = 0; band < bands; band++) {
    const uint8_t* source =
        isJoined ? samples_->Row(y) + band : samples_->Row(y, static_cast<int>(band));
    const size_t step = isJoined ? bands : 1;
    for (size_t x = 0; x < width; x++) target[x * bands + band] = source[x * step] ^ flip;
  }
  return target.data();
}

}  // namespace rasterkit::detail
