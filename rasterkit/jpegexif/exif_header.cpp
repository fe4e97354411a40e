#include <rasterkit/jpegexif/exif_header.h>
#include <rasterkit/jpegexif/image_data.h>

namespace rasterkit::detail {

bool IsExifSection(std::string_view data) {
  constexpr size_t kLengthBytes = 2;
  return data.size() > kLengthBytes && data.substr(kLengthBytes).starts_with(ValidHeader);
}

bool TakeByteOrder(std::string_view data, TEndInd& order) {
  const uint8_t mark = ByteAt(data, kTiffPos);
  if (mark != ByteAt(data, kTiffPos + 1) || (mark != 'I' && mark != 'M')) return false;
  order.MotorolaOrder = mark == 'M';
  return true;
}

int64_t MainDirectoryPos(std::string_view data, const TEndInd& order) {
  constexpr int64_t kTiffHeaderBytes = 8;
  const int64_t offset = order.Get32u(data, kTiffPos + 4);
  return kTiffPos + (offset != 0 ? offset : kTiffHeaderBytes);
}

}  // namespace rasterkit::detail
