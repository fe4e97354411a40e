#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/runtime/memory/memory_budget.h>

/// Checks that the fuzz targets of metafiles share.
namespace rasterkit::fuzz {

inline constexpr uint64_t kPictureLimit = 256 * 1024;
/// Work budget of one drawing: many times the whole picture, but small enough to try thousands.
inline constexpr double kMostWork = 1e7;

inline void Require(bool condition) {
  if (!condition) std::abort();
}

/// Plays the bytes onto a raster. Pixels outside the place must keep their color.
inline void RequirePlayInside(std::span<const uint8_t> bytes) {
  constexpr int kWidth = 176, kHeight = 144;
  constexpr PixelRect kPlace{8, 4, 168, 132};
  constexpr uint32_t kGround = 0xFF123456;
  const auto isGround = [](const uint32_t* first, const uint32_t* last) {
    return std::all_of(first, last, [](uint32_t pixel) { return (pixel | 0xFF000000) == kGround; });
  };
  Raster raster(pf32bit, kWidth, kHeight);
  FillRaster(raster, {0, 0, kWidth, kHeight}, 0x563412);
  const detail::DrawingWorkScope work(kMostWork);
  try {
    PlayMetafile(bytes, raster, kPlace);
  } catch (const Error&) {
  }
  for (int y = 0; y < kHeight; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(raster.Row(y));
    const bool isOutside = y < kPlace.top || y >= kPlace.bottom;
    Require(isGround(row, row + (isOutside ? kWidth : kPlace.left)));
    Require(isGround(row + kPlace.right, row + kWidth));
  }
}

/// Reads the facts; the picture must have a size. Throws FormatError if the data is no metafile.
inline MetafileFacts RequireSize(std::span<const uint8_t> bytes) {
  const MetafileFacts facts = ReadMetafileFacts(bytes);
  Require(facts.width > 0 && facts.height > 0 && facts.widthMm100 > 0 && facts.heightMm100 > 0);
  return facts;
}

/// Walks over all records, which must lie inside the bytes; `look` gets each of them.
template <typename Records, typename Look>
void RequireWalkInside(std::span<const uint8_t> bytes, const Look& look) {
  Records records(bytes);
  size_t walked = 0;
  while (const auto record = records.Next()) {
    walked += record->bytes.size();
    look(*record);
  }
  Require(walked <= bytes.size());
}

}  // namespace rasterkit::fuzz
