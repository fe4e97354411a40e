#include <rasterkit/pictures/load_bitmap.h>
#include <rasterkit/pictures/reading/picture_file.h>

namespace rasterkit {

std::unique_ptr<TBitmap> LoadBitmap(const std::string& fileName, Isolation isolation,
                                    CodecReport* report) {
  PictureReading reading;
  reading.isolation = isolation;
  LoadedFrame picture;
  ReadPicture(picture, fileName, reading);
  auto bitmap = std::make_unique<TBitmap>(TakeVisibleRows(picture));
  if (report) {
    report->warnings.insert(report->warnings.end(), picture.warnings.begin(),
                            picture.warnings.end());
  }
  return bitmap;
}

}  // namespace rasterkit
