#include <array>
#include <string_view>
#include <utility>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/pictures/strip_metadata.h>

namespace rasterkit::detail {
namespace {

constexpr uint16_t kGpsPointer = 0x8825;

/// The properties of XMP that stand for the tags of EXIF's GPS directory.
constexpr std::string_view kGpsProperties[] = {"GPSVersionID",       "GPSLatitude",
                                               "GPSLongitude",       "GPSAltitudeRef",
                                               "GPSAltitude",        "GPSTimeStamp",
                                               "GPSSatellites",      "GPSStatus",
                                               "GPSMeasureMode",     "GPSDOP",
                                               "GPSSpeedRef",        "GPSSpeed",
                                               "GPSTrackRef",        "GPSTrack",
                                               "GPSImgDirectionRef", "GPSImgDirection",
                                               "GPSMapDatum",        "GPSDestLatitude",
                                               "GPSDestLongitude",   "GPSDestBearingRef",
                                               "GPSDestBearing",     "GPSDestDistanceRef",
                                               "GPSDestDistance",    "GPSProcessingMethod",
                                               "GPSAreaInformation", "GPSHPositioningError",
                                               "GPSDifferential"};

void StripGps(ExifBlock& exif) {
  for (const TagValue& value : exif.All(ExifDirectoryId::gps)) {
    exif.Remove(ExifDirectoryId::gps, value.tag);
  }
  exif.Remove(ExifDirectoryId::main, kGpsPointer);
}

/// Those of Photoshop and of XMP.
void StripOtherThumbnails(Metadata& metadata) {
  ImageResources resources(metadata.photoshop);
  const bool hadThumbnail = resources.Remove(image_resource::kThumbnail);
  if (resources.Remove(image_resource::kOldThumbnail) || hadThumbnail) {
    metadata.photoshop = resources.Bytes();
  }
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    if (packet.Remove(xmp_name::kXmp, "Thumbnails")) *text = packet.Text();
  }
}

void StripGps(std::string& xmp) {
  XmpPacket packet(xmp);
  for (const std::string_view name : kGpsProperties) packet.Remove(xmp_name::kExif, name);
  // A position that cannot be found must not stay.
  xmp = packet.IsDamaged() ? std::string() : packet.Text();
}

/// An EXIF block that states a resolution states the new one.
void SetResolution(Metadata& metadata, const Resolution& resolution) {
  constexpr uint16_t kX = 282, kY = 283, kUnit = 296, kInch = 2;
  metadata.resolution = resolution;
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::move(metadata.exif));
  if (!exif.IsDamaged() && exif.Has(ExifDirectoryId::main, kX)) {
    exif.SetRational(ExifDirectoryId::main, kX, resolution.x);
    exif.SetRational(ExifDirectoryId::main, kY, resolution.y);
    exif.SetWords(ExifDirectoryId::main, kUnit, std::array{kInch});
  }
  metadata.exif = exif.TakeBytes();
}

void StripExif(std::vector<uint8_t>& bytes, const MetadataEdit& edit) {
  ExifBlock exif(std::move(bytes));
  bytes.clear();
  // A damaged block cannot be changed: what it has could stay.
  if (exif.IsDamaged()) return;
  if (edit.stripGps) StripGps(exif);
  if (edit.stripThumbnail) exif.RemoveThumbnail();
  bytes = exif.TakeBytes();
}

}  // namespace

void StripMetadata(Metadata& metadata, const MetadataEdit& edit) {
  if (edit.resolution) SetResolution(metadata, *edit.resolution);
  if (edit.stripAll) {
    Metadata kept;
    kept.profile = metadata.profile;
    kept.resolution = metadata.resolution;
    kept.hasJfif = metadata.hasJfif;
    metadata = std::move(kept);
    return;
  }
  const bool touchesExif = edit.stripGps || edit.stripThumbnail;
  if (touchesExif && !metadata.exif.empty()) StripExif(metadata.exif, edit);
  if (edit.stripGps && !metadata.xmp.empty()) StripGps(metadata.xmp);
  if (edit.stripGps && !metadata.extendedXmp.empty()) StripGps(metadata.extendedXmp);
  if (edit.stripThumbnail) StripOtherThumbnails(metadata);
}

}  // namespace rasterkit::detail
