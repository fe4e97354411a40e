#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

#include <rasterkit/metadata/edit/exif_editor.h>
#include <rasterkit/metadata/edit/exif_value_text.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Id = ExifDirectoryId;

constexpr uint16_t kExifVersion = 36864, kComponents = 37121, kFlashpixVersion = 40960;
constexpr uint16_t kPositioning = 531, kGpsVersion = 0;
constexpr uint16_t kByte = 1, kUndefined = 7;

/// Tags that came with a later version of the standard, both ends included.
struct VersionOfTags {
  Id directory;
  uint16_t first, last;
  int version;
};

constexpr VersionOfTags kVersions[] = {
    {Id::exif, 34864, 34869, 230}, {Id::exif, 36880, 36882, 231}, {Id::exif, 37888, 37893, 231},
    {Id::exif, 41985, 42016, 220}, {Id::exif, 42032, 42037, 230}, {Id::exif, 42080, 42082, 232},
    {Id::exif, 42240, 42240, 221}, {Id::gps, 27, 30, 220},        {Id::gps, 31, 31, 230},
};

TagValue Undefined(uint16_t tag, std::string_view text) {
  return {tag, kUndefined, text.size(), {text.begin(), text.end()}};
}

TagValue GpsVersion(int version) {
  constexpr int kHundred = 100, kTen = 10;
  return {kGpsVersion,
          kByte,
          4,
          {static_cast<uint8_t>(version / kHundred), static_cast<uint8_t>(version / kTen % kTen),
           static_cast<uint8_t>(version % kTen), 0}};
}

}  // namespace

ExifEditor::ExifEditor(Metadata& metadata, const EditedPicture& picture)
    : metadata_(metadata),
      picture_(picture),
      hadBlock_(!metadata.exif.empty()),
      block_(std::exchange(metadata.exif, {})) {
  if (block_.IsDamaged()) {
    throw FormatError(
        "EXIF: the block is damaged and cannot be changed; it can be removed as a whole");
  }
  hadExif_ = !block_.All(Id::exif).empty();
}

void ExifEditor::Set(const ExifTagFact& fact, std::string_view text) {
  Set(fact.directory, ReadExifValue(fact, text, block_.IsBigEndian()));
}

void ExifEditor::Set(Id directory, const TagValue& value) {
  block_.Set(directory, value);
  RaiseVersions(directory, value.tag);
}

void ExifEditor::SetText(Id directory, uint16_t tag, const std::string& text) {
  block_.SetText(directory, tag, text);
  RaiseVersions(directory, tag);
}

void ExifEditor::RaiseVersions(Id directory, uint16_t tag) {
  setsGps_ = setsGps_ || directory == Id::gps;
  const auto* row = std::find_if(std::begin(kVersions), std::end(kVersions), [&](const auto& one) {
    return one.directory == directory && tag >= one.first && tag <= one.last;
  });
  if (row == std::end(kVersions)) return;
  const auto stated = block_.Get(directory, directory == Id::gps ? kGpsVersion : kExifVersion);
  if (!stated || stated->bytes.size() != 4) return;
  int version = 0;
  constexpr int kTen = 10;
  if (directory == Id::gps) {
    for (size_t i = 0; i < 3; ++i) version = version * kTen + stated->bytes[i];
    if (version < row->version) block_.Set(directory, GpsVersion(row->version));
    return;
  }
  for (const uint8_t digit : stated->bytes) {
    if (digit < '0' || digit > '9') return;
    version = version * kTen + (digit - '0');
  }
  if (version >= row->version) return;
  block_.Set(directory, Undefined(kExifVersion, "0" + std::to_string(row->version)));
}

void ExifEditor::CompleteMain() {
  if (picture_.format != EditedPicture::Format::jpeg) return;
  if (metadata_.resolution.IsKnown()) {
    SetResolution(block_, metadata_.resolution);
  } else {
    // Without a unit the numbers state nothing but square pixels.
    constexpr double kUsual = 72;
    constexpr uint16_t kNoUnit = 1;
    block_.SetRational(Id::main, exif::kResolutionX, kUsual);
    block_.SetRational(Id::main, exif::kResolutionY, kUsual);
    block_.SetWords(Id::main, exif::kResolutionUnit, std::array{kNoUnit});
  }
  constexpr uint16_t kCentered = 1;
  block_.SetWords(Id::main, kPositioning, std::array{kCentered});
}

void ExifEditor::CompleteExif() {
  const auto add = [&](const TagValue& value) {
    if (!block_.Has(Id::exif, value.tag)) block_.Set(Id::exif, value);
  };
  add(Undefined(kExifVersion, "0232"));
  add(Undefined(kFlashpixVersion, "0100"));
  constexpr uint16_t kUncalibrated = 65535;
  if (!block_.Has(Id::exif, exif::kColorSpace)) {
    block_.SetWords(Id::exif, exif::kColorSpace, std::array{kUncalibrated});
  }
  if (picture_.format != EditedPicture::Format::jpeg) return;
  constexpr std::string_view kYcbcr("\1\2\3\0", 4);
  add(Undefined(kComponents, kYcbcr));
  if (picture_.width <= 0 || picture_.height <= 0) return;
  if (!block_.Has(Id::exif, exif::kPixelWidth)) {
    block_.SetLong(Id::exif, exif::kPixelWidth, static_cast<uint32_t>(picture_.width));
  }
  if (!block_.Has(Id::exif, exif::kPixelHeight)) {
    block_.SetLong(Id::exif, exif::kPixelHeight, static_cast<uint32_t>(picture_.height));
  }
}

void ExifEditor::Finish() {
  if (block_.IsEmpty()) return;
  if (!hadExif_ && !block_.All(Id::exif).empty()) CompleteExif();
  if (setsGps_ && !block_.Has(Id::gps, kGpsVersion)) {
    constexpr int kNewest = 230;
    block_.Set(Id::gps, GpsVersion(kNewest));
  }
  // A TIFF file must say how a position was found.
  constexpr uint16_t kMethod = 27;
  constexpr std::string_view kByHand("ASCII\0\0\0MANUAL", 14);
  const bool needsMethod = setsGps_ && picture_.format == EditedPicture::Format::tiff;
  if (needsMethod && !block_.Has(Id::gps, kMethod)) {
    block_.Set(Id::gps, Undefined(kMethod, kByHand));
  }
  if (!hadBlock_) CompleteMain();
  metadata_.exif = block_.TakeBytes();
}

}  // namespace rasterkit::detail
