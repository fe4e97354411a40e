// Reads the sections, the comment and the orientation of any bytes as a JPEG file.

#include <cstdint>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

namespace {

void ReadSections(rasterkit::TSpanStream& stream) {
  rasterkit::TImageData image;
  try {
    const bool found = image.ReadJpegSections(stream);
    Require(found == (image.HasMetaData() || image.OthersCount > 0));
    Require(stream.Position() <= stream.Size());
  } catch (const rasterkit::ConversionError&) {
    // An invalid GPS position.
  }
  Require(image.SectionCnt >= 0 && image.SectionCnt <= 20);
  Require(image.OthersCount >= 0 && image.OthersCount <= 5);
  image.GetComment();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  rasterkit::TSpanStream stream({data, size});
  ReadSections(stream);
  stream.SetPosition(0);
  const std::optional<int> orientation = rasterkit::ReadRawOrientation(stream);
  Require(!orientation || (*orientation >= 1 && *orientation <= 8));
  return 0;
}
