#include "tests/nothing_lost/tagged_pictures.h"

#include <filesystem>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>

#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/gdal_peer.h"

namespace rasterkit::test {
namespace {

constexpr double kDpi = 300;

void Write(const std::string& file, const Raster& raster, const std::string& extension) {
  TMemoryStream stream;
  EncodeOptions options;
  options.quality = 92;
  FindCodecOfExtension(extension)->encode(raster, stream, options);
  WriteBytes(file, stream.TakeBytes());
}

std::string TagArguments() {
  return " -IFD0:Make=TestMake -IFD0:Model=TestModel"
         " '-ExifIFD:DateTimeOriginal=2020:01:02 03:04:05'"
         " -ExifIFD:ExifImageWidth=120 -ExifIFD:ExifImageHeight=80"
         " '-ExifIFD:SubjectArea=22 12 5 5'"
         " -GPSLatitude=48.5 -GPSLatitudeRef=N -GPSLongitude=11.25 -GPSLongitudeRef=E"
         " -GPSAltitude=520 -GPSAltitudeRef=0"
         " '-XMP-dc:Title=A title' -XMP-tiff:ImageWidth=120 -XMP-tiff:ImageHeight=80"
         " '-IPTC:Caption-Abstract=A caption'"
         " -XResolution=300 -YResolution=300 -ResolutionUnit=inches";
}

void AddTags(const TempFolder& folder, const std::string& extension, int orientation) {
  const std::string number = std::to_string(orientation);
  std::string command = "exiftool -q -q -overwrite_original" + TagArguments();
  command += " -IFD0:Orientation#=" + number + " -XMP-tiff:Orientation#=" + number;
  if (extension == "jpg") {
    command += " '-Comment=A comment' '-ThumbnailImage<=" + (folder / "thumbnail.jpg") + "'";
  }
  if (extension == "png") command += " '-PNG:Comment=A comment'";
  OutputOf(command + " " + Quoted(folder / TaggedName(orientation, extension)));
}

}  // namespace

std::string TaggedName(int orientation, std::string_view extension) {
  std::string name = "o";
  name += std::to_string(orientation);
  name += '.';
  name += extension;
  return name;
}

void WriteTaggedPictures(const TempFolder& folder) {
  Raster raster = GradientRaster(pf24bit, kTaggedWidth, kTaggedHeight);
  raster.resolution = {kDpi, kDpi};
  raster.profile = RgbProfile();
  Write(folder / "thumbnail.jpg", GradientRaster(pf24bit, 40, 26), "jpg");
  Write(folder / "o1.bmp", raster, "bmp");
  for (const char* extension : {"jpg", "png", "tif"}) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
      Write(folder / TaggedName(orientation, extension), raster, extension);
      AddTags(folder, extension, orientation);
    }
  }
  std::filesystem::remove(folder / "thumbnail.jpg");
}

std::vector<std::string> TaggedPictures(const TempFolder& folder, const std::string& extension) {
  std::vector<std::string> files;
  for (int orientation = 1; orientation <= (extension == "bmp" ? 1 : 8); ++orientation) {
    files.push_back(folder / TaggedName(orientation, extension));
  }
  return files;
}

}  // namespace rasterkit::test
