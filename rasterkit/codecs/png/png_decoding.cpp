#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

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

}  // namespace

PngFacts ReadPngFacts(PngReader& reader, Bytes file) {
  png_structp png = reader.Png();
  reader.Run([&] {
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_malloc_max(png, kChunkBytes);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kIgnoredChunks, kIgnoredChunkCount);
    // Byte by byte if the end is missing, so that no row is lost in an incomplete block.
    png_set_compression_buffer_size(png, IsTruncated(file) ? 1 : 1 << 16);
    png_read_info(png, reader.Info());
  });
  PngFacts facts;
  facts.width = png_get_image_width(png, reader.Info());
  facts.height = png_get_image_height(png, reader.Info());
  facts.bitDepth = png_get_bit_depth(png, reader.Info());
  facts.colorType = png_get_color_type(png, reader.Info());
  facts.interlaced = png_get_interlace_type(png, reader.Info()) != PNG_INTERLACE_NONE;
  return facts;
}

void RequirePngSize(const PngFacts& facts, uint64_t need, size_t fileBytes) {
  const std::string what = fmt::format("PNG picture of {} x {} pixels", facts.width, facts.height);
  RequirePicture(facts.width, facts.height, need, what);
  const uint64_t rowBits = uint64_t{facts.width} * facts.SampleBits();
  const uint64_t stored = rowBits * facts.height / 8;
  RequirePlausible({need, stored, fileBytes, kDeflateRatio * kCutSlack}, what);
}

Resolution PngResolution(const PngReader& reader) {
  png_uint_32 x = 0, y = 0;
  int unit = PNG_RESOLUTION_UNKNOWN;
  if (!png_get_pHYs(reader.Png(), reader.Info(), &x, &y, &unit) || unit != PNG_RESOLUTION_METER) {
    return {};
  }
  return {x * kMetersPerInch, y * kMetersPerInch};
}

ColorProfile PngProfile(const PngReader& reader, ProfileSpace space) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep bytes = nullptr;
  png_uint_32 size = 0;
  if (!png_get_iCCP(reader.Png(), reader.Info(), &name, &compression, &bytes, &size)) {
    return nullptr;
  }
  if (!ProfileFits(Bytes(bytes, size), space)) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(bytes, bytes + size);
}

int DecodePngRows(PngReader& reader, const PngFacts& facts,
                  const std::function<uint8_t*(int y)>& rowAt) {
  const auto height = static_cast<int>(facts.height);
  png_structp png = reader.Png();
  struct {
    int passes = 1, pass = 0, y = 0;
  } at;
  const bool whole = reader.Try([&] {
    at.passes = png_set_interlace_handling(png);
    png_start_read_image(png);
    for (at.pass = 0; at.pass < at.passes; at.pass++) {
      for (at.y = 0; at.y < height; at.y++) {
        RequireTime();
        png_bytep row = rowAt(at.y);
        png_read_row(png, facts.interlaced ? nullptr : row, facts.interlaced ? row : nullptr);
      }
    }
  });
  if (whole) return height;
  const bool endedEarly = reader.RanDry() || reader.Errors().MessageIs("Not enough image data");
  if (!endedEarly || (at.pass == 0 && at.y == 0)) reader.Errors().Throw();
  reader.NoteEndOfRows();
  return at.pass == 0 ? at.y : height;
}

void CheckPngEnd(PngReader& reader) {
  if (!reader.Try([&] { png_read_end(reader.Png(), nullptr); }) && !reader.RanDry()) {
    reader.Errors().Throw();
  }
}

void NotePngDamage(const PngReader& reader, const PngFacts& facts, int missing,
                   CodecReport& report) {
  const auto height = static_cast<int>(facts.height);
  if (missing < height) {
    report.AddDamage(
        fmt::format("PNG: the data end early, {} of {} rows are complete", missing, height));
  } else if (reader.RowsEnded()) {
    report.AddDamage("PNG: the data end early, later passes are missing");
  } else if (reader.RanDry()) {
    report.warnings.emplace_back("PNG: the file is cut off");
  }
  reader.Errors().CopyTo(report);
}

}  // namespace rasterkit::detail
