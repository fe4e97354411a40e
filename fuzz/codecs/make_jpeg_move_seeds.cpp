// Writes the seeds of the fuzzer of moved JPEG blocks: a move, then a small file.
// usage: make_jpeg_move_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>

#include "tests/support/test_pictures.h"
#include "tests/support/thumbnail_exif.h"

using namespace rasterkit;
using namespace rasterkit::test;

namespace {

using ByteList = std::vector<uint8_t>;

/// The move in the form of the fuzzer: 1 more than width and height, so that -1 is possible.
ByteList MoveBytes(int left, int top, int width, int height, int flags) {
  ByteList bytes;
  for (const int number : {left, top, width + 1, height + 1}) {
    bytes.push_back(static_cast<uint8_t>(number >> 8));
    bytes.push_back(static_cast<uint8_t>(number));
  }
  bytes.push_back(static_cast<uint8_t>(flags));
  return bytes;
}

void Save(const std::string& file, ByteList bytes, const ByteList& picture) {
  bytes.insert(bytes.end(), picture.begin(), picture.end());
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", file.c_str());
}

ByteList Written(const Pixels& pixels, const PictureWriting& writing = {}) {
  TMemoryStream stream;
  WriteJpeg(pixels, writing, stream);
  return stream.TakeBytes();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  constexpr int kWhole = 8, kThumbnail = 16, kQuarterTurn = 6, kHalfTurn = 3, kTransverse = 7;
  const auto save = [&](const char* name, const ByteList& move, const ByteList& picture) {
    Save(std::string(arguments[1]) + "/" + name, move, picture);
  };
  const auto whole = [](int flags) { return MoveBytes(0, 0, 0, 0, kWhole | flags); };
  const Raster colors = GradientRaster(pf24bit, 37, 33);
  save("gray", whole(kQuarterTurn), Written(GrayRaster(17, 9)));
  save("crop", MoveBytes(16, 16, 13, 9, kTransverse), Written(colors.Clone()));

  PictureWriting writing;
  writing.chromaX = writing.chromaY = 2;
  writing.metadata.hasJfif = true;
  JpegForm form;
  form.progressive = true;
  form.restartInterval = 2;
  writing.form = form;
  const ByteList thumbnail = EncodeJpeg(GrayRaster(8, 8), 50);
  const ThumbnailExif exif = ExifWithThumbnail(std::string(thumbnail.begin(), thumbnail.end()));
  constexpr size_t kExifName = 6;
  writing.metadata.exif.assign(exif.content.begin() + kExifName, exif.content.end());
  save("progressive", whole(kQuarterTurn | kThumbnail), Written(colors.Clone(), writing));

  form.progressive = false;
  writing.form = form;
  save("restarts", whole(kHalfTurn | kThumbnail), Written(colors.Clone(), writing));

  form.arithmetic = true;
  writing.form = form;
  save("arithmetic", whole(kQuarterTurn), Written(colors.Clone(), writing));

  PixelLayout layout;
  layout.bands = 4;
  layout.model = ColorModel::cmyk;
  Samples inks(layout, 19, 11);
  for (int y = 0; y < inks.Height(); y++) {
    for (size_t i = 0; i < inks.Stride(); i++) inks.Row(y)[i] = static_cast<uint8_t>(7 * i);
  }
  PictureWriting inkWriting;
  inkWriting.metadata.exif = writing.metadata.exif;
  save("inks", whole(kTransverse | kThumbnail), Written(std::move(inks), inkWriting));
  return 0;
}
