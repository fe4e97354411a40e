// Any bytes as an EMF file: facts, records, embedded bitmaps and playback must succeed or throw an
// Error of the library, and playback must not touch pixels outside its place.

#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/records/dib_reader.h>

#include "fuzz/metafiles/metafile_checks.h"

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;
using namespace rasterkit::fuzz;

/// Tries every offset in the first bytes of a record as a bitmap header: the offsets in a record
/// may have any value.
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
  RequirePlayInside(bytes);
  try {
    const MetafileFacts facts = RequireSize(bytes);
    Require(!facts.isEmfPlusOnly || facts.hasEmfPlus);
  } catch (const FormatError&) {
  }
  DibReader reader(size);
  RequireWalkInside<EmfRecords>(bytes,
                                [&](const EmfRecord& record) { ReadBitmaps(record, reader); });
  return 0;
}
