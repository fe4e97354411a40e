#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include <rasterkit/metadata/mapped_area.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_numbers.h>
#include <rasterkit/metadata/xmp_follow.h>

namespace rasterkit {
namespace {

using namespace detail;
using xmp_name::kExif;
using xmp_name::kTiff;

/// Properties that hold only for the pixels they were written with.
struct StaleKind {
  std::string_view uri;
  /// Empty for all of the namespace.
  std::string_view name;
  /// True for what describes places only: it holds when colors alone changed.
  bool isOfPlaces;
  LossKind loss;
  const char* what;
};

constexpr std::string_view kCamera = "http://ns.google.com/photos/1.0/camera/";
constexpr const char* kPanorama = "panorama properties (XMP)";
constexpr const char* kGainMap = "gain-map properties (XMP)";
constexpr const char* kMotion = "motion-photo properties (XMP)";
constexpr const char* kDepth = "depth map (XMP)";

constexpr StaleKind kStaleKinds[] = {
    {"http://ns.google.com/photos/1.0/panorama/", "", true, LossKind::xmp, kPanorama},
    {"http://ns.adobe.com/hdr-gain-map/1.0/", "", false, LossKind::xmp, kGainMap},
    {"http://ns.apple.com/HDRGainMap/1.0/", "", false, LossKind::xmp, kGainMap},
    {"http://ns.google.com/photos/1.0/container/", "", false, LossKind::xmp,
     "list of embedded pictures (XMP)"},
    {kCamera, "MotionPhoto", false, LossKind::xmp, kMotion},
    {kCamera, "MotionPhotoVersion", false, LossKind::xmp, kMotion},
    {kCamera, "MotionPhotoPresentationTimestampUs", false, LossKind::xmp, kMotion},
    {kCamera, "MicroVideo", false, LossKind::xmp, kMotion},
    {kCamera, "MicroVideoVersion", false, LossKind::xmp, kMotion},
    {kCamera, "MicroVideoOffset", false, LossKind::xmp, kMotion},
    {kCamera, "MicroVideoPresentationTimestampUs", false, LossKind::xmp, kMotion},
    {"http://ns.google.com/photos/1.0/depthmap/", "", true, LossKind::hiddenPictures, kDepth},
    {"http://ns.google.com/photos/dd/1.0/device/", "", true, LossKind::hiddenPictures, kDepth},
    {"http://ns.google.com/photos/1.0/image/", "", false, LossKind::hiddenPictures,
     "second picture (XMP)"},
};

class PacketFollower {
 public:
  PacketFollower(std::string& text, const PixelChange& change, Changes& changes)
      : text_(text), packet_(text), change_(change), changes_(changes) {}

  void Run() {
    if (packet_.IsDamaged()) {
      if (change_.pixelsChanged) Drop();
      return;
    }
    if (!change_.keepsOrientation) packet_.Set(kTiff, "Orientation", "1");
    FollowResolution();
    if (change_.pixelsChanged) {
      FollowSizes();
      RemoveStale();
      if (packet_.Remove(xmp_name::kXmp, "Thumbnails")) changes_.Note("thumbnail in XMP removed");
    }
    if (change_.placesChanged) {
      FollowSubject("SubjectArea");
      FollowSubject("SubjectLocation");
      FollowFocalPlane();
      FollowRegionsInXmp(packet_, change_, changes_);
    }
    if (packet_.IsChanged()) text_ = packet_.Text();
  }

 private:
  /// The orientation of a packet that cannot be read may contradict the new pixels.
  void Drop() {
    changes_.Lose(LossKind::xmp, fmt::format("XMP packet of {} bytes", text_.size()),
                  "it is damaged and cannot follow the changed pixels");
    text_.clear();
  }

  std::optional<double> Number(std::string_view uri, std::string_view name) const {
    const auto value = packet_.Get(uri, name);
    return value ? XmpNumber(*value) : std::nullopt;
  }

  /// The same number, however it is written, stays as it is.
  void SetNumber(std::string_view uri, std::string_view name, double value,
                 const std::string& text) {
    const auto old = Number(uri, name);
    if (!old || std::abs(*old - value) > 1e-6 * std::abs(value)) packet_.Set(uri, name, text);
  }

  void FollowResolution() {
    if (!change_.resolution.IsKnown()) return;
    constexpr double kCentimetersPerInch = 2.54;
    const bool isInCentimeters = packet_.Get(kTiff, "ResolutionUnit") == "3";
    const double perUnit = isInCentimeters ? kCentimetersPerInch : 1;
    const double x = change_.resolution.x / perUnit, y = change_.resolution.y / perUnit;
    SetNumber(kTiff, "XResolution", x, XmpFraction(x));
    SetNumber(kTiff, "YResolution", y, XmpFraction(y));
  }

  void FollowSizes() {
    const std::string width = std::to_string(change_.width);
    const std::string height = std::to_string(change_.height);
    packet_.Set(kTiff, "ImageWidth", width);
    packet_.Set(kTiff, "ImageLength", height);
    packet_.Set(kExif, "PixelXDimension", width);
    packet_.Set(kExif, "PixelYDimension", height);
  }

  void RemoveStale() {
    const char* said = nullptr;
    for (const StaleKind& kind : kStaleKinds) {
      if (kind.isOfPlaces && !change_.placesChanged) continue;
      if (!packet_.Remove(kind.uri, kind.name) || said == kind.what) continue;
      said = kind.what;
      changes_.Lose(kind.loss, kind.what, "the pixels changed");
    }
  }

  /// A list of a center, and a diameter or two sides.
  void FollowSubject(std::string_view name) {
    const std::vector<std::string> texts = packet_.List(kExif, name);
    std::vector<double> numbers;
    for (const std::string& text : texts) {
      if (const auto number = XmpNumber(text)) numbers.push_back(*number);
    }
    if (!packet_.Has(kExif, name)) return;
    if (numbers.size() != texts.size() || numbers.size() < 2 || numbers.size() > 4) {
      packet_.Remove(kExif, name);
      changes_.Note(fmt::format("{} in XMP is damaged and was removed", name));
      return;
    }
    PictureArea area{numbers[0], numbers[1], 0, 0};
    if (numbers.size() == 3) area.width = area.height = numbers[2];
    if (numbers.size() == 4) {
      area.width = numbers[2];
      area.height = numbers[3];
    }
    const auto mapped = MapArea(change_, area);
    if (!mapped) {
      packet_.Remove(kExif, name);
      changes_.Note(fmt::format("{} outside the picture removed", name));
      return;
    }
    const auto whole = [](double value) { return fmt::format("{:.0f}", value); };
    std::vector<std::string> values = {whole(mapped->centerX), whole(mapped->centerY)};
    if (numbers.size() == 3) values.push_back(whole(std::max(mapped->width, mapped->height)));
    if (numbers.size() == 4) {
      values.push_back(whole(mapped->width));
      values.push_back(whole(mapped->height));
    }
    packet_.SetList(kExif, name, values);
  }

  /// Pixels per length on the sensor.
  void FollowFocalPlane() {
    const auto x = Number(kExif, "FocalPlaneXResolution");
    const auto y = Number(kExif, "FocalPlaneYResolution");
    if (!x || !y) return;
    const AxisScale scale = ScaleOf(change_);
    const double newX = (scale.isTurned ? *y : *x) * scale.x;
    const double newY = (scale.isTurned ? *x : *y) * scale.y;
    SetNumber(kExif, "FocalPlaneXResolution", newX, XmpFraction(newX));
    SetNumber(kExif, "FocalPlaneYResolution", newY, XmpFraction(newY));
  }

  std::string& text_;
  XmpPacket packet_;
  const PixelChange& change_;
  Changes& changes_;
};

}  // namespace

void FollowPixelsInXmp(std::string& xmp, std::string& extended, const PixelChange& change,
                       Changes& changes) {
  const bool hadMore = !extended.empty();
  for (std::string* text : {&xmp, &extended}) {
    if (!text->empty()) PacketFollower(*text, change, changes).Run();
  }
  // Without its extended part the packet must not announce one.
  if (hadMore && extended.empty() && !xmp.empty()) {
    XmpPacket packet(xmp);
    if (packet.Remove(xmp_name::kXmpNote, "HasExtendedXMP")) xmp = packet.Text();
  }
}

}  // namespace rasterkit
