#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

#include <fmt/format.h>
#include <webp/decode.h>

#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/codecs/webp/webp_chunks.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;

/// The first picture must cover at least one part in this many of a larger canvas.
constexpr uint64_t kLargestCanvasOverPicture = 64;

[[noreturn]] void ThrowStatus(VP8StatusCode status) {
  switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY:
      throw LimitError("WebP: out of memory");
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
  /// The rest of an animation's canvas is transparent, so it needs alpha.
  TPixelFormat Format() const { return hasAlpha || !CoversCanvas() ? pf32bit : pf24bit; }
};

/// Reads the properties of the compressed picture.
void TakeFeatures(Picture& picture, const WebPBitstreamFeatures& features) {
  constexpr int kLossless = 2;
  picture.width = features.width;
  picture.height = features.height;
  picture.hasAlpha = features.has_alpha != 0;
  picture.isLossless = features.format == kLossless;
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

/// Reads a frame chunk: place (halved) and size (minus one) of its picture, ignored fields, the
/// compressed picture.
Picture PictureOfFrameChunk(Bytes chunk) {
  constexpr size_t kHeader = 16;
  if (chunk.size() < kHeader) ThrowStatus(VP8_STATUS_NOT_ENOUGH_DATA);
  Picture picture;
  picture.left = 2 * LittleEndian24(chunk);
  picture.top = 2 * LittleEndian24(chunk.subspan(3));
  picture.data = chunk.subspan(kHeader);
  TakeFeatures(picture, FeaturesOf(picture.data));
  if (picture.width != LittleEndian24(chunk.subspan(6)) + 1 ||
      picture.height != LittleEndian24(chunk.subspan(9)) + 1) {
    throw FormatError("WebP: the animation's first picture does not have its stated size");
  }
  return picture;
}

Picture FirstPictureOfAnimation(Bytes bytes, const WebPBitstreamFeatures& canvas) {
  for (detail::WebpChunks chunks(bytes); chunks.Next();) {
    if (!chunks.IsNamed("ANMF")) continue;
    Picture picture = PictureOfFrameChunk(chunks.Data());
    picture.canvasWidth = canvas.width;
    picture.canvasHeight = canvas.height;
    if (picture.left + picture.width > canvas.width ||
        picture.top + picture.height > canvas.height) {
      throw FormatError("WebP: the animation's first picture lies outside of its canvas");
    }
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

/// Lossy coding takes more than a bit for the modes of each block of 16 x 16 pixels: their
/// probabilities are fixed. Lossless coding has no bound: a picture of one color takes a few bytes.
constexpr uint64_t kMacroblocksPerByte = 8 * detail::kCutSlack;

uint64_t MacroblocksOf(const Picture& picture) {
  constexpr int kSide = 16;
  return Area((picture.width + kSide - 1) / kSide, (picture.height + kSide - 1) / kSide);
}

/// The library keeps complete lossless pictures, and alpha planes also in compressed form.
uint64_t BytesOfLibrary(const Picture& picture) {
  const uint64_t perPixel = picture.isLossless ? 4 : picture.hasAlpha ? 2 : 0;
  return perPixel * Area(picture.width, picture.height);
}

/// Refuses pictures that are too large before that much memory is allocated.
void RequirePlausibleSize(const Picture& picture) {
  const std::string what =
      fmt::format("WebP picture of {} x {} pixels", picture.canvasWidth, picture.canvasHeight);
  const uint64_t rows = StrideBytes(picture.canvasWidth, StoredBitsPerPixel(picture.Format())) *
                        static_cast<uint64_t>(picture.canvasHeight);
  RequirePicture(static_cast<uint64_t>(picture.canvasWidth),
                 static_cast<uint64_t>(picture.canvasHeight), rows + BytesOfLibrary(picture), what);
  if (CurrentLimits().refuseImplausible && rows > detail::kAlwaysPlausible &&
      Area(picture.canvasWidth, picture.canvasHeight) / Area(picture.width, picture.height) >
          kLargestCanvasOverPicture) {
    throw FormatError(what + ": the canvas is far too large for its first picture");
  }
  if (picture.isLossless) return;
  detail::RequirePlausible({rows, MacroblocksOf(picture), picture.data.size(), kMacroblocksPerByte},
                           what);
}

struct DecoderEnd {
  void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};

struct Outcome {
  /// Number of decoded rows from the top.
  int rows = 0;
  bool isDamaged = false;
};

/// Gives the data to the decoder, in parts if there is a time limit, which is checked between them.
VP8StatusCode Feed(WebPIDecoder& decoder, Bytes data) {
  constexpr size_t kParts = 64, kLeastPart = 16 << 10;
  const size_t part =
      SecondsLeft() == kNoTimeLimit ? data.size() : std::max(kLeastPart, data.size() / kParts);
  VP8StatusCode status = VP8_STATUS_SUSPENDED;
  for (size_t there = 0; status == VP8_STATUS_SUSPENDED && there < data.size();) {
    RequireTime();
    there += std::min(part, data.size() - there);
    status = WebPIUpdate(&decoder, data.data(), there);
  }
  return status;
}

/// Decodes the available rows into the raster.
Outcome DecodeRows(const Picture& picture, Raster& raster) {
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) throw UnsupportedError("WebP: libwebp has another version");
  const bool hasAlpha = raster.Format() == pf32bit;
  const size_t pixelBytes = hasAlpha ? 4 : 3;
  WebPRGBABuffer& target = config.output.u.RGBA;
  config.output.colorspace = hasAlpha ? MODE_BGRA : MODE_BGR;
  config.output.is_external_memory = 1;
  target.rgba = raster.Row(picture.top) + static_cast<size_t>(picture.left) * pixelBytes;
  target.stride = static_cast<int>(raster.Stride());
  target.size = raster.Stride() * (static_cast<size_t>(picture.height) - 1) +
                static_cast<size_t>(picture.width) * pixelBytes;

  // Only the incremental decoder gives the rows of a truncated file.
  const std::unique_ptr<WebPIDecoder, DecoderEnd> decoder(WebPIDecode(nullptr, 0, &config));
  if (!decoder) throw LimitError("WebP: out of memory");
  const VP8StatusCode status = Feed(*decoder, picture.data);
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
    if (detail::ProfileFits(profile, detail::ProfileSpace::rgb)) {
      return std::make_shared<const std::vector<uint8_t>>(profile.begin(), profile.end());
    }
    report.warnings.emplace_back(
        "WebP: the color profile is invalid or of another kind and is ignored");
    return nullptr;
  }
  return nullptr;
}

/// Makes the rest of the canvas transparent.
void ClearCanvas(Raster& raster) {
  detail::ClearRows(raster, 0, raster.Height());
}

}  // namespace

Raster DecodeWebp(Bytes bytes, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  const Picture picture = FirstPicture(bytes);
  RequirePlausibleSize(picture);
  const MemoryShare kept(BytesOfLibrary(picture));
  Raster raster(picture.Format(), picture.canvasWidth, picture.canvasHeight);
  if (raster.Format() == pf32bit) raster.alphaFormat = afDefined;
  if (!picture.CoversCanvas()) ClearCanvas(raster);
  const Outcome outcome = DecodeRows(picture, raster);
  if (picture.CoversCanvas()) detail::FillMissingRows(raster, outcome.rows);
  raster.ClearPadding();
  raster.profile = ProfileOf(bytes, noticed);

  if (outcome.rows < picture.height) {
    noticed.AddDamage(fmt::format("WebP: the data {}, {} of {} rows are complete",
                                  outcome.isDamaged ? "are damaged" : "end early", outcome.rows,
                                  picture.height));
  } else if (detail::IsWebpCutOff(bytes)) {
    noticed.warnings.emplace_back("WebP: the file is cut off");
  }
  if (report) report->Append(noticed);
  return raster;
}

}  // namespace rasterkit
