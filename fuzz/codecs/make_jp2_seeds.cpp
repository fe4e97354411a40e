// Writes the seeds of the JPEG 2000 fuzzer: one small file per kind.
// usage: make_jp2_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include <rasterkit/metadata/exif_block.h>

#include "tests/codecs/jp2/jp2_files.h"

using namespace rasterkit;
using namespace rasterkit::test;

namespace {

constexpr uint32_t kCmyk = 12, kSrgb = 16, kGray = 17, kYcc = 18;

CodestreamOfJp2 Small(const std::vector<PlaneOfJp2>& planes, int tile = 0) {
  CodestreamOfJp2 picture;
  picture.width = 19;
  picture.height = 11;
  picture.planes = planes;
  picture.tileWidth = picture.tileHeight = tile;
  return picture;
}

ByteList Palette() {
  ByteList palette = Join({BigEndian16(4), {3, 7, 7, 7}});
  for (uint8_t i = 0; i < 12; ++i) palette.push_back(static_cast<uint8_t>(i * 20));
  return Join({ColorBox(kSrgb), BoxOfJp2("pclr", palette),
               BoxOfJp2("cmap", {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2})});
}

ByteList Others() {
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, 271, "Rasterkit");
  return Join({UuidBox(kExifUuid, exif.Bytes()), UuidBox(kXmpUuid, {'<', 'x', '/', '>'}),
               UuidBox(kGeoTiffUuid, exif.Bytes()), BoxOfJp2("xml ", {'<', 'a', '/', '>'})});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const auto save = [&](const std::string& name, const ByteList& bytes) {
    std::ofstream out(std::string(argv[1]) + "/" + name, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out || bytes.empty()) std::fprintf(stderr, "%s was not written\n", name.c_str());
  };
  const auto encode = [](const std::vector<PlaneOfJp2>& planes, int tile = 0) {
    return EncodeCodestream(Small(planes, tile));
  };
  const PlaneOfJp2 byte, coarse{8, false, 2, 2};
  const ByteList alpha = DefinitionBox({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}});
  const ByteList resolution = BoxOfJp2(
      "res ",
      BoxOfJp2("resc",
               Join({BigEndian16(300), BigEndian16(1), BigEndian16(300), BigEndian16(1), {1, 1}})));
  save("bit.j2k", encode({{1, false}}));
  save("words.j2k", encode({{16, false}}));
  save("signed.j2k", encode({{12, true}}));
  save("color.j2k", encode({byte, byte, byte}, 8));
  save("gray.jp2", FileOfJp2(encode({byte}), Join({ColorBox(kGray), resolution})));
  save("alpha.jp2", FileOfJp2(encode({byte, byte, byte, byte}), Join({ColorBox(kSrgb), alpha})));
  save("inks.jp2", FileOfJp2(encode({byte, byte, byte, byte}), ColorBox(kCmyk)));
  save("chroma.jp2", FileOfJp2(encode({byte, coarse, coarse}, 7), ColorBox(kYcc)));
  save("palette.jp2", FileOfJp2(encode({{2, false}}), Palette()));
  save("boxes.jp2", FileOfJp2(encode({byte, byte, byte}), ColorBox(kSrgb), Others()));
  return 0;
}
