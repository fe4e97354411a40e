#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <rasterkit/metadata/exif_follow.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/mapped_area.h>

namespace rasterkit::detail {
namespace {

using Id = ExifDirectoryId;

constexpr double kHalfPixel = 0.5;

struct Point {
  double x = 0, y = 0;
};

/// The new place of a pixel of the old picture, given by its indexes.
Point NewPlace(const PixelChange& change, double x, double y) {
  const auto& m = change.toNew;
  const double cornerX = x + kHalfPixel, cornerY = y + kHalfPixel;
  return {m[0] * cornerX + m[1] * cornerY + m[2], m[3] * cornerX + m[4] * cornerY + m[5]};
}

bool IsInside(const PixelChange& change, const Point& place) {
  return place.x >= 0 && place.y >= 0 && place.x < change.width && place.y < change.height;
}

uint16_t WordOf(double value) {
  return static_cast<uint16_t>(std::clamp(value, 0.0, 65535.0));
}

/// A point, a circle (with its diameter) or a rectangle (with its sides), each by its center.
/// Nothing if it lies outside the new picture.
std::optional<std::vector<uint16_t>> NewArea(const std::vector<double>& old,
                                             const PixelChange& change) {
  constexpr size_t kCircle = 3, kRectangle = 4;
  const auto& m = change.toNew;
  const Point center = NewPlace(change, old[0], old[1]);
  if (old.size() != kRectangle) {
    if (!IsInside(change, center)) return std::nullopt;
    std::vector<uint16_t> area = {WordOf(std::floor(center.x)), WordOf(std::floor(center.y))};
    const double scale = std::sqrt(std::abs(m[0] * m[4] - m[1] * m[3]));
    if (old.size() == kCircle) area.push_back(WordOf(std::max(1.0, std::round(old[2] * scale))));
    return area;
  }
  const auto area = MapArea(change, {old[0] + kHalfPixel, old[1] + kHalfPixel, old[2], old[3]});
  if (!area) return std::nullopt;
  return std::vector<uint16_t>{WordOf(std::floor(area->centerX)), WordOf(std::floor(area->centerY)),
                               WordOf(std::max(1.0, std::round(area->width))),
                               WordOf(std::max(1.0, std::round(area->height)))};
}

void FollowArea(ExifBlock& exif, uint16_t tag, const PixelChange& change) {
  if (!exif.Has(Id::exif, tag)) return;
  constexpr size_t kPoint = 2, kMost = 4;
  const std::vector<double> old = exif.Numbers(Id::exif, tag);
  const bool isArea = old.size() >= kPoint && old.size() <= kMost;
  const auto area = isArea ? NewArea(old, change) : std::nullopt;
  if (area) {
    exif.SetWords(Id::exif, tag, *area);
  } else {
    exif.Remove(Id::exif, tag);
  }
}

void FollowSize(ExifBlock& exif, Id directory, uint16_t tag, int size) {
  const auto stated = exif.Number(directory, tag);
  if (!exif.Has(directory, tag) || stated == static_cast<uint32_t>(size)) return;
  exif.SetLong(directory, tag, static_cast<uint32_t>(size));
}

void FollowSizes(ExifBlock& exif, const PixelChange& change) {
  FollowSize(exif, Id::main, exif::kWidth, change.width);
  FollowSize(exif, Id::main, exif::kHeight, change.height);
  FollowSize(exif, Id::exif, exif::kPixelWidth, change.width);
  FollowSize(exif, Id::exif, exif::kPixelHeight, change.height);
  FollowSize(exif, Id::interop, exif::kRelatedWidth, change.width);
  FollowSize(exif, Id::interop, exif::kRelatedHeight, change.height);
}

double FirstNumber(const ExifBlock& exif, uint16_t tag) {
  const std::vector<double> numbers = exif.Numbers(Id::exif, tag);
  return numbers.empty() || !std::isfinite(numbers[0]) ? 0 : numbers[0];
}

/// A step of one new pixel along an axis is a vector in old pixels; its length on the sensor gives
/// the new number of pixels for each unit.
void FollowFocalPlane(ExifBlock& exif, const PixelChange& change) {
  const double oldX = FirstNumber(exif, exif::kFocalPlaneX);
  const double oldY = FirstNumber(exif, exif::kFocalPlaneY);
  const auto& m = change.toNew;
  const double area = m[0] * m[4] - m[1] * m[3];
  if (!(oldX > 0) || !(oldY > 0) || area == 0) return;
  const double newX = std::abs(area) / std::hypot(m[4] / oldX, m[3] / oldY);
  const double newY = std::abs(area) / std::hypot(m[1] / oldX, m[0] / oldY);
  constexpr double kNothing = 1e-12;
  if (std::abs(newX / oldX - 1) > kNothing) exif.SetRational(Id::exif, exif::kFocalPlaneX, newX);
  if (std::abs(newY / oldY - 1) > kNothing) exif.SetRational(Id::exif, exif::kFocalPlaneY, newY);
}

/// Place of a JPEG picture from `from` on; the number of bytes if there is none.
size_t FindJpeg(std::span<const uint8_t> bytes, size_t from) {
  constexpr std::array<uint8_t, 3> kStart = {0xFF, 0xD8, 0xFF};
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  return static_cast<size_t>(std::search(first, bytes.end(), kStart.begin(), kStart.end()) -
                             bytes.begin());
}

/// True if the first segment is one that begins a picture and a further one follows it: the three
/// bytes that start a picture also occur by chance.
bool IsJpegHead(std::span<const uint8_t> bytes) {
  constexpr size_t kMarker = 3, kLength = 4, kFirstSegment = 4;
  constexpr uint8_t kFrame = 0xC0, kTables = 0xC4, kQuantization = 0xDB, kInterval = 0xDD,
                    kFirstApp = 0xE0, kLastApp = 0xEF, kComment = 0xFE;
  if (bytes.size() < kFirstSegment + 2) return false;
  const uint8_t marker = bytes[kMarker];
  const bool isKnown = (marker >= kFrame && marker <= kTables) || marker == kQuantization ||
                       marker == kInterval || (marker >= kFirstApp && marker <= kLastApp) ||
                       marker == kComment;
  const size_t length = size_t{bytes[kLength]} << 8 | bytes[kLength + 1];
  const size_t next = kFirstSegment + length;
  return isKnown && length >= 2 && next < bytes.size() && bytes[next] == 0xFF;
}

/// True if the block holds a JPEG picture besides its thumbnail.
bool HasPreview(const ExifBlock& exif) {
  const std::span<const uint8_t> bytes = exif.Bytes();
  const auto thumbnail = exif.Thumbnail();
  const size_t first = thumbnail.empty() ? 0 : static_cast<size_t>(thumbnail.data() - bytes.data());
  for (size_t at = FindJpeg(bytes, 0); at < bytes.size(); at = FindJpeg(bytes, at + 1)) {
    const bool isThumbnail = at >= first && at < first + thumbnail.size();
    if (!isThumbnail && IsJpegHead(bytes.subspan(at))) return true;
  }
  return false;
}

}  // namespace

void FollowThumbnail(ExifBlock& exif, const PixelChange& change, Changes& changes) {
  if (!exif.HasThumbnail()) {
    exif.RemoveThumbnail();
  } else if (!change.thumbnail.empty()) {
    exif.SetThumbnail(change.thumbnail);
  } else {
    exif.RemoveThumbnail();
    changes.Lose(LossKind::thumbnail, "the thumbnail",
                 "it shows the old picture and no new one was made");
  }
}

void FollowPixelsInExif(ExifBlock& exif, const PixelChange& change, Changes& changes) {
  if (!change.keepsOrientation) exif.SetUpright();
  const bool statesResolution =
      exif.Has(Id::main, exif::kResolutionX) || exif.Has(Id::main, exif::kResolutionY);
  if (statesResolution) SetResolution(exif, change.resolution);
  if (!change.pixelsChanged) return;
  FollowThumbnail(exif, change, changes);
  FollowSizes(exif, change);
  if (change.placesChanged) {
    FollowArea(exif, exif::kSubjectArea, change);
    FollowArea(exif, exif::kSubjectLocation, change);
    FollowFocalPlane(exif, change);
  }
  constexpr uint16_t kUncalibrated = 65535;
  if (change.becameGray && exif.Has(Id::exif, exif::kColorSpace)) {
    exif.SetWords(Id::exif, exif::kColorSpace, std::span(&kUncalibrated, 1));
  }
  // What lies outside of the maker note belongs to it, too: no tag of the format leads there.
  if (exif.Has(Id::exif, exif::kMakerNote) && HasPreview(exif)) {
    changes.Lose(LossKind::makerNote, "the preview in the maker note",
                 "it shows the old picture; --strip-maker-note removes it");
  }
}

bool RepairDamagedExif(ExifBlock& exif, const PixelChange& change) {
  const bool isUpright = change.keepsOrientation || exif.SetUpright();
  if (!change.pixelsChanged) return true;
  exif.EraseThumbnail();
  return isUpright && FindJpeg(exif.Bytes(), 0) == exif.Bytes().size();
}

}  // namespace rasterkit::detail
