// Writes the seeds of the fuzzer of TIFF documents: tiny files of several pages with edits after
// their end. usage: make_tiff_document_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include <tiff.h>

#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/metadata/exif_block.h>

using namespace rasterkit;

namespace {

std::string folder;

Raster Picture(TPixelFormat format, int width, int height) {
  Raster raster(format, width, height);
  for (int y = 0; y < height; y++) {
    for (size_t i = 0; i < raster.RowBytes(); i++) {
      raster.Row(y)[i] = static_cast<uint8_t>(7 * i + 11 * static_cast<size_t>(y));
    }
  }
  raster.ClearPadding();
  return raster;
}

PictureWriting Writing(int compression, bool isTiled) {
  PictureWriting writing;
  TiffForm form;
  form.compression = compression;
  form.photometric = -1;
  form.rowsPerStrip = 3;
  if (isTiled) form.tileWidth = form.tileHeight = 16;
  writing.form = form;
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, TIFFTAG_MAKE, "Maker");
  exif.SetWords(ExifDirectoryId::exif, 34855, std::vector<uint16_t>{400});
  exif.SetText(ExifDirectoryId::gps, 1, "N");
  exif.SetText(ExifDirectoryId::interop, 1, "R98");
  writing.metadata.exif = exif.Bytes();
  writing.metadata.tiffTags = {{50123, TIFF_SHORT, 1, {1, 0}}};
  return writing;
}

void Save(const std::string& name, bool isBig, bool isBigEndian, const std::string& edits) {
  TMemoryStream stream;
  TiffDocumentWriter writer(stream, isBig, isBigEndian);
  std::vector<TiffExtraPage> extras;
  TiffForm plain;
  plain.rowsPerStrip = 9;
  plain.photometric = -1;
  extras.push_back({Picture(pf8bit, 10, 4), plain, FILETYPE_REDUCEDIMAGE});
  extras.push_back({Picture(pf1bit, 19, 7), plain, FILETYPE_MASK});
  writer.NumberNextPage({0, 3});
  writer.AddPage(Picture(pf8bit, 19, 7), Writing(COMPRESSION_LZW, false), extras);
  writer.AddPage(Picture(pf1bit, 19, 7), Writing(COMPRESSION_CCITTFAX4, false));
  writer.AddPage(Picture(pf24bit, 19, 7), Writing(COMPRESSION_ADOBE_DEFLATE, true));
  writer.Finish();
  std::ofstream out(folder + "/" + name + ".tif", std::ios::binary);
  out.write(reinterpret_cast<const char*>(stream.Bytes().data()),
            static_cast<std::streamsize>(stream.Size()));
  out << edits << static_cast<char>(edits.size() | (isBig ? 0x40 : 0) | (isBigEndian ? 0x80 : 0));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  // Five times the page, and what is done.
  const auto edits = [](std::initializer_list<int> numbers) {
    std::string text;
    for (const int number : numbers) text += static_cast<char>(number);
    return text;
  };
  Save("reorder", false, false, edits({10, 5, 0}));
  Save("split", false, true, edits({6}));
  Save("metadata", true, false, edits({2, 7, 12}));
  Save("join", true, true, edits({0, 4, 3, 10, 10}));
  return 0;
}
