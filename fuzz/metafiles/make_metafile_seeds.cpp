// Writes the seeds of the metafile fuzzers: small files with records of every family.
// usage: make_metafile_seeds FOLDER_OF_EMF FOLDER_OF_WMF FOLDER_OF_WMF_TO_EMF

#include <cstdio>
#include <fstream>
#include <string>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>

#include "tests/support/emf_file.h"
#include "tests/support/packed_dib.h"
#include "tests/support/test_pictures.h"
#include "tests/support/wmf_file.h"

using namespace rasterkit;
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

/// A bitmap stretched over the picture. The record has 80 bytes before the bitmap.
EmfFile WithBitmap(const BmpFile& bitmap, size_t pixelBytes) {
  const std::vector<uint8_t> dib = PackedDib(bitmap);
  const auto head = static_cast<int64_t>(dib.size() - pixelBytes);
  FieldBytes fields{0, 0, 99, 79, 5, 5, 0, 0, bitmap.width, bitmap.height};
  fields.Longs({80, head, 80 + head, static_cast<int64_t>(pixelBytes), 0, 0xCC0020, 60, 40});
  EmfFile file;
  file.Add(EmfType::stretchDibits, fields.Bytes(dib));
  return file;
}

FieldBytes Points16(std::initializer_list<int64_t> coordinates) {
  FieldBytes fields{0, 0, 99, 79, static_cast<int64_t>(coordinates.size() / 2)};
  return fields.Words(coordinates);
}

EmfFile EmfShapes() {
  EmfFile file;
  file.Add(EmfType::createPen, {1, 1, 1, 0, 0xFF}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::createBrush, {2, 2, 0xFF00, 3}).Add(EmfType::selectObject, {2});
  file.Add(EmfType::extCreatePen, {3, 0, 0, 0, 0, 0x12207, 5, 0, 0xFF0000, 0, 2, 7, 3});
  file.Add(EmfType::rectangle, {3, 3, 40, 30}).Add(EmfType::selectObject, {3});
  file.Add(EmfType::roundRect, {3, 3, 40, 30, 9, 7}).Add(EmfType::ellipse, {30, 5, 90, 60});
  file.Add(EmfType::pie, {10, 10, 60, 50, 35, 0, 35, 80}).Add(EmfType::setArcDirection, {2});
  file.Add(EmfType::chord, {10, 10, 60, 50, 35, 0, 35, 80}).Add(EmfType::setRop2, {7});
  file.Add(EmfType::arcTo, {10, 10, 60, 50, 35, 0, 35, 80}).Add(EmfType::setBkMode, {1});
  file.Add(EmfType::angleArc, FieldBytes{50, 40, 20}.Singles({0, 90}));
  file.Add(EmfType::polyBezierTo16, Points16({20, 40, 30, 40, 50, 40}));
  file.Add(EmfType::polyPolygon16,
           FieldBytes{0, 0, 0, 0, 2, 6, 3, 3}.Words({1, 1, 9, 1, 5, 8, 20, 20, 40, 20, 30, 50}));
  file.Add(EmfType::polyDraw16, Points16({10, 20, 50, 20}).Byte(6).Byte(3));
  FieldBytes gradient{0, 0, 0, 0, 2, 1, 0};
  gradient.Longs({0, 0}).Words({0, 9, 0, 0}).Longs({60, 50}).Words({0xFF00, 0, 0, 0});
  file.Add(EmfType::gradientFill, gradient.Longs({0, 1}));
  file.Add(EmfType::extFloodFill, {30, 30, 0xFF, 1}).Add(EmfType::setPixel, {5, 6, 0xABCDEF});
  return file;
}

EmfFile EmfPaths() {
  EmfFile file;
  file.Add(EmfType::setMapMode, {8}).Add(EmfType::setWindowExt, {100, -80});
  file.Add(EmfType::setViewportExt, {90, 70}).Add(EmfType::setViewportOrg, {5, 75});
  file.Add(EmfType::setWorldTransform, FieldBytes().Singles({1, 0.2F, -0.2F, 1, 3, 4}));
  file.Add(EmfType::saveDc).Add(EmfType::beginPath).Add(EmfType::moveTo, {10, 10});
  file.Add(EmfType::polylineTo16, Points16({60, 10, 60, 50, 10, 50}));
  file.Add(EmfType::closeFigure).Add(EmfType::endPath).Add(EmfType::widenPath);
  file.Add(EmfType::selectClipPath, {3}).Add(EmfType::intersectClipRect, {5, 5, 50, 60});
  FieldBytes region{48, 2, 32, 1, 1, 16, 0, 0, 0, 0, 20, 20, 70, 60};
  file.Add(EmfType::extSelectClipRgn, region).Add(EmfType::setMetaRgn);
  file.Add(EmfType::invertRgn, {0, 0, 0, 0, 48, 32, 1, 1, 16, 0, 0, 0, 0, 1, 2, 80, 70});
  file.Add(EmfType::restoreDc, {-1}).Add(EmfType::scaleWindowExt, {2, 1, 2, 1});
  return file.Add(EmfType::modifyWorldTransform, FieldBytes().Singles({2, 0, 0, 2, 0, 0}).Long(2));
}

EmfFile EmfText() {
  EmfFile file;
  FieldBytes font{1, -20, 0, 300, 300, 700, 0x01010001, 0};
  font.Text(std::u16string_view(u"DejaVu Sans")).FillTo(4 + 92);
  file.Add(EmfType::extCreateFont, font).Add(EmfType::selectObject, {1});
  file.Add(EmfType::setTextAlign, {24 + 6}).Add(EmfType::setTextColor, {0xFF0000});
  FieldBytes text{0, 0, 0, 0, 1};
  text.Singles({1, 1}).Longs({50, 40, 3, 76, 6, 5, 10, 95, 70, 84});
  file.Add(EmfType::extTextOutW, text.Text(std::u16string_view(u"Abc")).PadTo(4).Longs({9, 12, 9}));
  FieldBytes brief{10, 20, 2, 0x300, 2};
  return file.Add(EmfType::smallTextOut, brief.Singles({1, 1}).Text(std::string_view("Ab")));
}

/// A bitmap that embeds a whole file of another format.
BmpFile Embedded(uint32_t compression, std::vector<uint8_t> bytes) {
  BmpFile file;
  file.width = 5;
  file.height = 3;
  file.bits = 0;
  file.compression = compression;
  file.pixels = std::move(bytes);
  return file;
}

BmpFile WithPng() {
  TMemoryStream png;
  EncodePng(GradientRaster(pf24bit, 5, 3), png);
  return Embedded(5, png.TakeBytes());
}

BmpFile WithJpeg() {
  return Embedded(4, EncodeJpeg(GradientRaster(pf24bit, 5, 3), 90));
}

/// Bitmaps that are blended, keyed, masked or slanted, and patterns.
EmfFile EmfBlends() {
  BmpFile bitmap = SixColors();
  bitmap.bits = 32;
  bitmap.pixels.assign(24, 0x5A);
  const std::vector<uint8_t> dib = PackedDib(bitmap);
  EmfFile file;
  file.Add(EmfType::setStretchBltMode, {4});
  FieldBytes pattern{2, 0, 32, 40, 72, 24};
  file.Add(EmfType::createDibPatternBrush, pattern.Bytes(dib)).Add(EmfType::selectObject, {2});
  for (const auto& [type, operation] : {std::pair{EmfType::alphaBlend, 0x01FF0000},
                                        {EmfType::transparentBlt, 0x5A5A5A},
                                        {EmfType::stretchBlt, 0xB8074A}}) {
    FieldBytes fields{0, 0, 99, 79, 5, 5, 60, 40, operation, 0, 0};
    fields.Singles({1, 0, 0, 1, 0, 0}).Longs({0, 0, 108, 40, 148, 24, 3, 2});
    file.Add(type, fields.Bytes(dib));
  }
  FieldBytes slanted{0, 0, 99, 79, 10, 10, 80, 20, 5, 70, 0, 0, 3, 2};
  slanted.Singles({1, 0, 0, 1, 0, 0}).Longs({0, 0, 140, 40, 180, 24, 0, 0, 0, 140, 40, 180, 24});
  file.Add(EmfType::plgBlt, slanted.Bytes(dib));
  FieldBytes masked{0, 0, 99, 79, 50, 40, 30, 30, 0x00CC0020, 0, 0};
  masked.Singles({1, 0, 0, 1, 0, 0}).Longs({0, 0, 128, 40, 168, 24, 0, 0, 0, 128, 40, 168, 24});
  file.Add(EmfType::maskBlt, masked.Bytes(dib));
  FieldBytes mesh{0, 0, 0, 0, 3, 1, 2};
  for (const int corner : {0, 60, 90})
    mesh.Longs({corner, 90 - corner}).Words({0xFF00, corner, 0, 0});
  return file.Add(EmfType::gradientFill, mesh.Longs({0, 1, 2}));
}

/// Regions, flood fills, bands of bitmaps and the less common modes.
EmfFile EmfAreas() {
  EmfFile file;
  file.Add(EmfType::createBrush, {1, 0, 0xFF00, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::createPen, {2, 0, 1, 0, 0xFF}).Add(EmfType::selectObject, {2});
  FieldBytes region{32, 1, 2, 32, 5, 5, 60, 50, 5, 5, 60, 20, 5, 20, 40, 50};
  for (const auto& [type, before] : {std::pair{EmfType::fillRgn, FieldBytes{1}},
                                     {EmfType::frameRgn, FieldBytes{1, 2, 2}},
                                     {EmfType::paintRgn, FieldBytes{}}}) {
    FieldBytes fields{0, 0, 0, 0, 64};
    file.Add(type, fields.Bytes(before.bytes).Bytes(region.bytes));
  }
  file.Add(EmfType::excludeClipRect, {70, 60, 80, 70});
  file.Add(EmfType::extFloodFill, {90, 5, 0xFFFFFF, 1})
      .Add(EmfType::extFloodFill, {2, 2, 0xFF00, 0});
  file.Add(EmfType::setMapMode, {7}).Add(EmfType::setWindowExt, {100, 100});
  file.Add(EmfType::scaleViewportExt, {1, 2, 1, 2}).Add(EmfType::setTextJustification, {9, 1});
  file.Add(EmfType::beginPath).Add(EmfType::ellipse, {5, 5, 90, 70}).Add(EmfType::endPath);
  file.Add(EmfType::flattenPath).Add(EmfType::strokePath, {0, 0, 0, 0});
  file.Add(EmfType::setMapMode, {2}).Add(EmfType::moveTo, {5, -5}).Add(EmfType::lineTo, {90, -70});
  file.Add(EmfType::setMapMode, {1}).Add(EmfType::setLayout, {1});
  const std::vector<uint8_t> dib = PackedDib(SixColors());
  FieldBytes band{0, 0, 99, 79, 10, 10, 0, 0, 3, 2, 76, 40, 116, 24, 0, 0, 2};
  file.Add(EmfType::setDibitsToDevice, band.Bytes(dib));
  FieldBytes texts{0, 0, 0, 0, 1};
  texts.Singles({1, 1}).Longs(
      {2, 5, 40, 2, 120, 0, 0, 0, 0, 0, 0, 9, 60, 1, 122, 0, 0, 0, 0, 0, 0});
  return file.Add(EmfType::polyTextOutW, texts.Text(std::u16string_view(u"A b")).PadTo(4));
}

void SaveEmf(const std::string& folder) {
  Save(folder + "/shapes.emf", EmfShapes().Bytes());
  Save(folder + "/paths.emf", EmfPaths().Bytes());
  Save(folder + "/text.emf", EmfText().Bytes());
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
  Save(folder + "/areas.emf", EmfAreas().Bytes());
  Save(folder + "/blends.emf", EmfBlends().Bytes());
  Save(folder + "/bitmap_png.emf", WithBitmap(WithPng(), WithPng().pixels.size()).Bytes());
  Save(folder + "/bitmap_jpeg.emf", WithBitmap(WithJpeg(), WithJpeg().pixels.size()).Bytes());
  Save(folder + "/bitmap_rle8.emf", WithBitmap(Indexed(), Indexed().pixels.size()).Bytes());
}

WmfFile WmfShapes() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({1, 1, 0}).Long(0xFF));
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(2).Long(0xFF00).Word(4));
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
  file.Add(WmfFunction::rectangle, {50, 60, 10, 10}).Add(WmfFunction::ellipse, {50, 60, 10, 10});
  file.Add(WmfFunction::roundRect, {9, 7, 50, 60, 10, 10}).Add(WmfFunction::saveDc);
  file.Add(WmfFunction::pie, {80, 35, 0, 35, 50, 60, 10, 10}).Add(WmfFunction::setRop2, {7});
  file.Add(WmfFunction::polygon, {3, 10, 10, 60, 10, 60, 50}).Add(WmfFunction::restoreDc, {-1});
  FieldBytes region;
  region.Words({0, 6}).Long(0).Words({0, 1, 2, 10, 10, 60, 50, 2, 10, 50, 10, 60, 2});
  file.Add(WmfFunction::createRegion, region).Add(WmfFunction::invertRegion, {2});
  file.Add(WmfFunction::selectClipRegion, {2}).Add(WmfFunction::deleteObject, {2});
  file.Add(WmfFunction::patBlt, {0x21, 0xF0, 20, 30, 20, 10});
  file.Add(WmfFunction::floodFill, FieldBytes().Long(0xFF).Words({20, 20}));
  FieldBytes device;
  device.Words({0x20, 0xCC, 0, 0, 1, 16, 20, 10, 0, 16, 1, 2, 0x0101, 0xFF00});
  file.Add(WmfFunction::bitBlt, device);
  FieldBytes font;
  font.Words({-20, 0, 900, 900, 400}).Longs({0, 0}).Text(std::string_view("Symbol")).FillTo(50);
  file.Add(WmfFunction::createFontIndirect, font).Add(WmfFunction::selectObject, {2});
  FieldBytes text;
  text.Words({20, 10, 3, 6, 5, 10, 95, 70}).Text(std::string_view("abc")).PadTo(2);
  return file.Add(WmfFunction::extTextOut, text.Words({9, 9, 9}));
}

/// Modes, mapping and clipping, each followed by something that it affects.
WmfFile WmfStates() {
  WmfFile file;
  file.box = {{0, 0, 200, 160}};
  file.Add(WmfFunction::setMapMode, {8}).Add(WmfFunction::setWindowOrg, {-5, -5});
  file.Add(WmfFunction::setWindowExt, {160, 200}).Add(WmfFunction::offsetWindowOrg, {2, 2});
  file.Add(WmfFunction::setViewportOrg, {1, 1}).Add(WmfFunction::setViewportExt, {80, 100});
  file.Add(WmfFunction::scaleWindowExt, {2, 3, 2, 3}).Add(WmfFunction::saveDc);
  file.Add(WmfFunction::offsetViewportOrg, {3, 3}).Add(WmfFunction::setLayout, {1});
  file.Add(WmfFunction::setTextCharExtra, {3}).Add(WmfFunction::setTextJustification, {2, 9});
  file.Add(WmfFunction::setTextAlign, {25}).Add(WmfFunction::setBkMode, {1});
  file.Add(WmfFunction::setTextColor, FieldBytes().Long(0xFF0000)).Add(WmfFunction::moveTo, {9, 9});
  file.Add(WmfFunction::textOut, FieldBytes().Word(4).Text("a bc").Words({40, 10}));
  file.Add(WmfFunction::restoreDc, {-1}).Add(WmfFunction::setPolyFillMode, {2});
  file.Add(WmfFunction::intersectClipRect, {120, 150, 5, 5});
  file.Add(WmfFunction::excludeClipRect, {60, 70, 40, 40}).Add(WmfFunction::offsetClipRgn, {1, 1});
  FieldBytes brush;
  brush.Words({3, 0}).Bytes(PackedDib(SixColors()));
  file.Add(WmfFunction::dibCreatePatternBrush, brush).Add(WmfFunction::selectObject, {0});
  file.Add(WmfFunction::chord, {80, 35, 0, 35, 50, 60, 10, 10});
  file.Add(WmfFunction::arc, {80, 35, 0, 35, 50, 60, 10, 10});
  file.Add(WmfFunction::extFloodFill, FieldBytes().Word(1).Long(0xFFFFFF).Words({70, 80}));
  FieldBytes palette;
  palette.Words({0x300, 2}).Longs({0x00FF00, 0x0000FF});
  file.Add(WmfFunction::createPalette, palette).Add(WmfFunction::selectPalette, {1});
  FieldBytes blit;
  blit.Words({0x20, 0xCC, 0, 0, 20, 20, 5, 70}).Bytes(PackedDib(SixColors()));
  file.Add(WmfFunction::dibBitBlt, blit);
  FieldBytes band;
  band.Words({0, 2, 0, 0, 0, 2, 3, 50, 60}).Bytes(PackedDib(SixColors()));
  file.Add(WmfFunction::setDibToDev, band).Add(WmfFunction::deleteObject, {1});
  FieldBytes region;
  region.Words({0, 6}).Long(0).Words({0, 1, 2, 10, 10, 60, 50, 2, 10, 50, 10, 60, 2});
  file.Add(WmfFunction::createRegion, region).Add(WmfFunction::paintRegion, {1});
  return file.Add(WmfFunction::frameRegion, {1, 0, 2, 2}).Add(WmfFunction::fillRegion, {1, 0});
}

void SaveWmf(const std::string& folder) {
  Save(folder + "/states.wmf", WmfStates().Bytes());
  Save(folder + "/shapes.wmf", WmfShapes().Bytes());
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
  if (argc != 4) return 2;
  SaveEmf(argv[1]);
  SaveWmf(argv[2]);
  SaveWmf(argv[3]);
  Save(std::string(argv[3]) + "/shapes.emf", EmfShapes().Bytes());
  return 0;
}
