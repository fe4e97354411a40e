#include <algorithm>
#include <array>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>

namespace rasterkit {
namespace {

/// Tags of a thumbnail's directory that a new picture makes wrong.
constexpr std::array kStale = {exif::kWidth, exif::kHeight, exif::kOrientation};

std::vector<uint8_t> LittleLong(uint32_t value) {
  return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
          static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
}

}  // namespace

bool ExifBlock::EraseThumbnail() {
  const Directory* found = FindDirectory(ExifDirectoryId::thumbnail);
  if (found == nullptr) return true;
  const Directory directory = *found;
  const std::vector<detail::ByteRange> pictures = ThumbnailRanges();
  PutLongAt(directory.pointerAt, 0);
  Walk();
  for (const detail::ByteRange& picture : pictures) Free(picture);
  if (!directory.isDamaged) FreeDirectory(directory);
  return !directory.isDamaged;
}

void ExifBlock::RemoveThumbnail() {
  if (FindDirectory(ExifDirectoryId::thumbnail) == nullptr) return;
  RequireWhole();
  EraseThumbnail();
  DropFreeEnd();
}

/// Overwrites the old thumbnail where the new one has room; false if it has none.
bool ExifBlock::ReplaceThumbnail(std::span<const uint8_t> jpeg) {
  const std::span<const uint8_t> old = Thumbnail();
  if (old.size() < jpeg.size() || Has(ExifDirectoryId::thumbnail, exif::kStripPlaces)) return false;
  const detail::ByteRange place = {static_cast<size_t>(old.data() - bytes_.data()), old.size()};
  if (UsersOf(place).size() != 1) return false;
  const auto at = bytes_.begin() + static_cast<std::ptrdiff_t>(place.at);
  std::fill(std::copy(jpeg.begin(), jpeg.end(), at), at + static_cast<std::ptrdiff_t>(place.size),
            uint8_t{0});
  SetLong(ExifDirectoryId::thumbnail, exif::kJpegBytes, static_cast<uint32_t>(jpeg.size()));
  for (const uint16_t tag : kStale) Remove(ExifDirectoryId::thumbnail, tag);
  free_.push_back({place.at + jpeg.size(), place.size - jpeg.size()});
  DropFreeEnd();
  return true;
}

/// Appends a new directory and the picture behind it.
void ExifBlock::AppendThumbnail(std::span<const uint8_t> jpeg) {
  const auto size = static_cast<uint32_t>(jpeg.size());
  const std::vector<uint8_t> perInch72 = {72, 0, 0, 0, 1, 0, 0, 0};
  const std::array tags = {
      TagValue{exif::kCompression, 3, 1, {6, 0}},
      TagValue{exif::kResolutionX, 5, 1, perInch72},
      TagValue{exif::kResolutionY, 5, 1, perInch72},
      TagValue{exif::kResolutionUnit, 3, 1, {2, 0}},
      TagValue{exif::kJpegPlace, 4, 1, LittleLong(0)},
      TagValue{exif::kJpegBytes, 4, 1, LittleLong(size)},
  };
  constexpr size_t kTable = 2 + tags.size() * detail::kIfdEntryBytes + 4;
  const size_t at = Append(std::vector<uint8_t>(kTable));
  PutWordAt(at, static_cast<uint16_t>(tags.size()));
  for (size_t i = 0; i < tags.size(); ++i) {
    PutWordAt(at + 2 + i * detail::kIfdEntryBytes, tags[i].tag);
    PutWordAt(at + 4 + i * detail::kIfdEntryBytes, 1);
  }
  if (!FindDirectory(ExifDirectoryId::main)->hasLink) {
    MoveTable(ExifDirectoryId::main, EntriesOf(ExifDirectoryId::main));
  }
  PutLongAt(FindDirectory(ExifDirectoryId::main)->LinkAt(), static_cast<uint32_t>(at));
  Walk();
  for (const TagValue& tag : tags) WriteValue(*Find(ExifDirectoryId::thumbnail, tag.tag), tag);
  const TagValue place = {exif::kJpegPlace, 4, 1, LittleLong(static_cast<uint32_t>(Append(jpeg)))};
  WriteValue(*Find(ExifDirectoryId::thumbnail, exif::kJpegPlace), place);
}

void ExifBlock::SetThumbnail(std::span<const uint8_t> jpeg) {
  if (jpeg.empty()) {
    RemoveThumbnail();
    return;
  }
  RequireWhole();
  if (ReplaceThumbnail(jpeg)) return;
  RemoveThumbnail();
  AppendThumbnail(jpeg);
}

}  // namespace rasterkit
