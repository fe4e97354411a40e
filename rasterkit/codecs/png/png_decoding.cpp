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
constexpr double kMetersPerInch = 0.0254;

/// Ignored chunks: texts can inflate to any size, and gamma is not used. The list has the form of
/// libpng: names of four letters, each with a zero.
constexpr png_byte kIgnoredChunks[] =
    "tEXt\0zTXt\0iTXt\0tIME\0eXIf\0sPLT\0hIST\0pCAL\0sCAL\0oFFs\0bKGD\0sBIT\0gAMA\0cHRM\0sRGB";
constexpr int kIgnoredChunkCount = sizeof kIgnoredChunks / 5;

}  // namespace

PngFacts ReadPngFacts(PngReader& reader, bool isTruncated) {
  png_structp png = reader.Png();
  reader.Run([&] {
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_malloc_max(png, kChunkBytes);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kIgnoredChunks, kIgnoredChunkCount);
    // Byte by byte if the end is missing, so that no row is lost in an incomplete block.
    png_set_compression_buffer_size(png, isTruncated ? 1 : 1 << 16);
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

void RequirePngSize(const PngFacts& facts, uint64_t need, uint64_t held, uint64_t fileBytes) {
  const std::string what = fmt::format("PNG picture of {} x {} pixels", facts.width, facts.height);
  RequirePicture(facts.width, facts.height, held, what);
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

bool EndsEarly(const PngReader& reader) {
  return reader.RanDry() || reader.Errors().MessageIs("Not enough image data");
}

int ReadPngPasses(PngReader& reader, const PngFacts& facts,
                  const std::function<uint8_t*(int y)>& rowAt) {
  const auto height = static_cast<int>(facts.height);
  png_structp png = reader.Png();
  struct {
    int pass = 0, y = 0;
  } at;
  const bool isWhole = reader.Try([&] {
    const int passes = png_set_interlace_handling(png);
    png_start_read_image(png);
    for (at.pass = 0; at.pass < passes; at.pass++) {
      for (at.y = 0; at.y < height; at.y++) {
        RequireTime();
        png_read_row(png, nullptr, rowAt(at.y));
      }
    }
  });
  if (isWhole) return height;
  if (!EndsEarly(reader) || (at.pass == 0 && at.y == 0)) reader.Errors().Throw();
  reader.NoteEndOfRows();
  return at.pass == 0 ? at.y : height;
}

void CheckPngEnd(PngReader& reader) {
  if (!reader.Try([&] { png_read_end(reader.Png(), nullptr); }) && !reader.RanDry()) {
    reader.Errors().Throw();
  }
}

void NotePngDamage(const PngReader& reader, const PngFacts& facts, int rows, CodecReport& report) {
  const auto height = static_cast<int>(facts.height);
  if (rows < height) {
    report.AddDamage(
        fmt::format("PNG: the data end early, {} of {} rows are complete", rows, height));
  } else if (reader.RowsEnded()) {
    report.AddDamage("PNG: the data end early, later passes are missing");
  } else if (reader.RanDry()) {
    report.warnings.emplace_back("PNG: the file is cut off");
  }
}

}  // namespace rasterkit::detail
