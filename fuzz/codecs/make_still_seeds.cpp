// Writes the seeds of the GIF and WebP fuzzers: one small file per kind.
// usage: make_still_seeds GIF-FOLDER WEBP-FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/gif_file.h"
#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

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

void SaveGifs(const std::string& folder) {
  const auto save = [&](const std::string& name, const GifFile& file) {
    Save(folder + "/" + name + ".gif", file.Bytes());
  };
  for (const int bits : {1, 2, 4, 8}) save("bits" + std::to_string(bits), PlainGif(19, 7, bits));
  GifFile file = PlainGif(13, 21, 3);
  file.pictures[0].interlaced = true;
  save("interlaced", file);
  file.pictures[0].stopAfter = 60;
  save("interlaced_short", file);
  file = PlainGif(9, 5, 4);
  file.screenWidth = 23;
  file.screenHeight = 17;
  file.pictures[0].left = file.pictures[0].top = 6;
  save("inset", file);
  file.pictures[0].transparent = 3;
  save("inset_transparent", file);
  file.pictures[0].palette = GrayPalette(16);
  save("own_palette", file);
  file.pictures.push_back(file.pictures[0]);
  save("two_pictures", file);
  file.palette = HPALETTE();
  file.extensions = GifExtension(0xFE, {'c', 'o', 'm', 'm', 'e', 'n', 't'});
  save("comment", file);
  save("large", PlainGif(90, 61));
}

ByteList Joined(std::initializer_list<ByteList> parts) {
  ByteList whole;
  for (const ByteList& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

void SaveWebps(const std::string& folder) {
  const auto save = [&](const std::string& name, const ByteList& bytes) {
    Save(folder + "/" + name + ".webp", bytes);
  };
  const Raster opaque = GradientRaster(pf24bit, 20, 18);
  Raster withAlpha = GradientRaster(pf32bit, 20, 18);
  withAlpha.Row(0)[3] = 17;
  std::mt19937 random(1);
  const Raster noise = RandomRaster(pf24bit, 20, 18, random);
  save("lossless", LosslessWebp(opaque));
  save("lossless_alpha", LosslessWebp(withAlpha));
  save("lossless_noise", LosslessWebp(noise));
  save("lossless_few_colors", LosslessWebp(FewColorsRaster(pf24bit, 20, 18, 5, random)));
  save("lossy", LossyWebp(opaque));
  save("lossy_alpha", LossyWebp(withAlpha));
  save("lossy_noise", LossyWebp(noise, 20));
  const ByteList profile = *RgbProfile();
  const ByteList exif = {'I', 'I', '*', 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  save("metadata", WebpFile(Joined({WebpHeaderChunk(webpProfile | webpExif | webpXmp, 20, 18),
                                    WebpChunk("ICCP", profile), ChunksOfWebp(LossyWebp(opaque)),
                                    WebpChunk("EXIF", exif), WebpChunk("XMP ", {'<', 'x', '>'})})));
  const ByteList animationStart = Joined({WebpHeaderChunk(webpAnimation | webpAlpha, 40, 30),
                                          WebpChunk("ANIM", {255, 255, 255, 255, 0, 0})});
  save("animation",
       WebpFile(
           Joined({animationStart, WebpFrameChunk(4, 6, 20, 18, ChunksOfWebp(LosslessWebp(opaque))),
                   WebpFrameChunk(0, 0, 20, 18, ChunksOfWebp(LossyWebp(noise, 5)))})));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  SaveGifs(argv[1]);
  SaveWebps(argv[2]);
  return 0;
}
