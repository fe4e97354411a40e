// Any bytes as a Windows metafile: facts, records and the bitmaps inside them, or one of our
// errors.

#include <cstdlib>

#include <rasterkit/host/metafiles/dib_reader.h>
#include <rasterkit/host/metafiles/metafile_facts.h>
#include <rasterkit/host/metafiles/wmf_records.h>
#include <rasterkit/host/runtime/memory_budget.h>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  try {
    const MetafileFacts facts = ReadMetafileFacts(bytes);
    Require(facts.width > 0 && facts.height > 0 && facts.widthMm100 > 0 && facts.heightMm100 > 0);
    Walk(bytes);
  } catch (const FormatError&) {
  }
  return 0;
}
