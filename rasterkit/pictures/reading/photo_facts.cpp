#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {
namespace {

/// GetJpgRotation for bytes in memory.
int RotationQuery(std::span<const uint8_t> jpeg) {
  TImageData data;
  TSpanStream file(jpeg);
  return data.ReadJpegSections(file) && data.ExifData ? data.ExifData->Rotation : 0;
}

}  // namespace

PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg) {
  PhotoFacts facts = ReadExifFacts(FindExif(jpeg));
  // ReadRawOrientation looks into every EXIF block of the header.
  TSpanStream file(jpeg);
  facts.orientation = ReadRawOrientation(file);
  try {
    facts.rotation = RotationQuery(jpeg);
  } catch (const Error& error) {
    // The picture itself may be intact.
    facts.warnings.push_back("EXIF: " + error.Reason());
  }
  return facts;
}

PhotoFacts ReadExifFacts(std::span<const uint8_t> exif) {
  if (exif.empty()) return {};
  return FactsOf(ExifBlock({exif.begin(), exif.end()}));
}

}  // namespace rasterkit
