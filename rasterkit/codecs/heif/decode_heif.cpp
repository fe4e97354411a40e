#include <algorithm>
#include <cstring>
#include <memory>

#include <fmt/format.h>

#include <rasterkit/codecs/heif/heif_file.h>
#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {
namespace {

struct ImageEnd {
  void operator()(heif_image* image) const { detail::OpenedHeifLibrary().image_release(image); }
};
using ImagePtr = std::unique_ptr<heif_image, ImageEnd>;

uint64_t Area(const detail::HeifFile& file) {
  return static_cast<uint64_t>(file.Width()) * static_cast<uint64_t>(file.Height());
}

/// The library holds planes, those of the parts while it joins them, and the colors made of them.
uint64_t LibraryBytes(const detail::HeifFile& file, const PixelLayout& layout) {
  constexpr uint64_t kCopies = 3;
  return kCopies * Area(file) * static_cast<uint64_t>(layout.bands) * BytesOf(layout.type);
}

void RequireMemory(const detail::HeifFile& file, const PixelLayout& layout) {
  const uint64_t rows = Area(file) * static_cast<uint64_t>(layout.bands) * BytesOf(layout.type);
  RequirePicture(static_cast<uint64_t>(file.Width()), static_cast<uint64_t>(file.Height()),
                 rows + LibraryBytes(file, layout),
                 fmt::format("HEIF picture of {} x {} pixels", file.Width(), file.Height()));
}

heif_chroma ChromaOf(const PixelLayout& layout) {
  const bool hasAlpha = layout.alpha != AlphaKind::none;
  if (layout.type == NumberType::uint8) {
    return hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
  }
  return hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
}

void TakeWarnings(const detail::HeifFile& file, heif_image* image, CodecReport& report) {
  constexpr int kMost = 20;
  heif_error texts[kMost];
  const int count = file.Library().image_get_decoding_warnings(image, 0, texts, kMost);
  for (int i = 0; i < std::min(count, kMost); ++i) {
    if (texts[i].message != nullptr) report.AddDamage(fmt::format("HEIF: {}", texts[i].message));
  }
}

ImagePtr Decode(const detail::HeifFile& file, const PixelLayout& layout, CodecReport& report) {
  heif_image* decoded = nullptr;
  const heif_error error = file.Library().decode_image(
      file.Picture(), &decoded, heif_colorspace_RGB, ChromaOf(layout), nullptr);
  ImagePtr image(decoded);
  detail::RequireHeif(error);
  const int width = file.Library().image_get_width(decoded, heif_channel_interleaved);
  const int height = file.Library().image_get_height(decoded, heif_channel_interleaved);
  if (width != file.Width() || height != file.Height()) {
    throw FormatError(fmt::format("HEIF: the pixels are {} x {}, the file states {} x {}", width,
                                  height, file.Width(), file.Height()));
  }
  TakeWarnings(file, decoded, report);
  return image;
}

/// Rows of R G B (A) as B G R (A).
Raster RasterOf(const uint8_t* rows, size_t stride, const detail::HeifFile& file,
                const PixelLayout& layout) {
  const bool hasAlpha = layout.bands == 4;
  Raster raster(hasAlpha ? pf32bit : pf24bit, file.Width(), file.Height());
  if (hasAlpha) raster.alphaFormat = afDefined;
  const auto pixelBytes = static_cast<size_t>(layout.bands);
  for (int y = 0; y < raster.Height(); ++y) {
    RequireTime();
    const uint8_t* source = rows + static_cast<size_t>(y) * stride;
    uint8_t* target = raster.Row(y);
    for (int x = 0; x < raster.Width(); ++x, source += pixelBytes, target += pixelBytes) {
      target[0] = source[2];
      target[1] = source[1];
      target[2] = source[0];
      if (hasAlpha) target[3] = source[3];
    }
  }
  raster.ClearPadding();
  raster.profile = layout.profile;
  return raster;
}

Samples SamplesOf(const uint8_t* rows, size_t stride, const detail::HeifFile& file,
                  const PixelLayout& layout) {
  Samples samples(layout, file.Width(), file.Height());
  for (int y = 0; y < samples.Height(); ++y) {
    RequireTime();
    std::memcpy(samples.Row(y), rows + static_cast<size_t>(y) * stride, samples.Stride());
  }
  return samples;
}

}  // namespace

Pixels DecodeHeifPixels(TStream& stream, const FrameOptions&, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  const detail::HeifFile file(stream);
  const PixelLayout layout = file.Layout();
  RequireMemory(file, layout);
  const MemoryShare kept(LibraryBytes(file, layout));
  const ImagePtr image = Decode(file, layout, noticed);
  int stride = 0;
  const uint8_t* rows =
      file.Library().image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  const int bits =
      file.Library().image_get_bits_per_pixel_range(image.get(), heif_channel_interleaved);
  const size_t rowBytes =
      static_cast<size_t>(file.Width()) * static_cast<size_t>(layout.bands) * BytesOf(layout.type);
  if (rows == nullptr || stride < 0 || static_cast<size_t>(stride) < rowBytes ||
      bits != layout.bits) {
    throw FormatError("HEIF: the pixels are not of the kind that the file states");
  }
  if (report != nullptr) report->Append(noticed);
  const auto pitch = static_cast<size_t>(stride);
  if (layout.type == NumberType::uint8 && layout.alpha != AlphaKind::associated) {
    return RasterOf(rows, pitch, file, layout);
  }
  return SamplesOf(rows, pitch, file, layout);
}

}  // namespace rasterkit
