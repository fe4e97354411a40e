// Headers and copies of TIFF pages: whatever the bytes are, an error of the house or a header that
// holds, and a copy that is not much larger than its source and reads the same. Rows that are read
// in bands are those of the whole page, with the same warnings.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

using namespace rasterkit;

namespace {

constexpr uint64_t kPictureLimit = 4 << 20;

std::vector<uint8_t> Copy(std::span<const uint8_t> bytes, const PictureHeader& header) {
  PictureWriting writing;
  writing.form = header.form;
  writing.metadata = header.metadata;
  writing.positionTags = header.positionTags;
  TSpanStream source(bytes);
  TMemoryStream target;
  try {
    CopyTiff(source, writing, target);
  } catch (const Error&) {
    return {};
  }
  return target.TakeBytes();
}

void CheckCopy(std::span<const uint8_t> bytes, const PictureHeader& header) {
  const std::vector<uint8_t> copy = Copy(bytes, header);
  if (copy.empty()) return;
  Require(copy.size() <= 16 * bytes.size() + (1 << 16));
  TSpanStream stream(copy);
  const PictureHeader again = ReadTiffHeader(stream);
  Require(again.width == header.width && again.height == header.height);
  Require(again.form == header.form);
  Require(again.layout.bands == header.layout.bands && again.layout.type == header.layout.type);
}

/// What reading gave: pixels and report, or the text of an error.
struct Reading {
  std::optional<Pixels> pixels;
  CodecReport report;
  std::string error;
  bool isTooLarge = false;
};

Reading ReadWhole(std::span<const uint8_t> bytes) {
  Reading reading;
  TSpanStream stream(bytes);
  try {
    reading.pixels = DecodeTiffPixels(stream, {}, &reading.report);
  } catch (const LimitError&) {
    reading.isTooLarge = true;
  } catch (const Error& error) {
    reading.error = error.what();
  }
  return reading;
}

const uint8_t* RowOf(const Pixels& pixels, int y) {
  return std::visit([y](const auto& rows) { return rows.Row(y); }, pixels);
}

size_t RowBytesOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

/// Reads the page in bands of `rows` and compares each with the rows of the whole.
void CheckBands(std::span<const uint8_t> bytes, const Reading& whole, int rows) {
  TSpanStream stream(bytes);
  CodecReport report;
  try {
    const auto reader = OpenTiffRows(stream);
    if (!reader) return;
    for (int y = 0; y < reader->Height(); y += rows) {
      const int count = std::min(rows, reader->Height() - y);
      Pixels band = NewPixels(reader->Like(), reader->Width(), count);
      reader->Read(0, y, band);
      // A page in which nothing is found fails at its end.
      if (!whole.pixels) continue;
      Require(RowBytesOf(band) == RowBytesOf(*whole.pixels));
      for (int i = 0; i < count; i++) {
        Require(std::memcmp(RowOf(band, i), RowOf(*whole.pixels, y + i), RowBytesOf(band)) == 0);
      }
    }
    reader->Finish(report);
  } catch (const Error& error) {
    Require(error.what() == whole.error);
    return;
  }
  Require(whole.pixels.has_value());
  Require(report.warnings == whole.report.warnings && report.damage == whole.report.damage);
}

void Decode(std::span<const uint8_t> bytes, const PictureHeader& header) {
  const Reading whole = ReadWhole(bytes);
  if (whole.pixels) {
    Require(WidthOf(*whole.pixels) == header.width && HeightOf(*whole.pixels) == header.height);
  }
  if (whole.isTooLarge) return;
  CheckBands(bytes, whole, 1 + bytes.back() % 64);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> bytes(data, size);
  TSpanStream stream(bytes);
  try {
    const PictureHeader header = ReadTiffHeader(stream);
    Require(header.width > 0 && header.height > 0 && header.pages >= 1);
    CheckCopy(bytes, header);
    Decode(bytes, header);
    stream.SetPosition(0);
    const size_t pages = ReadTiffExtraPages(stream).size();
    Require(pages <= static_cast<size_t>(header.smallerCopies + header.masks));
  } catch (const Error&) {
  }
  return 0;
}
