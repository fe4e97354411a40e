#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

#include <fmt/format.h>
#include <webp/decode.h>

#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/webp/webp_chunks.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;

/// Below this many bytes an animation's canvas may be as empty as it likes.
constexpr uint64_t alwaysAllowed = uint64_t{256} << 20;
/// Beyond that, its first picture covers at least this part of it.
constexpr uint64_t largestCanvasOverPicture = 64;

[[noreturn]] void ThrowStatus(VP8StatusCode status) {
  switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY:
      throw LimitError("WebP: not enough memory");
    case VP8_STATUS_UNSUPPORTED_FEATURE:
      throw UnsupportedError("WebP: the file uses a feature that is not supported");
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA:
      throw FormatError("WebP: the data end before the first row");
    default:
      throw FormatError("WebP: the file is damaged");
  }
}

WebPBitstreamFeatures FeaturesOf(Bytes bytes) {
  WebPBitstreamFeatures features;
  const VP8StatusCode status = WebPGetFeatures(bytes.data(), bytes.size(), &features);
  if (status != VP8_STATUS_OK) ThrowStatus(status);
  return features;
}

/// One compressed picture and its place on the canvas.
struct Picture {
  Bytes data;
  int canvasWidth = 0, canvasHeight = 0;
  int left = 0, top = 0, width = 0, height = 0;
  bool hasAlpha = false, isLossless = false;

  bool CoversCanvas() const { return width == canvasWidth && height == canvasHeight; }
  /// What an animation's picture leaves free of its canvas is transparent.
  TPixelFormat Format() const { return hasAlpha || !CoversCanvas() ? pf32bit : pf24bit; }
};

/// Takes what the compressed picture says about itself.
void TakeFeatures(Picture& picture, const WebPBitstreamFeatures& features) {
  constexpr int lossless = 2;
  picture.width = features.width;
  picture.height = features.height;
  picture.hasAlpha = features.has_alpha != 0;
  picture.isLossless = features.format == lossless;
}

Picture StillPicture(Bytes bytes, const WebPBitstreamFeatures& features) {
  Picture picture;
  picture.data = bytes;
  TakeFeatures(picture, features);
  picture.canvasWidth = picture.width;
  picture.canvasHeight = picture.height;
  return picture;
}

int LittleEndian24(Bytes bytes) {
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16;
}

/// Of a frame's chunk: place (halved) and size (less one) of its picture, what is of no interest
/// here, the compressed picture.
Picture PictureOfFrameChunk(Bytes chunk) {
  constexpr size_t header = 16;
  if (chunk.size() < header) ThrowStatus(VP8_STATUS_NOT_ENOUGH_DATA);
  Picture picture;
  picture.left = 2 * LittleEndian24(chunk);
  picture.top = 2 * LittleEndian24(chunk.subspan(3));
  picture.data = chunk.subspan(header);
  TakeFeatures(picture, FeaturesOf(picture.data));
  if (picture.width != LittleEndian24(chunk.subspan(6)) + 1 ||
      picture.height != LittleEndian24(chunk.subspan(9)) + 1)
    throw FormatError("WebP: the animation's first picture has not the size that is stated");
  return picture;
}

Picture FirstPictureOfAnimation(Bytes bytes, const WebPBitstreamFeatures& canvas) {
  for (detail::WebpChunks chunks(bytes); chunks.Next();) {
    if (!chunks.IsNamed("ANMF")) continue;
    Picture picture = PictureOfFrameChunk(chunks.Data());
    picture.canvasWidth = canvas.width;
    picture.canvasHeight = canvas.height;
    if (picture.left + picture.width > canvas.width || picture.top + picture.height > canvas.height)
      throw FormatError("WebP: the animation's first picture lies outside of its canvas");
    return picture;
  }
  throw FormatError("WebP: the animation's first picture is missing");
}

Picture FirstPicture(Bytes bytes) {
  const WebPBitstreamFeatures features = FeaturesOf(bytes);
  return features.has_animation ? FirstPictureOfAnimation(bytes, features)
                                : StillPicture(bytes, features);
}

uint64_t Area(int width, int height) {
  return static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
}

/// Refuses what is too large before any memory of that size is taken.
void RequirePlausibleSize(const Picture& picture) {
  const std::string what =
      fmt::format("WebP picture of {} x {} pixels", picture.canvasWidth, picture.canvasHeight);
  const uint64_t rows = StrideBytes(picture.canvasWidth, StoredBitsPerPixel(picture.Format())) *
                        static_cast<uint64_t>(picture.canvasHeight);
  // The library keeps lossless pictures whole, and alpha planes beside their packed form.
  const uint64_t bytesKept = picture.isLossless ? 4 : picture.hasAlpha ? 2 : 0;
  RequirePictureMemory(rows + bytesKept * Area(picture.width, picture.height), what);
  if (rows > alwaysAllowed &&
      Area(picture.canvasWidth, picture.canvasHeight) / Area(picture.width, picture.height) >
          largestCanvasOverPicture)
    throw FormatError(what + ": the canvas is far too large for its first picture");
}

struct DecoderEnd {
  void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};

struct Outcome {
  /// Rows that are there, from the first one on.
  int rows = 0;
  bool isDamaged = false;
};

/// Decodes into the raster as far as there is something.
Outcome DecodeRows(const Picture& picture, Raster& raster) {
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config))
    throw UnsupportedError("WebP: the library is of another version");
  const bool hasAlpha = raster.Format() == pf32bit;
  const size_t pixelBytes = hasAlpha ? 4 : 3;
  WebPRGBABuffer& target = config.output.u.RGBA;
  config.output.colorspace = hasAlpha ? MODE_BGRA : MODE_BGR;
  config.output.is_external_memory = 1;
  target.rgba = raster.Row(picture.top) + static_cast<size_t>(picture.left) * pixelBytes;
  target.stride = static_cast<int>(raster.Stride());
  target.size = raster.Stride() * (static_cast<size_t>(picture.height) - 1) +
                static_cast<size_t>(picture.width) * pixelBytes;

  // The decoder that takes a file piece by piece is the one that shows the rows which are there.
  const std::unique_ptr<WebPIDecoder, DecoderEnd> decoder(WebPIDecode(nullptr, 0, &config));
  if (!decoder) throw LimitError("WebP: not enough memory");
  const VP8StatusCode status = WebPIUpdate(decoder.get(), picture.data.data(), picture.data.size());
  if (status == VP8_STATUS_OK) return {picture.height};
  if (status == VP8_STATUS_OUT_OF_MEMORY) ThrowStatus(status);
  int rows = 0;
  WebPIDecGetRGB(decoder.get(), &rows, nullptr, nullptr, nullptr);
  if (rows <= 0) ThrowStatus(status);
  return {rows, status != VP8_STATUS_SUSPENDED && status != VP8_STATUS_NOT_ENOUGH_DATA};
}

ColorProfile ProfileOf(Bytes bytes, CodecReport& report) {
  for (detail::WebpChunks chunks(bytes); chunks.Next() && chunks.IsWhole();) {
    if (!chunks.IsNamed("ICCP")) continue;
    const Bytes profile = chunks.Data();
    if (detail::ProfileFits(profile, detail::ProfileSpace::rgb))
      return std::make_shared<const std::vector<uint8_t>>(profile.begin(), profile.end());
    report.warnings.emplace_back(
        "WebP: the colour profile is broken or of another kind and is left out");
    return nullptr;
  }
  return nullptr;
}

/// What is free of the canvas is transparent.
void ClearCanvas(Raster& raster) {
  for (int y = 0; y < raster.Height(); y++) std::memset(raster.Row(y), 0, raster.RowBytes());
}

}  // namespace

Raster DecodeWebp(Bytes bytes, CodecReport* report) {
  CodecReport noticed;
  const Picture picture = FirstPicture(bytes);
  RequirePlausibleSize(picture);
  Raster raster(picture.Format(), picture.canvasWidth, picture.canvasHeight);
  if (raster.Format() == pf32bit) raster.alphaFormat = afDefined;
  if (!picture.CoversCanvas()) ClearCanvas(raster);
  const Outcome outcome = DecodeRows(picture, raster);
  if (picture.CoversCanvas()) detail::FillMissingRows(raster, outcome.rows);
  raster.ClearPadding();
  raster.profile = ProfileOf(bytes, noticed);

  if (outcome.rows < picture.height) {
    noticed.warnings.push_back(fmt::format("WebP: the data {}, {} of {} rows are there",
                                           outcome.isDamaged ? "are damaged" : "end early",
                                           outcome.rows, picture.height));
  } else if (detail::IsWebpCutOff(bytes)) {
    noticed.warnings.emplace_back("WebP: the file is cut off");
  }
  if (report)
    std::move(noticed.warnings.begin(), noticed.warnings.end(),
              std::back_inserter(report->warnings));
  return raster;
}

}  // namespace rasterkit
