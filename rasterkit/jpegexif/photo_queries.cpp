#include <array>

#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// Three integers between colons.
std::array<int32_t, 3> ThreeNumbers(const std::string& text) {
  const std::string rest = StrAfter(text, ":");
  return {StrToInt(StrBefore(text, ":")), StrToInt(StrBefore(rest, ":")),
          StrToInt(StrAfter(rest, ":"))};
}

}  // namespace

bool GetJpgRotation(const std::string& FileName, int& Rotation) {
  Rotation = 0;
  TImageData image;
  if (image.ReadJpegFile(FileName) && image.ExifData) Rotation = image.ExifData->Rotation;
  return Rotation >= 1;
}

bool detail::RotationOfPhoto(std::span<const uint8_t> photo, const std::string& fileName,
                             int& rotation) {
  rotation = 0;
  TImageData image;
  TSpanStream stream(photo);
  try {
    if (image.ReadJpegSections(stream) && image.ExifData) rotation = image.ExifData->Rotation;
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
  return rotation >= 1;
}

bool GetJpgDate(const std::string& FileName, TDateTime& Date) {
  Date = 0;
  TImageData image;
  if (!image.ReadJpegFile(FileName) || !image.ExifData) return false;
  try {
    Date = ParseExifDateTime(image.ExifData->DateTime);
  } catch (Error& error) {
    error.AttachFile(FileName);
    throw;
  }
  return true;
}

TDateTime ParseExifDateTime(const std::string& text) {
  const auto [year, month, day] = ThreeNumbers(StrBefore(text, " "));
  const auto [hour, minute, second] = ThreeNumbers(StrAfter(text, " "));
  return ComposeDateTime(EncodeDate(year, month, day), EncodeTime(hour, minute, second, 0));
}

}  // namespace rasterkit
