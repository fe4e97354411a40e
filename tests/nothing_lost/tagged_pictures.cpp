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

/// Arguments of exiftool, one per line: it starts slowly, so that one run changes all files.
std::string TagArguments(const TempFolder& folder, const std::string& extension, int orientation) {
  const std::string number = std::to_string(orientation);
  std::string lines =
      "-overwrite_original\n-IFD0:Make=TestMake\n-IFD0:Model=TestModel\n"
      "-ExifIFD:DateTimeOriginal=2020:01:02 03:04:05\n"
      "-ExifIFD:ExifImageWidth=120\n-ExifIFD:ExifImageHeight=80\n"
      "-ExifIFD:SubjectArea=22 12 5 5\n"
      "-GPSLatitude=48.5\n-GPSLatitudeRef=N\n-GPSLongitude=11.25\n-GPSLongitudeRef=E\n"
      "-GPSAltitude=520\n-GPSAltitudeRef=0\n"
      "-XMP-dc:Title=A title\n-XMP-tiff:ImageWidth=120\n-XMP-tiff:ImageHeight=80\n"
      "-IPTC:Caption-Abstract=A caption\n"
      "-XResolution=300\n-YResolution=300\n-ResolutionUnit=inches\n";
  lines += "-IFD0:Orientation#=" + number + "\n-XMP-tiff:Orientation#=" + number + "\n";
  if (extension == "jpg") {
    lines += "-Comment=A comment\n-ThumbnailImage<=" + (folder / "thumbnail.jpg") + "\n";
  }
  if (extension == "png") lines += "-PNG:Comment=A comment\n";
  return lines + (folder / TaggedName(orientation, extension)) + "\n-execute\n";
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
  std::string arguments;
  for (const char* extension : {"jpg", "png", "tif"}) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
      Write(folder / TaggedName(orientation, extension), raster, extension);
      arguments += TagArguments(folder, extension, orientation);
    }
  }
  WriteText(folder / "arguments", arguments);
  OutputOf("exiftool -@ " + Quoted(folder / "arguments") + " -common_args -q -q");
  std::filesystem::remove(folder / "arguments");
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
