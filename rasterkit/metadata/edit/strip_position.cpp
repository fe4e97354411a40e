#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/edit/metadata_items.h>
#include <rasterkit/metadata/edit/places_in_xmp.h>
#include <rasterkit/metadata/edit/strip_position.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using std::string_view_literals::operator""sv;
using Id = ExifDirectoryId;
using Bytes = std::vector<uint8_t>;

constexpr uint16_t kXmpTag = 700, kIptcTag = 33723, kPhotoshopTag = 34377;
/// Latitude, longitude, altitude and time of the photograph, and the coordinates of what it shows.
constexpr uint16_t kCoordinates[] = {2, 4, 6, 20, 22};

std::string TextOf(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

// --- Directories in bytes ------------------------------------------------------------------------

/// Values that say where the photograph was taken, as they stand in a block.
using Patterns = std::vector<Bytes>;

bool IsCoordinate(const detail::IfdEntry& entry) {
  return std::find(std::begin(kCoordinates), std::end(kCoordinates), entry.tag) !=
         std::end(kCoordinates);
}

/// Adds both byte orders of a value that is no mere zero and long enough to be unmistakable.
void AddPattern(Patterns& patterns, std::span<const uint8_t> value, uint16_t type) {
  constexpr size_t kLeastBytes = 16, kFractionBytes = 8;
  const detail::OrderedBytes numbers(value, false);
  bool isNothing = true;
  for (size_t at = 0; at + kFractionBytes <= value.size(); at += kFractionBytes) {
    isNothing = isNothing && numbers.Long(at) == 0;
  }
  if (value.size() < kLeastBytes || isNothing) return;
  Bytes turned(value.begin(), value.end());
  detail::TurnTagBytes(turned, type);
  patterns.emplace_back(value.begin(), value.end());
  patterns.push_back(std::move(turned));
}

void Erase(std::span<uint8_t> bytes, const detail::ByteRange& range) {
  if (range.at >= bytes.size()) return;
  const auto part = bytes.subspan(range.at, std::min(range.size, bytes.size() - range.at));
  std::fill(part.begin(), part.end(), uint8_t{0});
}

/// Erases the GPS directory that an entry leads to, and takes its coordinates down.
void EraseDirectory(std::span<uint8_t> block, size_t at, bool isBigEndian, Patterns& patterns) {
  constexpr size_t kHeaderBytes = 8;
  if (at < kHeaderBytes) return;
  const detail::Ifd gps = detail::ReadIfd(block, at, isBigEndian);
  for (const detail::IfdEntry& entry : gps.entries) {
    const auto value = block.subspan(entry.valuesAt, entry.valueBytes);
    if (IsCoordinate(entry)) AddPattern(patterns, value, entry.type);
  }
  for (const detail::IfdEntry& entry : gps.entries) {
    if (!entry.IsInline()) Erase(block, entry.Values());
  }
  if (!gps.isCut) Erase(block, gps.Table());
}

/// Erases the GPS directories of a block of which only its place is known: bytes stay where they
/// are.
void EraseInPlace(std::span<uint8_t> block, Patterns& patterns) {
  constexpr size_t kHeaderBytes = 8;
  if (block.size() < kHeaderBytes) return;
  const bool isBigEndian = block[0] == 'M';
  const detail::OrderedBytes numbers(block, isBigEndian);
  const detail::Ifd main = detail::ReadIfd(block, numbers.Long(4), isBigEndian);
  for (const detail::IfdEntry& entry : main.entries) {
    if (entry.tag != exif::kGpsPointer || entry.valueBytes != 4) continue;
    EraseDirectory(block, numbers.Long(entry.valuesAt), isBigEndian, patterns);
  }
}

constexpr std::string_view kBlockStarts[] = {"Exif\0\0II*\0"sv, "Exif\0\0MM\0*"sv};

/// Erases the positions of pictures that lie in other bytes: thumbnails, previews of maker notes.
/// The pictures stay as they are.
void EraseNested(std::span<uint8_t> bytes, Patterns& patterns) {
  constexpr size_t kNameBytes = 6;
  for (const std::string_view start : kBlockStarts) {
    auto at = bytes.begin();
    while ((at = std::search(at, bytes.end(), start.begin(), start.end())) != bytes.end()) {
      at += kNameBytes;
      EraseInPlace(std::span(at, bytes.end()), patterns);
    }
  }
}

void ErasePatterns(std::span<uint8_t> bytes, const Patterns& patterns) {
  for (const Bytes& pattern : patterns) {
    auto at = bytes.begin();
    while ((at = std::search(at, bytes.end(), pattern.begin(), pattern.end())) != bytes.end()) {
      std::fill_n(at, pattern.size(), uint8_t{0});
    }
  }
}

// --- EXIF ----------------------------------------------------------------------------------------

/// Other directories with a pointer to a GPS directory of their own.
void StripStrayPointers(ExifBlock& exif, Patterns& patterns) {
  for (const Id id : {Id::exif, Id::thumbnail, Id::interop}) {
    while (const auto at = exif.Number(id, exif::kGpsPointer)) {
      const bool isBigEndian = exif.IsBigEndian();
      exif.Remove(id, exif::kGpsPointer);
      Bytes bytes = exif.TakeBytes();
      EraseDirectory(bytes, *at, isBigEndian, patterns);
      exif = ExifBlock(std::move(bytes));
      if (exif.IsDamaged()) return;
    }
  }
}

/// Packets and records in the main directory, as in TIFF files.
void StripBlocksOfMain(ExifBlock& exif) {
  const auto change = [&](uint16_t tag, auto strip) {
    auto value = exif.Get(Id::main, tag);
    if (!value) return;
    constexpr uint16_t kByte = 1, kUndefined = 7;
    Bytes bytes = value->bytes;
    strip(bytes);
    if (bytes == value->bytes) return;
    exif.Remove(Id::main, tag);
    const uint16_t type = value->type == kByte ? kByte : kUndefined;
    if (!bytes.empty()) exif.Set(Id::main, {tag, type, bytes.size(), std::move(bytes)});
  };
  change(kXmpTag, [](Bytes& bytes) {
    std::string packet = TextOf(bytes);
    StripPositionOfXmp(packet);
    bytes.assign(packet.begin(), packet.end());
  });
  change(kIptcTag, StripPositionOfIptc);
  change(kPhotoshopTag, StripPositionOfResources);
}

/// Notes the coordinates before they are erased.
void TakePatterns(const ExifBlock& exif, Patterns& patterns) {
  for (const uint16_t tag : kCoordinates) {
    if (const auto value = exif.Get(Id::gps, tag)) AddPattern(patterns, value->bytes, value->type);
  }
}

/// A block that cannot be changed is made anew of what can be read.
Bytes Rebuilt(const ExifBlock& damaged, Changes& changes) {
  TiffDirectories tags = TagsOfExif(damaged.Bytes());
  const auto isNote = [](const TagValue& value) { return value.tag == exif::kMakerNote; };
  const bool hadNote = std::erase_if(tags.exif, isNote) > 0;
  Bytes made = ExifOfTags(tags.main, tags.exif, {}, tags.interop, tags.isBigEndian);
  changes.Note("the damaged EXIF block was made anew of the tags that can be read");
  if (hadNote) {
    changes.Lose(LossKind::makerNote, "the maker note",
                 "the EXIF block is damaged and could hide a position");
  }
  if (damaged.HasThumbnail()) {
    changes.Lose(LossKind::thumbnail, "the thumbnail",
                 "the EXIF block is damaged and could hide a position");
  }
  if (made.empty() && !damaged.IsEmpty()) {
    changes.Lose(LossKind::exif, "the EXIF block", "it is damaged and could hide a position");
  }
  return made;
}

void StripExif(Bytes& bytes, Patterns& patterns, Changes& changes) {
  ExifBlock exif(std::move(bytes));
  bytes.clear();
  TakePatterns(exif, patterns);
  if (exif.IsDamaged()) {
    bytes = Rebuilt(exif, changes);
    return;
  }
  for (const TagValue& value : exif.All(Id::gps)) exif.Remove(Id::gps, value.tag);
  exif.Remove(Id::main, exif::kGpsPointer);
  StripStrayPointers(exif, patterns);
  if (exif.IsDamaged()) {
    bytes = Rebuilt(exif, changes);
    return;
  }
  StripBlocksOfMain(exif);
  // A maker note may refer to bytes outside of itself.
  if (!exif.Has(Id::exif, exif::kMakerNote)) exif.EraseUnused();
  if (!exif.IsEmpty()) bytes = exif.TakeBytes();
}

// --- Other blocks --------------------------------------------------------------------------------

/// Letters by which the blocks of programs and cameras show that they state a position.
constexpr std::string_view kMarks[] = {"GPSL",       "GpsL",      "gpsL",       "gps:l",
                                       "GPS5",       "GPSPos",    "\"latitude", "\"Latitude",
                                       "Longitude=", "longitude="};

bool ShowsPosition(std::span<const uint8_t> bytes) {
  return std::any_of(std::begin(kMarks), std::end(kMarks), [&](std::string_view mark) {
    return std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end()) != bytes.end();
  });
}

bool IsCameraTrack(const OtherBlock& block) {
  constexpr uint32_t kApp6 = 0xE6;
  constexpr std::string_view kName = "GoPro\0"sv;
  return block.kind == kApp6 && block.bytes.size() >= kName.size() &&
         std::equal(kName.begin(), kName.end(), block.bytes.begin());
}

void StripOthers(std::vector<OtherBlock>& blocks, Patterns& patterns, Changes& changes) {
  std::erase_if(blocks, [&](OtherBlock& block) {
    EraseNested(block.bytes, patterns);
    if (!IsCameraTrack(block) && !ShowsPosition(block.bytes)) return false;
    changes.Lose(LossKind::otherBlock,
                 "a block of " + std::to_string(block.bytes.size()) + " bytes",
                 "it states a position");
    return true;
  });
}

bool IsPlaceText(const PictureText& text) {
  const std::string keyword = LowerCase(text.keyword);
  constexpr std::string_view kParts[] = {"gps", "latitude", "longitude", "altitude", "location"};
  const bool isNamed =
      std::any_of(std::begin(kParts), std::end(kParts),
                  [&](std::string_view part) { return keyword.find(part) != std::string::npos; });
  const auto* first = reinterpret_cast<const uint8_t*>(text.text.data());
  return isNamed || ShowsPosition({first, text.text.size()});
}

/// Some cameras keep a second note of their own there.
constexpr uint16_t kPrivateNote = 50740;

void StripTiffTags(std::vector<TagValue>& tags, Patterns& patterns) {
  for (TagValue& tag : tags) {
    if (tag.tag == kPrivateNote) EraseNested(tag.bytes, patterns);
  }
}

}  // namespace

void StripPositionOfXmp(std::string& packet) {
  if (!packet.empty() && !detail::RemovePlacesOfXmp(packet)) packet.clear();
}

void StripPositionOfIptc(Bytes& bytes) {
  if (bytes.empty()) return;
  IptcRecords records(bytes);
  if (records.RemovePlaces()) bytes = records.Bytes();
}

void StripPositionOfResources(Bytes& bytes) {
  if (bytes.empty()) return;
  constexpr uint16_t kExif = 1058, kSecondExif = 1059, kXmp = 1060;
  ImageResources resources(bytes);
  const Bytes before = bytes;
  Patterns patterns;
  for (const uint16_t id : {kExif, kSecondExif}) {
    const ImageResource* found = resources.Find(id);
    if (found == nullptr) continue;
    Bytes block = found->bytes;
    EraseInPlace(block, patterns);
    resources.Set(id, std::move(block));
  }
  if (const ImageResource* found = resources.Find(kXmp)) {
    std::string packet = TextOf(found->bytes);
    StripPositionOfXmp(packet);
    resources.Set(kXmp, {packet.begin(), packet.end()});
  }
  if (const ImageResource* found = resources.Find(image_resource::kIptc)) {
    Bytes records = found->bytes;
    StripPositionOfIptc(records);
    resources.Set(image_resource::kIptc, std::move(records));
  }
  // What did not change keeps its bytes.
  const bool isSame = resources.Bytes() == ImageResources(before).Bytes();
  bytes = resources.IsDamaged() ? Bytes{} : isSame ? before : resources.Bytes();
  EraseNested(bytes, patterns);
  ErasePatterns(bytes, patterns);
}

void StripPosition(Metadata& metadata, Changes& changes) {
  Patterns patterns;
  if (!metadata.exif.empty()) StripExif(metadata.exif, patterns, changes);
  EraseNested(metadata.exif, patterns);
  for (std::string* packet : {&metadata.xmp, &metadata.extendedXmp}) {
    const size_t had = packet->size();
    StripPositionOfXmp(*packet);
    if (had > 0 && packet->empty()) {
      changes.Lose(LossKind::xmp, "XMP packet of " + std::to_string(had) + " bytes",
                   "it is damaged and could hide a position");
    }
  }
  StripPositionOfIptc(metadata.iptc);
  const bool hadResources = !metadata.photoshop.empty();
  StripPositionOfResources(metadata.photoshop);
  if (hadResources && metadata.photoshop.empty()) {
    changes.Lose(LossKind::otherBlock, "Photoshop's image resources",
                 "they are damaged and could hide a position");
  }
  StripOthers(metadata.jpegSegments, patterns, changes);
  StripOthers(metadata.pngChunks, patterns, changes);
  StripTiffTags(metadata.tiffTags, patterns);
  detail::RemoveItems(metadata, {"gps", "latitude", "longitude"});
  std::erase_if(metadata.texts, IsPlaceText);
  // Copies that other programs have left.
  ErasePatterns(metadata.exif, patterns);
  ErasePatterns(metadata.photoshop, patterns);
  for (TagValue& tag : metadata.tiffTags) {
    if (tag.tag == kPrivateNote) ErasePatterns(tag.bytes, patterns);
  }
  for (OtherBlock& block : metadata.jpegSegments) ErasePatterns(block.bytes, patterns);
  for (OtherBlock& block : metadata.pngChunks) ErasePatterns(block.bytes, patterns);
}

}  // namespace rasterkit
