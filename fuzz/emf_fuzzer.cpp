// Any bytes as an enhanced metafile: facts, records, the bitmaps inside them and a
// drawing that touches nothing outside its place, or one of our errors.

#include <cstdlib>

#include <rasterkit/host/metafiles/dib_reader.h>
#include <rasterkit/host/metafiles/emf_records.h>
#include <rasterkit/host/metafiles/metafile_facts.h>
#include <rasterkit/host/metafiles/play_metafile.h>
#include <rasterkit/host/runtime/memory_budget.h>

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;

constexpr uint64_t kPictureLimit = 256 * 1024;

void Require(bool condition) {
  if (!condition) std::abort();
}

/// Every place of the first records is tried as the head of a bitmap: what a record's offsets say
/// may be anything.
void ReadBitmaps(const EmfRecord& record, DibReader& reader) {
  for (size_t offset = kEmfRecordHead; offset + 12 <= record.bytes.size() && offset < 128;
       offset += 4) {
    try {
      const auto bytes = record.bytes.subspan(offset);
      const DibColors colors = DibColorsOf(static_cast<uint32_t>(offset / 4 % 3));
      DibRequest request{colors, {}, offset % 8 == 0, {}};
      const Dib dib = reader.Read(SplitPackedDib(bytes, colors), request);
      Require(dib.raster.Width() > 0 && dib.raster.Height() > 0);
    } catch (const Error&) {
    }
  }
}

constexpr int kSide = 48;
constexpr PixelRect kPlace{8, 4, 40, 44};
/// Records that are played at most: a few bytes each may fill the whole picture.
constexpr int kMostQuestions = 40;

/// Draws inside a frame of pixels that must stay as they are.
void Draw(std::span<const uint8_t> bytes) {
  Raster raster(pf32bit, kSide, kSide);
  FillRaster(raster, {0, 0, kSide, kSide}, 0x123456);
  int questions = 0;
  try {
    PlayMetafile(bytes, raster, kPlace, [&] { return ++questions < kMostQuestions; });
  } catch (const Error&) {
  }
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const bool isInside =
          x >= kPlace.left && x < kPlace.right && y >= kPlace.top && y < kPlace.bottom;
      Require(isInside || raster.PixelColor(x, y) == 0x123456);
    }
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
    Require(!facts.isEmfPlusOnly || facts.hasEmfPlus);
  } catch (const FormatError&) {
  }
  EmfRecords records(bytes);
  DibReader reader(size);
  size_t walked = 0;
  while (const auto record = records.Next()) {
    walked += record->bytes.size();
    ReadBitmaps(*record, reader);
  }
  Require(walked <= size);
  return 0;
}
