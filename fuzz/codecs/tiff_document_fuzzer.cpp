// Edits of TIFF documents: pages are copied, dropped, reordered, renumbered and added, then read
// back. The last byte of the input states the target and how many bytes before it are edits.

#include <algorithm>

#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

using namespace rasterkit;

namespace {

constexpr uint64_t kPictureLimit = 1 << 20;
constexpr size_t kSpareBytes = 64 << 10;

enum class Edit { copy, copyAlone, copyWithMetadata, number, add };

struct Script {
  bool isBig = false, isBigEndian = false;
  std::span<const uint8_t> edits;
};

Script ScriptOf(std::span<const uint8_t> bytes) {
  const uint8_t last = bytes.back();
  const size_t count = std::min<size_t>(last % 16, bytes.size() - 1);
  return {(last & 0x40) != 0, (last & 0x80) != 0, bytes.last(count + 1).first(count)};
}

Pixels SmallPicture() {
  Raster raster(pf8bit, 5, 3);
  for (int y = 0; y < 3; y++) std::fill_n(raster.Row(y), raster.RowBytes(), uint8_t{7});
  raster.palette = GrayPalette(256);
  raster.ClearPadding();
  return raster;
}

/// The pages of the source that the written pages come from; 0 for a new page.
struct Result {
  std::vector<int> pages;
  std::vector<uint8_t> bytes;
  size_t copies = 0;
};

class Editor {
 public:
  Editor(std::span<const uint8_t> bytes, const Script& script)
      : bytes_(bytes),
        stream_(bytes),
        source_(stream_),
        writer_(target_, script.isBig, script.isBigEndian) {}

  Result Run(std::span<const uint8_t> edits) {
    Result result;
    for (const uint8_t edit : edits) {
      const int page = 1 + edit / 5 % source_.Pages();
      Do(static_cast<Edit>(edit % 5), page, result);
    }
    writer_.Finish();
    result.bytes = target_.TakeBytes();
    return result;
  }

 private:
  void Do(Edit edit, int page, Result& result) {
    TSpanStream other(bytes_);
    switch (edit) {
      case Edit::copy: {
        const uint64_t before = target_.Size();
        writer_.CopyPage(source_, page);
        Require(target_.Size() - before <= source_.PageBytes(page));
        break;
      }
      case Edit::copyAlone:
        if (!writer_.CanCopyPage(other, page)) return;
        writer_.CopyPage(other, page);
        Require(other.Position() == 0);
        break;
      case Edit::copyWithMetadata: {
        const PictureHeader header = ReadTiffHeader(*source_.PageStream(page));
        Require(header.pages == source_.Pages());
        PictureWriting writing;
        writing.form = header.form;
        writing.metadata = header.metadata;
        writing.positionTags = header.positionTags;
        writer_.CopyPage(source_, page, writing);
        break;
      }
      case Edit::number:
        writer_.NumberNextPage({static_cast<uint16_t>(page), 0});
        return;
      case Edit::add:
        writer_.AddPage(SmallPicture(), {});
        page = 0;
        break;
    }
    if (page != 0) result.copies++;
    result.pages.push_back(page);
  }

  const std::span<const uint8_t> bytes_;
  TSpanStream stream_;
  TiffDocumentReader source_;
  TMemoryStream target_;
  TiffDocumentWriter writer_;
};

/// The pixels, or nothing.
std::optional<Pixels> TryPixels(std::span<const uint8_t> bytes, int page) {
  try {
    TSpanStream stream(bytes);
    return DecodeTiffPixels(*TiffPageStream(stream, page));
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool HaveSameRows(const Pixels& a, const Pixels& b) {
  if (a.index() != b.index() || WidthOf(a) != WidthOf(b) || HeightOf(a) != HeightOf(b))
    return false;
  const auto* raster = std::get_if<Raster>(&a);
  for (int y = 0; y < HeightOf(a); y++) {
    const uint8_t* first = raster ? raster->Row(y) : std::get<Samples>(a).Row(y);
    const uint8_t* second = raster ? std::get<Raster>(b).Row(y) : std::get<Samples>(b).Row(y);
    const size_t count = raster ? raster->RowBytes() : std::get<Samples>(a).Stride();
    if (!std::equal(first, first + count, second)) return false;
  }
  return true;
}

void Check(std::span<const uint8_t> bytes, const Result& result) {
  Require(result.bytes.size() <= (result.copies + 1) * (16 * bytes.size() + kSpareBytes));
  TSpanStream stream(result.bytes);
  Require(CountTiffPages(stream) == static_cast<int>(result.pages.size()));
  for (size_t i = 0; i < result.pages.size(); i++) {
    const auto after = TryPixels(result.bytes, static_cast<int>(i) + 1);
    if (result.pages[i] == 0) {
      Require(after && WidthOf(*after) == 5 && HeightOf(*after) == 3);
      continue;
    }
    const auto before = TryPixels(bytes, result.pages[i]);
    if (!before || !after) continue;
    Require(HaveSameRows(*before, *after));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  const Script script = ScriptOf(bytes);
  Result result;
  try {
    result = Editor(bytes, script).Run(script.edits);
  } catch (const Error&) {
    return 0;
  }
  Check(bytes, result);
  return 0;
}
