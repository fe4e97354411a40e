// Headers and copies of TIFF pages: whatever the bytes are, an error of the house or a header that
// holds, and a copy that is not much larger than its source and reads the same.

#include <algorithm>

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

void Decode(std::span<const uint8_t> bytes, const PictureHeader& header) {
  TSpanStream stream(bytes);
  try {
    const Pixels pixels = DecodeTiffPixels(stream);
    Require(WidthOf(pixels) == header.width && HeightOf(pixels) == header.height);
  } catch (const Error&) {
  }
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
