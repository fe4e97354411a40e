// Does with any file what the verb `exif` does: prints all fields, takes and removes the thumbnail,
// and copies the metadata to another picture.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"
#include "tool/pictures/exif/exif_copy.h"
#include "tool/pictures/exif/exif_thumbnail.h"
#include "tool/pictures/exif/jpeg_header.h"

namespace {

using namespace rasterkit::tool;

/// The start of a JPEG file without metadata; header readers need no more.
constexpr uint8_t kPlainJpeg[] = {0xFF, 0xD8, 0xFF, 0xDB, 0, 3, 1, 0xFF, 0xDA, 0, 3, 1, 0xFF, 0xD9};

void ReadFields(const ExifBlock& block) {
  for (const ExifDirectory& directory : block.Directories())
    for (const ExifEntry& entry : directory.entries) Require(block.Text(entry).size() <= 70'000);
}

void CutThumbnail(const ExifBlock& block) {
  const std::string thumbnail = ThumbnailBytes(block);
  Require(block.Section().find(thumbnail) != std::string::npos);
  try {
    const std::string cut = WithoutThumbnail(block);
    Require(cut.size() <= block.Section().size());
    Require(block.Directories().empty() || ExifBlock(cut).Find("thumbnail") == nullptr);
  } catch (const rasterkit::FormatError&) {
    // A directory that reaches beyond the section.
  }
}

void Copy(std::span<const uint8_t> photo, std::span<const uint8_t> picture, bool strip) {
  try {
    const CopiedMetadata copied = CopyMetadata(photo, picture, {strip, strip});
    const JpegHeader before = ReadJpegHeader(picture), after = ReadJpegHeader(copied.jpeg);
    Require(after.isComplete && after.width == before.width);
    const auto scan = picture.subspan(before.scanPlace);
    Require(std::equal(scan.begin(), scan.end(),
                       copied.jpeg.begin() + static_cast<std::ptrdiff_t>(after.scanPlace),
                       copied.jpeg.end()));
  } catch (const rasterkit::FormatError&) {
    // A picture without a scan, a thumbnail's directory that reaches beyond the section.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> file(data, size);
  if (size < 2 || data[0] != 0xFF || data[1] != 0xD8) return 0;
  const JpegHeader header = ReadJpegHeader(file);
  for (const JpegSegment& segment : header.segments) MarkerName(segment.marker);
  if (const JpegSegment* exif = header.Find(rasterkit::MetadataKind::exif)) {
    const ExifBlock block(SectionBytes(*exif));
    ReadFields(block);
    CutThumbnail(block);
  }
  for (const bool strip : {false, true}) {
    Copy(file, kPlainJpeg, strip);
    Copy(kPlainJpeg, file, strip);
    Copy(file, file, strip);
  }
  return 0;
}
