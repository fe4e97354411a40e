// Any bytes as a Windows metafile: facts, records, the bitmaps inside them and a
// drawing that touches nothing outside its place, or one of our errors.

#include <algorithm>
#include <cstdlib>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;

constexpr uint64_t kPictureLimit = 256 * 1024;

void Require(bool condition) {
  if (!condition) std::abort();
}

/// Every place of a record's beginning is tried as the head of a bitmap.
void ReadBitmaps(const WmfRecord& record, DibReader& reader) {
  for (size_t offset = kWmfRecordHead; offset + 12 <= record.bytes.size() && offset < 40;
       offset += 2) {
    try {
      const DibColors colors = DibColorsOf(static_cast<uint32_t>(offset / 2 % 3));
      const DibParts parts = SplitPackedDib(record.bytes.subspan(offset), colors);
      const Dib dib = reader.Read(parts, {colors, {}, false, {}});
      Require(dib.raster.Width() > 0 && dib.raster.Height() > 0);
    } catch (const Error&) {
    }
  }
}

void Walk(std::span<const uint8_t> bytes) {
  WmfRecords records(bytes);
  DibReader reader(bytes.size());
  size_t walked = 0;
  while (const auto record = records.Next()) {
    walked += record->bytes.size();
    ReadBitmaps(*record, reader);
  }
  Require(walked <= bytes.size());
}

constexpr int kWidth = 176, kHeight = 144;
constexpr PixelRect kPlace{8, 4, 168, 132};
constexpr uint32_t kGround = 0xFF123456;
/// What a drawing may cost, so that thousands are tried: many times the whole picture.
constexpr double kMostWork = 1e7;

bool IsGround(const uint32_t* first, const uint32_t* last) {
  return std::all_of(first, last, [](uint32_t pixel) { return (pixel | 0xFF000000) == kGround; });
}

/// Draws inside a frame of pixels that must stay as they are.
void Draw(std::span<const uint8_t> bytes) {
  Raster raster(pf32bit, kWidth, kHeight);
  FillRaster(raster, {0, 0, kWidth, kHeight}, 0x563412);
  const DrawingWorkScope work(kMostWork);
  try {
    PlayMetafile(bytes, raster, kPlace);
  } catch (const Error&) {
  }
  for (int y = 0; y < kHeight; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(raster.Row(y));
    const bool isOutside = y < kPlace.top || y >= kPlace.bottom;
    Require(IsGround(row, row + (isOutside ? kWidth : kPlace.left)));
    Require(IsGround(row + kPlace.right, row + kWidth));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  Draw(bytes);
  try {
    const MetafileFacts facts = ReadMetafileFacts(bytes);
    Require(facts.width > 0 && facts.height > 0 && facts.widthMm100 > 0 && facts.heightMm100 > 0);
    Walk(bytes);
  } catch (const FormatError&) {
  }
  return 0;
}
