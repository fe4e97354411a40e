// Any bytes as a Windows metafile that is written as an enhanced one: what is written is a sound
// file of the same size, whose records are walked to the last one and played without being refused.
// Around it what a metafile object does: either kind of bytes is saved under either mark.

#include <cstdlib>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>
#include <rasterkit/metafiles/wmf/wmf_to_emf.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace {

using namespace rasterkit;
using namespace rasterkit::detail;

constexpr uint64_t kPictureLimit = 256 * 1024;
/// Larger files only repeat what smaller ones show, and each record costs a drawing.
constexpr size_t kMostBytes = 16 * 1024;
/// What a drawing may cost, so that thousands are tried.
constexpr double kMostWork = 1e7;

void Require(bool condition) {
  if (!condition) std::abort();
}

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
  constexpr int side = 96;
  Raster raster(pf32bit, side, side);
  FillRaster(raster, {0, 0, side, side}, clWhite);
  PlayMetafile(written, raster, {0, 0, side, side});
}

void Rewrite(std::span<const uint8_t> bytes) {
  const MetafileFacts before = ReadMetafileFacts(bytes);
  if (before.kind == MetafileKind::emf) return;
  std::vector<uint8_t> written;
  try {
    written = EmfOfWmf(bytes, before);
  } catch (const LimitError&) {
    return;
  }
  RequireSoundEmf(written, before);
  PlayWritten(written);
}

/// What is saved under a mark is of the kind that the mark names.
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
