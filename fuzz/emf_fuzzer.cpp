// Any bytes as an enhanced metafile: facts, records and the bitmaps inside them, or one of our
// errors.

#include <cstdlib>

#include <rasterkit/host/metafiles/dib_reader.h>
#include <rasterkit/host/metafiles/emf_records.h>
#include <rasterkit/host/metafiles/metafile_facts.h>
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
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
