#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// photo_facts PHOTO.jpg COPY.jpg
int main(int, char** arguments) {
  int degrees = 0;
  if (rk::GetJpgRotation(arguments[1], degrees)) std::cout << "turn by " << degrees << " degrees\n";

  rk::TImageData metadata;  // a new object for each file
  if (!metadata.ReadJpegFile(arguments[1])) {
    std::cout << "no metadata\n";
    return 0;
  }
  if (metadata.GPSData != nullptr)
    std::cout << "latitude " << metadata.GPSData->Latitude.Koord() << ", longitude "
              << metadata.GPSData->Longitude.Koord() << "\n";

  // Newly encoded pixels with the metadata of the photo.
  rk::TJPEGImage photo;
  photo.LoadFromFile(arguments[1]);
  photo.SetCompressionQuality(80);
  photo.Compress();
  metadata.WriteExifJpeg(photo, arguments[2]);
}
