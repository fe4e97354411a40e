#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_writer.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

constexpr int kRowsAtOnce = 16;
/// The content of 255 segments of 65,519 bytes.
constexpr size_t kLargestProfile = size_t{255} * 65519;

void RequireEncodable(const Raster& raster) {
  const bool gray = raster.Format() == pf8bit && IsGrayRamp(raster.palette);
  if (!gray && raster.Format() != pf24bit) {
    throw FormatError("JPEG: only 24-bit pictures and 8-bit ones with a gray ramp can be written");
  }
  if (raster.Width() == 0 || raster.Height() == 0) {
    throw FormatError("JPEG: an empty picture cannot be written");
  }
  if (raster.Width() > JPEG_MAX_DIMENSION || raster.Height() > JPEG_MAX_DIMENSION) {
    throw LimitError(
        fmt::format("JPEG: {} x {} pixels are more than {} per side, the limit of the format",
                    raster.Width(), raster.Height(), JPEG_MAX_DIMENSION));
  }
}

bool IsWhole(double value) {
  return std::abs(value - std::round(value)) < 1e-6;
}

uint16_t DensityValue(double value) {
  return static_cast<uint16_t>(std::clamp(std::round(value), 1.0, 65535.0));
}

/// Dots per inch, or per centimeter if only that is a whole number: the field holds no fractions.
void SetDensity(jpeg_compress_struct& codec, const Resolution& resolution) {
  if (!resolution.IsKnown()) return;
  const bool inches = IsWhole(resolution.x) && IsWhole(resolution.y);
  const bool centimeters = !inches && IsWhole(resolution.x / 2.54) && IsWhole(resolution.y / 2.54);
  const double unit = centimeters ? 2.54 : 1;
  codec.density_unit = centimeters ? 2 : 1;
  codec.X_density = DensityValue(resolution.x / unit);
  codec.Y_density = DensityValue(resolution.y / unit);
}

/// Defaults of the library except for the quality: color at half resolution in both directions,
/// standard Huffman tables (optimized tables save a few percent and cost a second pass), accurate
/// integer transform.
void Configure(jpeg_compress_struct& codec, const Raster& raster, int quality) {
  const bool gray = raster.Format() == pf8bit;
  codec.image_width = static_cast<JDIMENSION>(raster.Width());
  codec.image_height = static_cast<JDIMENSION>(raster.Height());
  codec.input_components = gray ? 1 : 3;
  codec.in_color_space = gray ? JCS_GRAYSCALE : JCS_EXT_BGR;
  jpeg_set_defaults(&codec);
  jpeg_set_quality(&codec, quality, TRUE);
  codec.dct_method = JDCT_ISLOW;
}

}  // namespace

std::vector<uint8_t> EncodeJpeg(const Raster& raster, int quality) {
  const LimitsScope limits;
  RequireEncodable(raster);
  const auto space =
      raster.Format() == pf8bit ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  const bool withProfile =
      detail::ProfileFits(raster.profile, space) && raster.profile->size() <= kLargestProfile;
  const size_t pixelBytes = raster.RowBytes() * static_cast<size_t>(raster.Height());
  detail::JpegWriter writer(pixelBytes / 8);
  jpeg_compress_struct& codec = writer.Codec();
  writer.Run([&] {
    Configure(codec, raster, std::clamp(quality, 1, 100));
    SetDensity(codec, raster.resolution);
    jpeg_start_compress(&codec, TRUE);
    if (withProfile) {
      jpeg_write_icc_profile(&codec, raster.profile->data(),
                             static_cast<unsigned>(raster.profile->size()));
    }
    JSAMPROW rows[kRowsAtOnce];
    while (codec.next_scanline < codec.image_height) {
      RequireTime();
      const int y = static_cast<int>(codec.next_scanline);
      const int count = std::min(kRowsAtOnce, raster.Height() - y);
      // The library takes a pointer to non-constant rows but does not change them.
      for (int i = 0; i < count; i++) rows[i] = const_cast<uint8_t*>(raster.Row(y + i));
      jpeg_write_scanlines(&codec, rows, static_cast<JDIMENSION>(count));
    }
    jpeg_finish_compress(&codec);
  });
  return writer.TakeBytes();
}

}  // namespace rasterkit
