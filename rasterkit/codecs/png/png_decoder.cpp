#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_reader.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;
using detail::PngReader;

/// Memory limit of one chunk other than picture data: an inflated color profile.
constexpr size_t kChunkBytes = 16 << 20;
constexpr size_t kSignatureBytes = 8;
constexpr double kMetersPerInch = 0.0254;

/// Ignored chunks: texts can inflate to any size, and gamma is not used. The list has the form of
/// libpng: names of four letters, each with a zero.
constexpr png_byte kIgnoredChunks[] =
    "tEXt\0zTXt\0iTXt\0tIME\0eXIf\0sPLT\0hIST\0pCAL\0sCAL\0oFFs\0bKGD\0sBIT\0gAMA\0cHRM\0sRGB";
constexpr int kIgnoredChunkCount = sizeof kIgnoredChunks / 5;

uint32_t BigEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

/// True if a chunk reaches beyond the file or the end chunk is missing.
bool IsTruncated(Bytes file) {
  size_t position = kSignatureBytes;
  while (position + 12 <= file.size()) {
    const size_t length = BigEndian32(file.data() + position);
    if (length > file.size() - position - 12) return true;
    if (std::equal(file.begin() + position + 4, file.begin() + position + 8, "IEND")) return false;
    position += length + 12;
  }
  return true;
}

struct Header {
  uint32_t width = 0, height = 0;
  int bitDepth = 0, colorType = 0;
  bool interlaced = false;

  bool IsPalette() const { return colorType == PNG_COLOR_TYPE_PALETTE; }
  bool IsGray() const { return colorType == PNG_COLOR_TYPE_GRAY; }
  bool HasAlpha() const { return (colorType & PNG_COLOR_MASK_ALPHA) != 0; }
  /// Bits per pixel in the file.
  unsigned SampleBits() const {
    const bool isColor = !IsPalette() && (colorType & PNG_COLOR_MASK_COLOR) != 0;
    return static_cast<unsigned>(bitDepth * ((isColor ? 3 : 1) + (HasAlpha() ? 1 : 0)));
  }
};

Header ReadHeader(PngReader& reader, Bytes file) {
  png_structp png = reader.Png();
  reader.Run([&] {
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_malloc_max(png, kChunkBytes);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kIgnoredChunks, kIgnoredChunkCount);
    // Byte by byte if the end is missing, so that no row is lost in an incomplete block.
    png_set_compression_buffer_size(png, IsTruncated(file) ? 1 : 1 << 16);
    png_read_info(png, reader.Info());
  });
  Header header;
  header.width = png_get_image_width(png, reader.Info());
  header.height = png_get_image_height(png, reader.Info());
  header.bitDepth = png_get_bit_depth(png, reader.Info());
  header.colorType = png_get_color_type(png, reader.Info());
  header.interlaced = png_get_interlace_type(png, reader.Info()) != PNG_INTERLACE_NONE;
  return header;
}

TPixelFormat FormatOf(const Header& header) {
  if (header.HasAlpha()) return pf32bit;
  if (header.colorType == PNG_COLOR_TYPE_RGB) return pf24bit;
  return header.bitDepth == 1 ? pf1bit : header.bitDepth <= 4 ? pf4bit : pf8bit;
}

HPALETTE FilePalette(const PngReader& reader) {
  png_colorp colors = nullptr;
  int count = 0;
  png_get_PLTE(reader.Png(), reader.Info(), &colors, &count);
  std::vector<tagPALETTEENTRY> entries;
  entries.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; i++) {
    entries.push_back({colors[i].red, colors[i].green, colors[i].blue, 0});
  }
  return HPALETTE(entries);
}

HPALETTE PaletteOf(const PngReader& reader, const Header& header) {
  if (header.IsPalette()) return FilePalette(reader);
  if (header.IsGray()) return GrayPalette(1 << std::min(header.bitDepth, 8));
  return {};
}

/// Scales a sample to 8 bits, rounded.
uint8_t ScaleSample(unsigned value, int bitDepth) {
  const unsigned full = (1u << bitDepth) - 1;
  return static_cast<uint8_t>((std::min(value, full) * 255u + full / 2) / full);
}

/// The transparent color of the file. Partly transparent palette entries become opaque, with a
/// warning, because a raster has one key color only.
std::optional<TColor> TransparentColorOf(const PngReader& reader, const Header& header,
                                         const HPALETTE& palette, CodecReport& report) {
  if (header.HasAlpha()) return clWhite;
  png_bytep alphas = nullptr;
  int count = 0;
  png_color_16p color = nullptr;
  if (!png_get_tRNS(reader.Png(), reader.Info(), &alphas, &count, &color)) return std::nullopt;
  if (!header.IsPalette()) {
    const auto scaled = [&](unsigned value) { return ScaleSample(value, header.bitDepth); };
    if (header.IsGray()) return RGB(scaled(color->gray), scaled(color->gray), scaled(color->gray));
    return RGB(scaled(color->red), scaled(color->green), scaled(color->blue));
  }
  std::optional<TColor> result;
  bool lost = false;
  for (int i = 0; i < count; i++) {
    const TColor entry = EntryColor(palette.Entry(i));
    if (alphas[i] == 0 && !result) result = entry;
    if (alphas[i] != 255 && !(alphas[i] == 0 && entry == result)) lost = true;
  }
  if (lost) {
    report.warnings.emplace_back(
        result ? "PNG: one palette color stays transparent, the others become opaque"
               : "PNG: the partly transparent palette colors become opaque");
  }
  return result;
}

Resolution ResolutionOf(const PngReader& reader) {
  png_uint_32 x = 0, y = 0;
  int unit = PNG_RESOLUTION_UNKNOWN;
  if (!png_get_pHYs(reader.Png(), reader.Info(), &x, &y, &unit) || unit != PNG_RESOLUTION_METER) {
    return {};
  }
  return {x * kMetersPerInch, y * kMetersPerInch};
}

ColorProfile ProfileOf(const PngReader& reader, const Header& header) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep bytes = nullptr;
  png_uint_32 size = 0;
  if (!png_get_iCCP(reader.Png(), reader.Info(), &name, &compression, &bytes, &size)) {
    return nullptr;
  }
  // Gray with alpha becomes color pixels, which a gray profile does not describe.
  const auto space = header.IsGray() ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  if (!detail::ProfileFits(Bytes(bytes, size), space)) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(bytes, bytes + size);
}

/// Makes libpng deliver rows in the layout of the raster, except for 2-bit samples: see
/// ExpandTwoBits.
void RequestRows(png_structp png, const Header& header) {
  // Exact: libpng's division by 257 rounds to nearest.
  if (header.bitDepth == 16) png_set_scale_16(png);
  if (header.colorType == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
  if (header.HasAlpha() || header.colorType == PNG_COLOR_TYPE_RGB) png_set_bgr(png);
}

/// Expands a row of 2-bit samples to 4-bit ones in place, from its end so that nothing is
/// overwritten unread. Samples beyond the last pixel go to the padding.
void ExpandTwoBits(uint8_t* row, int width) {
  for (int i = (width - 1) / 4; i >= 0; i--) {
    const int samples = row[i];
    row[2 * i + 1] = static_cast<uint8_t>((samples << 2 & 0x30) | (samples & 0x03));
    row[2 * i] = static_cast<uint8_t>((samples >> 2 & 0x30) | (samples >> 4 & 0x03));
  }
}

/// Reads rows from the top to the end of the data; returns the first missing row. The passes of an
/// interlaced picture paint whole blocks, so that a truncated file gives a coarse picture without
/// holes.
int DecodeRows(PngReader& reader, const Header& header, Raster& raster) {
  png_structp png = reader.Png();
  struct {
    int passes = 1, pass = 0, y = 0;
  } at;
  const bool whole = reader.Try([&] {
    at.passes = png_set_interlace_handling(png);
    png_start_read_image(png);
    for (at.pass = 0; at.pass < at.passes; at.pass++) {
      for (at.y = 0; at.y < raster.Height(); at.y++) {
        RequireTime();
        png_bytep row = raster.Row(at.y);
        png_read_row(png, header.interlaced ? nullptr : row, header.interlaced ? row : nullptr);
      }
    }
  });
  if (whole) return raster.Height();
  const bool endedEarly = reader.RanDry() || reader.Errors().MessageIs("Not enough image data");
  if (!endedEarly || (at.pass == 0 && at.y == 0)) reader.Errors().Throw();
  return at.pass == 0 ? at.y : raster.Height();
}

/// Checks the rest of the file: a wrong checksum is an error, an early end is not.
void ReadEnd(PngReader& reader) {
  if (!reader.Try([&] { png_read_end(reader.Png(), nullptr); }) && !reader.RanDry()) {
    reader.Errors().Throw();
  }
}

/// Refuses pictures that are too large before anything of their size is allocated.
void RequireSize(const Header& header, TPixelFormat format, size_t fileBytes) {
  const std::string what =
      fmt::format("PNG picture of {} x {} pixels", header.width, header.height);
  const uint64_t need = StrideBytes(header.width, StoredBitsPerPixel(format)) * header.height;
  RequirePicture(header.width, header.height, need, what);
  const uint64_t rowBits = uint64_t{header.width} * header.SampleBits();
  const uint64_t stored = rowBits * header.height / 8;
  detail::RequirePlausible({need, stored, fileBytes, detail::kDeflateRatio * detail::kCutSlack},
                           what);
}

}  // namespace

Raster DecodePng(Bytes bytes, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  PngReader reader(bytes);
  const Header header = ReadHeader(reader, bytes);
  const TPixelFormat format = FormatOf(header);
  RequireSize(header, format, bytes.size());

  Raster raster(format, static_cast<int>(header.width), static_cast<int>(header.height));
  raster.palette = PaletteOf(reader, header);
  raster.resolution = ResolutionOf(reader);
  raster.profile = ProfileOf(reader, header);
  raster.transparentColor = TransparentColorOf(reader, header, raster.palette, noticed);
  if (header.HasAlpha()) raster.alphaFormat = afDefined;

  reader.Run([&] { RequestRows(reader.Png(), header); });
  const int missing = DecodeRows(reader, header, raster);
  for (int y = 0; header.bitDepth == 2 && y < missing; y++) {
    ExpandTwoBits(raster.Row(y), raster.Width());
  }
  if (missing == raster.Height() && !reader.RanDry()) ReadEnd(reader);
  detail::FillMissingRows(raster, missing);
  raster.ClearPadding();

  if (missing < raster.Height()) {
    noticed.warnings.push_back(fmt::format("PNG: the data end early, {} of {} rows are complete",
                                           missing, raster.Height()));
  } else if (reader.RanDry()) {
    noticed.warnings.emplace_back("PNG: the file is cut off");
  }
  reader.Errors().CopyTo(noticed);
  if (report) {
    std::move(noticed.warnings.begin(), noticed.warnings.end(),
              std::back_inserter(report->warnings));
  }
  return raster;
}

}  // namespace rasterkit
