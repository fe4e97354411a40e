#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/codecs/jp2/jp2_pixels.h>
#include <rasterkit/codecs/jp2/jp2_plan.h>
#include <rasterkit/codecs/jp2/jp2_tiles.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {
namespace {

/// A tile takes its two markers at least. A few tiles may be missing from a small file.
constexpr uint64_t kTileHeaderBytes = 14, kFewTiles = 1024;

uint64_t RowBytesOf(const detail::Jp2Plan& plan) {
  const auto width = static_cast<uint64_t>(plan.width), height = static_cast<uint64_t>(plan.height);
  if (plan.format) return StrideBytes(plan.width, StoredBitsPerPixel(*plan.format)) * height;
  const uint64_t pixel = BytesOf(plan.layout.type) * static_cast<uint64_t>(plan.layout.bands);
  return detail::SaturatedProduct(detail::SaturatedProduct(width, pixel), height);
}

/// Refuses a picture before that much memory is allocated. Returns what the decoder takes.
uint64_t RequireMemory(const detail::Jp2File& file, const detail::Jp2Plan& plan) {
  const std::string what =
      fmt::format("JPEG 2000 picture of {} x {} pixels", plan.width, plan.height);
  const detail::Jp2Codestream& codestream = file.codestream;
  const uint64_t decoder = detail::TileReaderBytes(codestream), rows = RowBytesOf(plan);
  const uint64_t all = rows > kNoLimit - decoder ? kNoLimit : rows + decoder;
  RequirePicture(static_cast<uint64_t>(plan.width), static_cast<uint64_t>(plan.height), all, what);
  const uint64_t tiles = codestream.Tiles();
  if (tiles > kFewTiles && tiles > codestream.bytes / kTileHeaderBytes * detail::kCutSlack) {
    throw FormatError(fmt::format("{}: the file is far too small to hold {} tiles", what, tiles));
  }
  return decoder;
}

void ReportMissing(uint64_t there, uint64_t tiles, CodecReport& report) {
  if (there == tiles) return;
  report.AddDamage(fmt::format("JPEG 2000: {} of {} tiles are complete", there, tiles));
}

}  // namespace

Pixels DecodeJp2Pixels(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  const detail::Jp2File file = detail::ReadJp2File(stream);
  const detail::Jp2Plan plan = detail::PlanOf(file);
  const MemoryShare kept(RequireMemory(file, plan));
  noticed.warnings = file.warnings;
  noticed.warnings.insert(noticed.warnings.end(), plan.warnings.begin(), plan.warnings.end());
  detail::Jp2TileReader reader(stream, file.codestream, options.threads, noticed);
  detail::Jp2Pixels pixels(file, plan);
  const uint64_t tiles = file.codestream.Tiles();
  std::vector<bool> isThere(static_cast<size_t>(tiles));
  uint64_t there = 0;
  for (detail::Jp2Tile tile; reader.Next(tile);) {
    pixels.Put(tile);
    if (!isThere[static_cast<size_t>(tile.index)]) ++there;
    isThere[static_cast<size_t>(tile.index)] = true;
  }
  if (there == 0) {
    throw FormatError(noticed.damage.empty() ? "JPEG 2000: the file has no pixels"
                                             : noticed.damage.front());
  }
  for (uint64_t i = 0; i < tiles; ++i) {
    if (!isThere[static_cast<size_t>(i)]) pixels.PutMissing(TileArea(file.codestream, i));
  }
  ReportMissing(there, tiles, noticed);
  if (report != nullptr) report->Append(noticed);
  return pixels.Take();
}

}  // namespace rasterkit
