#include <algorithm>
#include <cmath>

#include <fmt/format.h>
#include <jerror.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_errors.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

constexpr int kRowsAtOnce = 16;
constexpr size_t kSmallestBuffer = 1 << 16;
/// The content of 255 segments of 65,519 bytes.
constexpr size_t kLargestProfile = size_t{255} * 65519;

/// A libjpeg encoder that writes to a growing block of memory; the destructor destroys it.
class JpegWriter {
 public:
  explicit JpegWriter(size_t expectedBytes) : output_(std::max(expectedBytes, kSmallestBuffer)) {
    codec_.err = errors_.Install();
    codec_.client_data = &errors_;
    target_.base.init_destination = [](j_compress_ptr) {};
    target_.base.empty_output_buffer = OnFull;
    target_.base.term_destination = [](j_compress_ptr) {};
    target_.base.next_output_byte = output_.data();
    target_.base.free_in_buffer = output_.size();
    target_.writer = this;
    Run([this] {
      jpeg_create_compress(&codec_);
      codec_.dest = &target_.base;
    });
  }
  ~JpegWriter() { jpeg_destroy_compress(&codec_); }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;

  jpeg_compress_struct& Codec() { return codec_; }

  template <class Body>
  void Run(const Body& body) {
    if (!detail::RunJpeg(errors_, body)) {
      jpeg_destroy_compress(&codec_);
      errors_.Throw();
    }
  }

  std::vector<uint8_t> TakeBytes() {
    output_.resize(output_.size() - target_.base.free_in_buffer);
    return std::move(output_);
  }

 private:
  struct Target {
    jpeg_destination_mgr base{};
    JpegWriter* writer = nullptr;
  };

  static boolean OnFull(j_compress_ptr codec) {
    auto* target = reinterpret_cast<Target*>(codec->dest);
    if (!target->writer->Grow()) ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
    return TRUE;
  }

  /// Doubles the full buffer. No exception may pass through the library.
  bool Grow() noexcept {
    const size_t used = output_.size();
    try {
      output_.resize(used * 2);
    } catch (...) {
      return false;
    }
    target_.base.next_output_byte = output_.data() + used;
    target_.base.free_in_buffer = used;
    return true;
  }

  std::vector<uint8_t> output_;
  detail::JpegErrors errors_;
  Target target_;
  jpeg_compress_struct codec_{};
};

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
  JpegWriter writer(pixelBytes / 8);
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
