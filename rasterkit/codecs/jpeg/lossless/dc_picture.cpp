#include <algorithm>

#include <rasterkit/codecs/jpeg/lossless/block_grid.h>
#include <rasterkit/codecs/jpeg/lossless/dc_blocks.h>
#include <rasterkit/codecs/jpeg/lossless/dc_picture.h>
#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace detail {
namespace {

constexpr int kMostSample = 255, kMiddle = 128;

uint8_t ByteOf(int value) {
  return static_cast<uint8_t>(std::clamp(value, 0, kMostSample));
}

/// The mean of a block: an eighth of its first coefficient, rounded, halves up.
uint8_t MeanOf(const JCOEF* block, int step) {
  return ByteOf(((block[0] * step + 4) >> 3) + kMiddle);
}

/// Replaces Y Cb Cr by R G B, by the formulas of JFIF in 16 bits of fraction.
void ToRgb(uint8_t* pixel) {
  constexpr int kBits = 16, kHalf = 1 << (kBits - 1);
  constexpr int kRedOfCr = 91881, kBlueOfCb = 116130, kGreenOfCr = 46802, kGreenOfCb = 22554;
  const int y = pixel[0], cb = pixel[1] - kMiddle, cr = pixel[2] - kMiddle;
  pixel[0] = ByteOf(y + ((kRedOfCr * cr + kHalf) >> kBits));
  pixel[1] = ByteOf(y + ((-kGreenOfCb * cb - kGreenOfCr * cr + kHalf) >> kBits));
  pixel[2] = ByteOf(y + ((kBlueOfCb * cb + kHalf) >> kBits));
}

/// The samples of a row of the small picture, component by component.
class SampleRow {
 public:
  explicit SampleRow(const DcPicture& picture) : picture_(picture) {
    for (const DcBlocks& blocks : picture.components) {
      mostH_ = std::max(mostH_, blocks.h);
      mostV_ = std::max(mostV_, blocks.v);
    }
    bands_ = picture.components.size();
    width_ = static_cast<size_t>((picture.width + kBlockPixels - 1) / kBlockPixels);
    samples_.resize(width_ * bands_);
  }

  /// The row with the colors of the file; Y Cb Cr become R G B.
  uint8_t* Get(int y) {
    for (size_t band = 0; band < bands_; band++) {
      const DcBlocks& blocks = picture_.components[band];
      JBLOCKROW row = (*blocks.rows)[static_cast<size_t>(y * blocks.v / mostV_)];
      for (size_t x = 0; x < width_; x++) {
        const size_t column = x * static_cast<size_t>(blocks.h) / static_cast<size_t>(mostH_);
        samples_[x * bands_ + band] = MeanOf(row[column], blocks.step);
      }
    }
    if (picture_.space == JCS_YCbCr || picture_.space == JCS_YCCK) {
      for (size_t x = 0; x < width_; x++) ToRgb(&samples_[x * bands_]);
    }
    return samples_.data();
  }

  size_t Width() const { return width_; }

 private:
  const DcPicture& picture_;
  int mostH_ = 1, mostV_ = 1;
  size_t bands_ = 0, width_ = 0;
  std::vector<uint8_t> samples_;
};

/// Writes a row of the small picture.
void PutRow(const DcPicture& picture, uint8_t* samples, size_t width, uint8_t* target) {
  switch (picture.space) {
    case JCS_GRAYSCALE:
      std::copy_n(samples, width, target);
      break;
    case JCS_YCCK:
      // The colors are those of the inks, which are their opposites.
      for (size_t i = 0; i < 4 * width; i++) {
        if (i % 4 != 3) samples[i] = static_cast<uint8_t>(~samples[i]);
      }
      [[fallthrough]];
    case JCS_CMYK:
      CmykRowToBgr(samples, target, width, picture.hasAdobe);
      break;
    default:
      for (size_t x = 0; x < width; x++) {
        std::reverse_copy(samples + 3 * x, samples + 3 * x + 3, target + 3 * x);
      }
  }
}

}  // namespace

bool HasColors(const DcPicture& picture) {
  switch (picture.space) {
    case JCS_GRAYSCALE:
    case JCS_RGB:
    case JCS_YCbCr:
    case JCS_CMYK:
    case JCS_YCCK:
      return true;
    default:
      return false;
  }
}

Raster RowsOf(const DcPicture& picture) {
  const bool isGray = picture.space == JCS_GRAYSCALE;
  SampleRow row(picture);
  const int height = (picture.height + kBlockPixels - 1) / kBlockPixels;
  Raster raster(isGray ? pf8bit : pf24bit, static_cast<int>(row.Width()), height);
  if (isGray) raster.palette = GrayPalette(256);
  for (int y = 0; y < height; y++) {
    RequireTime();
    PutRow(picture, row.Get(y), row.Width(), raster.Row(y));
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace detail

Raster DecodeJpegEighth(std::span<const uint8_t> file) {
  const LimitsScope limits;
  detail::JpegCoefficients coefficients(file, detail::ReadJpegLayout(file), 0);
  const jpeg_decompress_struct& codec = coefficients.Codec();
  detail::DcPicture picture;
  picture.space = codec.jpeg_color_space;
  picture.hasAdobe = codec.saw_Adobe_marker != FALSE;
  picture.width = static_cast<int>(codec.image_width);
  picture.height = static_cast<int>(codec.image_height);
  if (!detail::HasColors(picture)) {
    throw UnsupportedError("JPEG: the colors of these components are not known");
  }
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    picture.components.push_back({&coefficients.Rows(i), component.h_samp_factor,
                                  component.v_samp_factor, component.quant_table->quantval[0]});
  }
  return detail::RowsOf(picture);
}

}  // namespace rasterkit
