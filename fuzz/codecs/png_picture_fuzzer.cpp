// Any bytes as a PNG file give a header, pixels and a copy, or an Error. What was copied or written
// is read again with the same pixels and metadata.

#include <algorithm>
#include <vector>

#include <zlib.h>

#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

constexpr uint64_t kPictureLimit = 4 << 20;

using Bytes = std::span<const uint8_t>;

void Copy(Bytes file, const PictureWriting& writing) {
  TMemoryStream stream;
  try {
    CopyPng(file, writing, stream);
  } catch (const Error&) {
    Require(stream.Size() == 0);
    return;
  }
  const PictureHeader again = ReadPngHeader(stream.Bytes());
  Require(again.form == writing.form);
  Require(again.metadata.exif == writing.metadata.exif);
  Require(again.metadata.xmp == writing.metadata.xmp);
  Require(again.metadata.iptc == writing.metadata.iptc);
}

void RequireSame(const Pixels& a, const Pixels& b) {
  Require(a.index() == b.index() && WidthOf(a) == WidthOf(b) && HeightOf(a) == HeightOf(b));
  if (const auto* raster = std::get_if<Raster>(&a)) {
    const auto& other = std::get<Raster>(b);
    // Of the transparent entries of its palette the pixels used one at most.
    if (raster->Format() == pf32bit && IsIndexed(other.Format())) return;
    Require(raster->Format() == other.Format());
    for (int y = 0; y < raster->Height(); y++) {
      Require(std::equal(raster->Row(y), raster->Row(y) + raster->RowBytes(), other.Row(y)));
    }
    return;
  }
  const auto &samples = std::get<Samples>(a), &other = std::get<Samples>(b);
  for (int y = 0; y < samples.Height(); y++) {
    Require(std::equal(samples.Row(y), samples.Row(y) + samples.Stride(), other.Row(y)));
  }
}

void Run(Bytes file) {
  try {
    const PictureHeader header = ReadPngHeader(file);
    PictureWriting writing;
    writing.form = header.form;
    writing.metadata = header.metadata;
    Copy(file, writing);
    const Pixels pixels = DecodePngPixels(file);
    TMemoryStream stream;
    WritePng(pixels, writing, stream);
    RequireSame(pixels, DecodePngPixels(stream.Bytes()));
  } catch (const Error&) {
  }
}

uint32_t BigEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Corrects the checksum of every chunk, so that changed bytes reach the reader.
void RepairChecksums(std::vector<uint8_t>& file) {
  size_t position = 8;
  while (position + 12 <= file.size()) {
    const size_t length = BigEndian32(file.data() + position);
    if (length > file.size() - position - 12) return;
    uint8_t* body = file.data() + position + 4;
    const auto checksum = static_cast<uint32_t>(crc32(0, body, static_cast<uInt>(length + 4)));
    for (int i = 0; i < 4; i++)
      body[length + 4 + static_cast<size_t>(i)] = static_cast<uint8_t>(checksum >> (24 - 8 * i));
    position += length + 12;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  std::vector<uint8_t> repaired(data, data + size);
  RepairChecksums(repaired);
  Run(repaired);
  if (!std::equal(repaired.begin(), repaired.end(), data)) Run({data, size});
  return 0;
}
