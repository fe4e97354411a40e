#include "tool/reports/exif_dates.h"

#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::tool {

std::string IsoDate(std::string text) {
  constexpr size_t kLength = 19, kTimePlace = 10;
  if (text.size() != kLength || text[4] != ':' || text[7] != ':' || text[kTimePlace] != ' ') {
    return {};
  }
  try {
    ParseExifDateTime(text);
  } catch (const Error&) {
    return {};
  }
  text[4] = text[7] = '-';
  text[kTimePlace] = 'T';
  return text;
}

std::string DateOf(const rasterkit::ExifBlock& block) {
  constexpr uint16_t kDateTimeOriginal = 36867, kDateTime = 306;
  const std::string taken = IsoDate(block.Text(ExifDirectoryId::exif, kDateTimeOriginal));
  return taken.empty() ? IsoDate(block.Text(ExifDirectoryId::main, kDateTime)) : taken;
}

}  // namespace rasterkit::tool
