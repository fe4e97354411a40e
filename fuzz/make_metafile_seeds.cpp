// Writes the seeds of the metafile fuzzers: small files with records of every family.
// usage: make_metafile_seeds FOLDER_OF_EMF FOLDER_OF_WMF

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/wmf_file.h"

using namespace rasterkit::detail;
using namespace rasterkit::test;

namespace {

void Save(const std::string& name, const std::vector<uint8_t>& bytes) {
  std::ofstream out(name, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

BmpFile Indexed() {
  BmpFile file;
  file.width = 9;
  file.height = 2;
  file.bits = 8;
  file.compression = 1;
  file.colorsUsed = 2;
  file.palette = {0x123456, 0xFEDCBA};
  file.pixels = {9, 1, 0, 0, 4, 0, 5, 1, 0, 1};
  return file;
}

/// A bitmap stretched over the picture: fields up to the bitmap are 80 bytes long with the head.
EmfFile WithBitmap(const BmpFile& bitmap, size_t pixelBytes) {
  const std::vector<uint8_t> dib = PackedDib(bitmap);
  const auto head = static_cast<int64_t>(dib.size() - pixelBytes);
  FieldBytes fields{0, 0, 99, 79, 5, 5, 0, 0, bitmap.width, bitmap.height};
  fields.Longs({80, head, 80 + head, static_cast<int64_t>(pixelBytes), 0, 0xCC0020, 60, 40});
  EmfFile file;
  file.Add(EmfType::stretchDibits, fields.Bytes(dib));
  return file;
}

void SaveEmf(const std::string& folder) {
  EmfFile lines;
  lines.description = std::u16string(u"Seeds\0A title\0", 14);
  lines.micrometersX = 250000;
  lines.micrometersY = 200000;
  lines.Add(EmfType::moveTo, {3, 5}).Add(EmfType::lineTo, {17, 11});
  lines.Add(EmfType::polyline16, FieldBytes{0, 0, 9, 9, 3}.Words({1, 1, 8, 2, 3, 7}));
  Save(folder + "/lines.emf", lines.Bytes());
  lines.Add(EmfType::comment, {20, kEmfPlusMark, 0x4009, 16, 4, 0});
  lines.hasEnd = false;
  Save(folder + "/plus_without_end.emf", lines.Bytes());
  Save(folder + "/bitmap24.emf", WithBitmap(SixColors(), SixColors().pixels.size()).Bytes());
  Save(folder + "/bitmap_rle8.emf", WithBitmap(Indexed(), Indexed().pixels.size()).Bytes());
}

void SaveWmf(const std::string& folder) {
  WmfFile lines;
  lines.Add(WmfFunction::moveTo, {5, 3}).Add(WmfFunction::lineTo, {11, 17});
  lines.Add(WmfFunction::polyPolygon, {2, 2, 3, 0, 0, 5, 5, 1, 1, 8, 2, 3, 7});
  lines.Add(WmfFunction::textOut, FieldBytes().Word(3).Text("abc").PadTo(2).Words({20, 10}));
  Save(folder + "/plain.wmf", lines.Bytes());
  lines.box = {{0, 0, 200, 100}};
  lines.Add(WmfFunction::setWindowOrg, {0, 0}).Add(WmfFunction::setWindowExt, {100, 200});
  Save(folder + "/placeable.wmf", lines.Bytes());
  for (const BmpFile& bitmap : {SixColors(), Indexed()}) {
    WmfFile file;
    FieldBytes fields;
    fields.Words({0x20, 0xCC, 0, bitmap.height, bitmap.width, 0, 0, 30, 40, 5, 7});
    file.Add(WmfFunction::stretchDib, fields.Bytes(PackedDib(bitmap)));
    Save(folder + "/bitmap" + std::to_string(bitmap.bits) + ".wmf", file.Bytes());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  SaveEmf(argv[1]);
  SaveWmf(argv[2]);
  return 0;
}
