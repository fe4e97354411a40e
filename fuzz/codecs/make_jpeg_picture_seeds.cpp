// Writes the seeds of the fuzzer of JPEG files with everything that they state: one small file per
// kind.
// usage: make_jpeg_picture_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>

#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"

using namespace rasterkit;
using namespace rasterkit::test;

namespace {

using ByteList = std::vector<uint8_t>;

void Save(const std::string& file, const ByteList& bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out || bytes.empty()) std::fprintf(stderr, "%s was not written\n", file.c_str());
}

ByteList Written(const Pixels& pixels, const PictureWriting& writing = {}) {
  TMemoryStream stream;
  WriteJpeg(pixels, writing, stream);
  return stream.TakeBytes();
}

PictureWriting Everything() {
  PictureWriting writing;
  Metadata& metadata = writing.metadata;
  metadata.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3,
                   0,   1,   0,  0, 0, 6, 0, 0, 0, 0, 0,    0, 0};
  metadata.xmp = "<x xmpNote:HasExtendedXMP='0123456789ABCDEF0123456789ABCDEF'/>";
  metadata.extendedXmp = "<x:xmpmeta>more</x:xmpmeta>";
  metadata.iptc = {0x1C, 2, 5, 0, 1, 'a'};
  metadata.profile = RgbProfile();
  metadata.comments = {"a comment"};
  metadata.jpegSegments = {{0xE5, {1, 2, 3}}};
  metadata.resolution = {300, 300};
  metadata.hasJfif = true;
  return writing;
}

/// An index of two pictures, of which the second one stands at the end of the file.
ByteList WithPreview(const ByteList& picture, const ByteList& preview) {
  constexpr size_t kSegmentBytes = 66, kMarkAt = 10;
  ByteList index = {0xFF, 0xE2, 0,    64, 'M', 'P', 'F', 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 1,
                    0,    2,    0xB0, 7,  0,   32,  0,   0, 0,   26,  0,  0, 0, 0, 0, 0, 0};
  const auto number = [&](size_t value) {
    for (int i = 0; i < 4; i++) index.push_back(static_cast<uint8_t>(value >> 8 * i));
  };
  const size_t size = picture.size() + kSegmentBytes;
  for (const size_t value : {size_t{0x030000}, size, size_t{0}, size_t{0}, size_t{0x010001},
                             preview.size(), size - kMarkAt, size_t{0}}) {
    number(value);
  }
  ByteList file = picture;
  file.insert(file.begin() + 2, index.begin(), index.end());
  file.insert(file.end(), preview.begin(), preview.end());
  return file;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const auto save = [&](const char* name, const ByteList& bytes) {
    Save(std::string(arguments[1]) + "/" + name + ".jpg", bytes);
  };
  const Raster colors = GradientRaster(pf24bit, 20, 18);
  const Raster grays = GrayRaster(9, 7);
  save("gray", Written(grays.Clone()));
  save("everything", Written(colors.Clone(), Everything()));
  const ByteList plain = Written(colors.Clone());
  save("preview", WithPreview(plain, Written(grays.Clone())));
  ByteList video = plain;
  for (const char c : {'\0', '\0', '\0', '\x18', 'f', 't', 'y', 'p', 'm', 'p', '4', '2'}) {
    video.push_back(static_cast<uint8_t>(c));
  }
  save("video", video);
  ByteList stray = plain;
  stray.insert(stray.begin() + 2, {1, 2, 3});
  save("stray", stray);
  PictureWriting progressive;
  JpegForm form;
  form.progressive = true;
  form.restartInterval = 2;
  progressive.form = form;
  save("progressive", Written(colors.Clone(), progressive));
  PixelLayout layout;
  layout.bands = 4;
  layout.model = ColorModel::cmyk;
  Samples inks(layout, 9, 8);
  for (int y = 0; y < inks.Height(); y++) {
    for (size_t i = 0; i < inks.Stride(); i++) inks.Row(y)[i] = static_cast<uint8_t>(7 * i);
  }
  save("inks", Written(std::move(inks)));
  return 0;
}
