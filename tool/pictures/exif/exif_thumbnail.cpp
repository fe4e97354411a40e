#include "tool/pictures/exif/exif_thumbnail.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/errors.h>

namespace rasterkit::tool {
namespace {

enum ThumbnailTag : uint16_t {
  tagStripOffsets = 273,
  tagStripByteCounts = 279,
  tagJpegOffset = 513,
  tagJpegBytes = 514,
};

constexpr int64_t kLengthAndHeaderBytes = 16;

bool IsThumbnail(const ExifDirectory& directory) {
  return std::strcmp(directory.name, kThumbnailDirectory) == 0;
}

struct Range {
  int64_t start = 0, bytes = 0;
};

Range PictureRange(const ExifBlock& block, const ExifDirectory& directory, uint16_t offsetTag,
                   uint16_t bytesTag) {
  const ExifEntry* offset = directory.Find(offsetTag);
  const ExifEntry* bytes = directory.Find(bytesTag);
  if (offset == nullptr || bytes == nullptr) return {};
  return {kExifBase + block.Number(*offset), block.Number(*bytes)};
}

/// Finds the thumbnail as the library does, without the byte after the end marker: for sections
/// with wrong entries.
std::string ThumbnailBySearch(const ExifBlock& block) {
  const std::string file = "\xFF\xD8\xFF\xE1" + block.Section();
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  TImageData image;
  image.ExifDecode = false;
  image.ReadJpegSections(stream);
  const std::string buffer = image.ExtractThumbnailBuffer();
  const size_t end = buffer.find("\xFF\xD9");
  return end == std::string::npos ? "" : buffer.substr(0, end + 2);
}

/// Marks bytes of a section; positions are counted from 1.
class Bytes {
 public:
  explicit Bytes(size_t size) : marked_(size + 1) {}
  void Mark(const Range& range) {
    const auto size = static_cast<int64_t>(marked_.size());
    const int64_t end = std::min(size, range.start + range.bytes);
    for (int64_t p = std::max<int64_t>(1, range.start); p < end; ++p) {
      marked_[static_cast<size_t>(p)] = true;
    }
  }
  /// Marks the directory and the values stored outside it.
  void Mark(const ExifDirectory& directory) {
    Mark(Range{directory.start, directory.linkPos + 4 - directory.start});
    constexpr int64_t kMostInPlace = 4;
    for (const ExifEntry& entry : directory.entries) {
      if (entry.byteCount > kMostInPlace) Mark(Range{entry.valuePos, entry.byteCount});
    }
  }
  bool Has(int64_t position) const { return marked_[static_cast<size_t>(position)]; }

 private:
  std::vector<bool> marked_;
};

void RequireWhole(const ExifBlock& block, const ExifDirectory& directory) {
  if (directory.linkPos + 3 > static_cast<int64_t>(block.Section().size())) {
    throw FormatError("EXIF: the thumbnail's directory reaches beyond the section");
  }
}

/// Bytes that belong only to the thumbnail.
Bytes ThumbnailParts(const ExifBlock& block) {
  Bytes parts(block.Section().size());
  for (const ExifDirectory& directory : block.Directories()) {
    if (!IsThumbnail(directory)) continue;
    RequireWhole(block, directory);
    parts.Mark(directory);
    parts.Mark(PictureRange(block, directory, tagJpegOffset, tagJpegBytes));
    parts.Mark(PictureRange(block, directory, tagStripOffsets, tagStripByteCounts));
  }
  return parts;
}

Bytes OtherParts(const ExifBlock& block) {
  Bytes parts(block.Section().size());
  parts.Mark(Range{1, kLengthAndHeaderBytes});
  for (const ExifDirectory& directory : block.Directories()) {
    if (!IsThumbnail(directory)) parts.Mark(directory);
  }
  return parts;
}

}  // namespace

std::string ThumbnailBytes(const ExifBlock& block) {
  const ExifDirectory* directory = block.Find(kThumbnailDirectory);
  if (directory == nullptr) return {};
  const Range range = PictureRange(block, *directory, tagJpegOffset, tagJpegBytes);
  const ExifEntry picture = {0, 1, range.start, range.bytes};
  std::string bytes = block.Raw(picture);
  return bytes.compare(0, 2, "\xFF\xD8") == 0 ? bytes : ThumbnailBySearch(block);
}

std::string WithoutThumbnail(const ExifBlock& block) {
  std::string section = block.Section();
  if (block.Find(kThumbnailDirectory) == nullptr) return section;
  const Bytes goes = ThumbnailParts(block), stays = OtherParts(block);
  const auto size = static_cast<int64_t>(section.size());
  int64_t end = size;
  bool atEnd = true;
  for (int64_t p = size; p >= 1; --p) {
    char& byte = section[static_cast<size_t>(p - 1)];
    const bool isDropped = goes.Has(p) && !stays.Has(p);
    atEnd = atEnd && (isDropped || (byte == '\0' && !stays.Has(p)));
    if (!isDropped) continue;
    byte = '\0';
    if (atEnd) end = p - 1;
  }
  block.Order().WriteInt32(section, 0, block.Directories().front().linkPos);
  section.resize(static_cast<size_t>(end));
  section[0] = static_cast<char>(end / 256);
  section[1] = static_cast<char>(end % 256);
  return section;
}

}  // namespace rasterkit::tool
