// Any bytes as a WMF file: facts, records, embedded bitmaps and playback must succeed or throw an
// Error of the library, and playback must not touch pixels outside its place.

#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

#include "fuzz/metafiles/metafile_checks.h"

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;
using namespace rasterkit::fuzz;

/// Tries every offset in the first bytes of a record as a bitmap header.
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  RequirePlayInside(bytes);
  try {
    RequireSize(bytes);
    DibReader reader(size);
    RequireWalkInside<WmfRecords>(bytes,
                                  [&](const WmfRecord& record) { ReadBitmaps(record, reader); });
  } catch (const FormatError&) {
  }
  return 0;
}
