// Any bytes as a WMF file that is converted to EMF: the result must be a valid file of the same
// size whose records can all be walked and played. Also loads and saves any bytes as TMetafile, in
// both formats.

#include <rasterkit/graphics/metafile.h>
#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>
#include <rasterkit/metafiles/wmf/wmf_to_emf.h>
#include <rasterkit/runtime/files/stream.h>

#include "fuzz/metafiles/metafile_checks.h"

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;
using namespace rasterkit::fuzz;

/// Larger files only repeat what smaller ones cover, and each record costs one drawing.
constexpr size_t kMostBytes = 16 * 1024;

void RequireSoundEmf(std::span<const uint8_t> written, const MetafileFacts& before) {
  EmfRecords records(written);
  uint32_t count = 0;
  size_t walked = 0;
  uint32_t stated = 0;
  while (const auto record = records.Next()) {
    if (count == 0) stated = ReadEmfHeader(*record).records;
    ++count;
    walked += record->bytes.size();
  }
  Require(records.Damage().empty() && count == stated && walked == written.size());
  const MetafileFacts facts = ReadMetafileFacts(written);
  Require(facts.kind == MetafileKind::emf && !facts.hasEmfPlus);
  Require(facts.widthMm100 == before.widthMm100 && facts.heightMm100 == before.heightMm100);
}

void PlayWritten(std::span<const uint8_t> written) {
  constexpr int kSide = 96;
  Raster raster(pf32bit, kSide, kSide);
  FillRaster(raster, {0, 0, kSide, kSide}, clWhite);
  PlayMetafile(written, raster, {0, 0, kSide, kSide});
}

void Rewrite(std::span<const uint8_t> bytes) {
  const MetafileFacts before = ReadMetafileFacts(bytes);
  if (before.kind == MetafileKind::emf) return;
  std::vector<uint8_t> written;
  try {
    written = ConvertWmfToEmf(bytes, before);
  } catch (const LimitError&) {
    return;
  }
  RequireSoundEmf(written, before);
  PlayWritten(written);
}

/// The saved file must have the format that the Enhanced flag states.
void SaveAs(const TMetafile& metafile, bool isEnhanced) {
  TMetafile copy;
  copy.Assign(&metafile);
  copy.SetEnhanced(isEnhanced);
  TMemoryStream stream;
  copy.SaveToStream(stream);
  stream.SetPosition(0);
  TMetafile again;
  again.LoadFromStream(stream);
  Require(again.Enhanced() == isEnhanced);
}

void LoadAndSave(std::span<const uint8_t> bytes) {
  TMetafile metafile;
  TSpanStream stream(bytes);
  metafile.LoadFromStream(stream);
  for (const bool isEnhanced : {false, true}) {
    try {
      SaveAs(metafile, isEnhanced);
    } catch (const LimitError&) {
    } catch (const UnsupportedError&) {
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kMostBytes) return 0;
  SetPictureMemoryLimit(kPictureLimit);
  const DrawingWorkScope work(kMostWork);
  const std::span<const uint8_t> bytes(data, size);
  try {
    Rewrite(bytes);
    LoadAndSave(bytes);
  } catch (const FormatError&) {
  }
  return 0;
}
