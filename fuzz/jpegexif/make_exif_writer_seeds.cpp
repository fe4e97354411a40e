// Writes the seeds of the fuzzers that write EXIF data, exif_writer and exif_copy: headers of
// photographs and of what encoders write. usage: make_exif_writer_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/exif_builder.h"
#include "tests/support/thumbnail_exif.h"

namespace {

using rasterkit::test::ByteOrder;
using rasterkit::test::ExifWithThumbnail;
using rasterkit::test::JpegOf;
using rasterkit::test::JpegSection;
using rasterkit::test::TiffWriter;

std::string folder;

void Save(const std::string& name, const std::string& bytes) {
  std::ofstream out(folder + "/" + name + ".jpg", std::ios::binary);
  out << bytes;
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

void SaveThumbnail(const std::string& name, ByteOrder order, const std::string& thumbnail,
                   const std::string& behind = "") {
  Save(name, JpegOf({JpegSection(0xE1, ExifWithThumbnail(thumbnail, order, behind).content)}));
}

std::string PositionSection() {
  const TiffWriter writer(ByteOrder::motorola);
  return rasterkit::test::ExifSection(
      writer.Tiff({writer.Short(274, 8), writer.GpsPointer()},
                  {writer.Ascii(1, "N"), writer.Rationals(2, {{48, 1}, {30, 1}, {0, 1}}),
                   writer.Ascii(3, "E"), writer.Rationals(4, {{9, 1}, {1, 2}, {3, 1}})}));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  const std::string app0 = JpegSection(0xE0, std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
  const std::string comment = JpegSection(0xFE, "comment"), iptc = JpegSection(0xED, "iptc");
  const std::string profile = JpegSection(0xE2, "icc"), adobe = JpegSection(0xEE, "Adobe");
  const std::string ducky = JpegSection(0xEC, "ducky"), filler(260, 'f');
  Save("every_kind", JpegOf({app0, PositionSection(), iptc, comment, profile, ducky, adobe}));
  Save("encoder", JpegOf({app0, comment, profile}));
  Save("others_only", JpegOf({profile, adobe, ducky, profile, adobe, ducky}));
  Save("two_app0", JpegOf({app0, app0, comment}));
  Save("start_only", "\xFF\xD8");
  SaveThumbnail("quantization", ByteOrder::intel, "\xFF\xD8\xFF\xDB" + filler + "\xFF\xD9", "xy");
  SaveThumbnail("huffman", ByteOrder::motorola, "\xFF\xD8\xFF\xC4" + filler + "\xFF\xD9");
  SaveThumbnail("endless", ByteOrder::intel, "\xFF\xD8\xFF\xDB" + filler);
  SaveThumbnail("no_table", ByteOrder::motorola, "\xFF\xD8\xFF\xE0" + filler);
  return 0;
}
