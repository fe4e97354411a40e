#include <algorithm>
#include <cmath>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/image_resources.h>

namespace rasterkit::detail {

namespace {

constexpr double kCentimetersPerInch = 2.54;

/// Most bytes of metadata that are read; directories may share bytes, so that even a small file
/// could claim any number.
constexpr uint64_t kMostBytes = uint64_t{256} << 20;
constexpr uint64_t kLeastBytes = 64 << 10;

/// Reads values until too many bytes were read.
class MetadataReader {
 public:
  MetadataReader(const TagReader& reader, const TagDirectory& page, PictureHeader& header)
      : reader_(reader),
        page_(page),
        header_(header),
        left_(std::clamp(2 * reader.Size(), kLeastBytes, kMostBytes)) {}

  void Read() {
    constexpr size_t kMostWarnings = 8;
    for (size_t i = 0; i < std::min(page_.damaged.size(), kMostWarnings); i++) {
      Warn(fmt::format("tag {} reaches beyond the end of the file or has an unknown type",
                       page_.damaged[i]));
    }
    for (const TagPlace& place : page_.tags) ReadTag(place);
    ReadDirectories();
    Finish();
  }

 private:
  bool Affords(const TagPlace& place);
  void ReadTag(const TagPlace& place);
  void ReadBlock(const TagPlace& place);
  void ReadFree(const TagPlace& place);
  void ReadExtraSamples(const TagPlace& place);
  std::vector<TagValue> ReadDirectory(uint16_t pointer, const TagDirectory& from,
                                      uint64_t* interopAt);
  void ReadDirectories();
  void Finish();
  void Warn(std::string text) { header_.warnings.push_back("TIFF: " + std::move(text)); }

  const TagReader& reader_;
  const TagDirectory& page_;
  PictureHeader& header_;
  uint64_t left_;
  TiffDirectories exif_;
  std::vector<uint8_t> resources_;
};

bool MetadataReader::Affords(const TagPlace& place) {
  if (place.Bytes() <= left_) {
    left_ -= place.Bytes();
    return true;
  }
  Warn(fmt::format("tag {} with {} bytes is too large and is skipped", place.tag, place.Bytes()));
  return false;
}

void MetadataReader::ReadTag(const TagPlace& place) {
  // A place would lead nowhere in another file.
  if (LeadsToDirectory(place.tag, place.type)) {
    const bool isRead = place.tag == TIFFTAG_SUBIFD || place.tag == TIFFTAG_EXIFIFD ||
                        place.tag == TIFFTAG_GPSIFD || place.tag == kInteropPointer;
    if (!isRead && place.count > 0) header_.directoryTags.push_back(place.tag);
    return;
  }
  switch (KindOfTag(place.tag)) {
    case TagKind::structure:
      if (place.tag == TIFFTAG_EXTRASAMPLES) ReadExtraSamples(place);
      return;
    case TagKind::pointer:
      return;
    case TagKind::block:
      if (Affords(place)) ReadBlock(place);
      return;
    case TagKind::position:
      if (Affords(place)) header_.positionTags.push_back(reader_.Value(place));
      return;
    case TagKind::display:
    case TagKind::ofSamples:
    case TagKind::free:
      if (Affords(place)) ReadFree(place);
      return;
  }
}

/// Some writers state IPTC records as words of 32 bits; then the bytes are in the order of the
/// records or, written as numbers by a big-endian machine, four by four reversed.
std::vector<uint8_t> WithoutWords(std::vector<uint8_t> bytes) {
  constexpr uint8_t kMark = 0x1C;
  if (bytes.size() < 4 || bytes[0] == kMark || bytes[3] != kMark) return bytes;
  for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    std::reverse(bytes.data() + at, bytes.data() + at + 4);
  }
  return bytes;
}

/// Words leave up to three zeros after the last record.
void DropPadding(std::vector<uint8_t>& iptc) {
  const std::vector<uint8_t> records = IptcRecords(iptc).Bytes();
  const bool isSame = records.size() <= iptc.size() && iptc.size() - records.size() < 4 &&
                      std::equal(records.begin(), records.end(), iptc.begin());
  if (isSame && !records.empty()) iptc.resize(records.size());
}

void MetadataReader::ReadBlock(const TagPlace& place) {
  std::vector<uint8_t> bytes = reader_.Raw(place);
  switch (place.tag) {
    case TIFFTAG_XMLPACKET:
      header_.metadata.xmp.assign(bytes.begin(), bytes.end());
      break;
    case TIFFTAG_RICHTIFFIPTC: {
      bytes = WithoutWords(std::move(bytes));
      const auto first = std::find(bytes.begin(), bytes.end(), uint8_t{0x1C});
      header_.metadata.iptc.assign(first, bytes.end());
      DropPadding(header_.metadata.iptc);
      break;
    }
    case TIFFTAG_PHOTOSHOP:
      resources_ = std::move(bytes);
      break;
    default:
      if (bytes.empty()) break;
      header_.metadata.profile = std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
  }
}

/// A layout knows opacity as the last sample only; for other orders the list itself is kept.
void MetadataReader::ReadExtraSamples(const TagPlace& place) {
  const std::vector<uint64_t> kinds = reader_.Integers(place);
  const bool hasKinds = std::any_of(kinds.begin(), kinds.end(),
                                    [](uint64_t kind) { return kind != EXTRASAMPLE_UNSPECIFIED; });
  if (hasKinds && header_.layout.extraBands > 0 && header_.layout.alpha == AlphaKind::none) {
    header_.metadata.tiffTags.push_back(reader_.Value(place));
  }
}

void MetadataReader::ReadFree(const TagPlace& place) {
  TagValue value = reader_.Value(place);
  if (place.tag == kLayersTag) {
    header_.hiddenOthers.push_back(
        fmt::format("layers of {:.1f} MB", static_cast<double>(place.Bytes()) / 1e6));
  }
  const bool isExif = KindOfTag(place.tag) != TagKind::ofSamples && IsTagOfExif(place.tag);
  if (isExif) {
    exif_.main.push_back(std::move(value));
  } else if (KindOfTag(place.tag) != TagKind::display) {
    header_.metadata.tiffTags.push_back(std::move(value));
  }
}

std::vector<TagValue> MetadataReader::ReadDirectory(uint16_t pointer, const TagDirectory& from,
                                                    uint64_t* interopAt) {
  const uint64_t at = reader_.Integer(from, pointer, 0);
  if (at == 0) return {};
  const auto directory = reader_.Directory(at);
  if (!directory) {
    Warn(fmt::format("the directory of tag {} cannot be read", pointer));
    return {};
  }
  if (interopAt) *interopAt = reader_.Integer(*directory, kInteropPointer, 0);
  std::vector<TagValue> values;
  for (const TagPlace& place : directory->tags) {
    const bool isPointer = place.tag == kInteropPointer || place.tag == TIFFTAG_EXIFIFD ||
                           place.tag == TIFFTAG_GPSIFD || place.tag == TIFFTAG_SUBIFD;
    if (!isPointer && Affords(place)) values.push_back(reader_.Value(place));
  }
  return values;
}

void MetadataReader::ReadDirectories() {
  uint64_t interopAt = 0;
  exif_.exif = ReadDirectory(TIFFTAG_EXIFIFD, page_, &interopAt);
  exif_.gps = ReadDirectory(TIFFTAG_GPSIFD, page_, nullptr);
  if (interopAt != 0) {
    const auto directory = reader_.Directory(interopAt);
    for (size_t i = 0; directory && i < directory->tags.size(); i++) {
      if (Affords(directory->tags[i])) {
        exif_.interop.push_back(reader_.Value(directory->tags[i]));
      }
    }
  } else {
    exif_.interop = ReadDirectory(kInteropPointer, page_, nullptr);
  }
}

/// True if an EXIF block says more than orientation and resolution, which have fields of their own.
bool SaysMore(const TiffDirectories& exif) {
  const auto isMore = [](const TagValue& value) {
    return KindOfTag(value.tag) != TagKind::display;
  };
  return std::any_of(exif.main.begin(), exif.main.end(), isMore) || !exif.exif.empty() ||
         !exif.gps.empty() || !exif.interop.empty();
}

void MetadataReader::Finish() {
  Metadata& metadata = header_.metadata;
  if (SaysMore(exif_)) {
    metadata.exif =
        ExifOfTags(exif_.main, exif_.exif, exif_.gps, exif_.interop, reader_.IsBigEndian());
  }
  if (!resources_.empty()) {
    // The records of tag 33723 count before those among the resources.
    std::vector<uint8_t> records = std::move(metadata.iptc);
    SplitImageResources(resources_, metadata);
    if (!records.empty()) metadata.iptc = std::move(records);
  }
  metadata.resolution = ResolutionOfPage(reader_, page_);
  if (!metadata.resolution.IsKnown()) {
    metadata.resolution = ResolutionOf(ImageResources(metadata.photoshop));
  }
  const uint64_t orientation = reader_.Integer(page_, TIFFTAG_ORIENTATION, 0);
  if (orientation >= 1 && orientation <= 8) header_.orientation = static_cast<int>(orientation);
}

}  // namespace

void ReadPageMetadata(const TagReader& reader, const TagDirectory& page, PictureHeader& header) {
  MetadataReader(reader, page, header).Read();
}

Resolution ResolutionOfPage(const TagReader& reader, const TagDirectory& page) {
  const Resolution stated{reader.Fraction(page, TIFFTAG_XRESOLUTION),
                          reader.Fraction(page, TIFFTAG_YRESOLUTION)};
  const uint64_t unit = reader.Integer(page, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  if (!stated.IsKnown() || (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER)) return {};
  const double factor = unit == RESUNIT_CENTIMETER ? kCentimetersPerInch : 1;
  return {stated.x * factor, stated.y * factor};
}

}  // namespace rasterkit::detail
