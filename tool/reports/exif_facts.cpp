#include "tool/reports/exif_facts.h"

#include <fmt/core.h>

#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/pictures/exif/exif_thumbnail.h"
#include "tool/pictures/exif/jpeg_header.h"
#include "tool/pictures/exif/jpeg_input.h"
#include "tool/reports/exif_dates.h"
#include "tool/reports/exif_names.h"

namespace rasterkit::tool {
namespace {

std::string TextOf(const ExifBlock& block, const char* directory, uint16_t tag) {
  const ExifDirectory* found = block.Find(directory);
  const ExifEntry* entry = found != nullptr ? found->Find(tag) : nullptr;
  return entry != nullptr ? block.Text(*entry) : "";
}

/// The date when the photo was taken, or else when its file was last changed.
std::string DateOf(const ExifBlock& block) {
  constexpr uint16_t kDateTimeOriginal = 36867, kDateTime = 306;
  const std::string taken = IsoDate(TextOf(block, "exif", kDateTimeOriginal));
  return taken.empty() ? IsoDate(TextOf(block, "main", kDateTime)) : taken;
}

void AddComment(ExifFacts& facts, const std::string& comment) {
  if (!comment.empty()) facts.comments.push_back(comment);
}

void TakeThumbnail(ExifFacts& facts, const ExifBlock& block) {
  const std::string bytes = ThumbnailBytes(block);
  if (bytes.empty()) return;
  const JpegHeader header =
      ReadJpegHeader({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  facts.thumbnail = ExifFacts::Thumbnail{bytes.size(), header.width, header.height};
}

void TakeFields(ExifFacts& facts, const ExifBlock& block) {
  for (const ExifDirectory& directory : block.Directories()) {
    for (const ExifEntry& entry : directory.entries) {
      facts.fields.push_back(
          {directory.name, entry.tag, ExifTagName(directory.name, entry.tag), block.Text(entry)});
    }
  }
}

void TakeExif(ExifFacts& facts, const JpegSegment& segment) {
  constexpr uint16_t kUserComment = 37510;
  const ExifBlock block(SectionBytes(segment));
  facts.byteOrder = block.ByteOrder();
  if (block.IsDamaged()) facts.warnings.emplace_back("EXIF: the section is damaged");
  facts.date = DateOf(block);
  const ExifDirectory* exif = block.Find("exif");
  const ExifEntry* comment = exif != nullptr ? exif->Find(kUserComment) : nullptr;
  if (comment != nullptr && block.Text(*comment) != fmt::format("{} bytes", comment->byteCount)) {
    AddComment(facts, block.Text(*comment));
  }
  TakeThumbnail(facts, block);
  TakeFields(facts, block);
}

void TakeHeader(ExifFacts& facts, const JpegHeader& header) {
  facts.width = header.width;
  facts.height = header.height;
  if (!header.isComplete) {
    facts.warnings.emplace_back("JPEG: the header does not lead to picture data");
  }
  for (const JpegSegment& segment : header.segments) {
    const std::optional<MetadataKind> kind = SegmentKind(segment);
    facts.sections.push_back({MarkerName(segment.marker), kind ? MetadataKindName(*kind) : "",
                              segment.place, segment.Size()});
    if (kind == MetadataKind::comment) {
      AddComment(facts, Utf8OfBytes(Trim({reinterpret_cast<const char*>(segment.payload.data()),
                                          segment.payload.size()})));
    }
  }
  if (const JpegSegment* exif = header.Find(MetadataKind::exif)) TakeExif(facts, *exif);
}

}  // namespace

ExifFacts ReadExifFactsOf(const std::string& file) {
  ExifFacts facts;
  facts.file = file;
  try {
    const std::vector<uint8_t> jpeg = ReadJpegInput(file);
    facts.photo = ReadPhotoFacts(jpeg);
    facts.warnings = facts.photo.warnings;
    TakeHeader(facts, ReadJpegHeader(jpeg));
  } catch (const Failure& failure) {
    facts.error = failure.what();
  }
  return facts;
}

}  // namespace rasterkit::tool
