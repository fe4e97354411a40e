// Writes the seeds of the fuzzers of headers: one small file per kind.
// usage: make_header_seeds PNG-FOLDER STILL-FOLDER XMP-FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/metadata/png/png_chunks.h>

#include "tests/metadata/xmp/xmp_packets.h"
#include "tests/support/gif_file.h"
#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

using namespace rasterkit;
using namespace rasterkit::test;

namespace {

using ByteList = std::vector<uint8_t>;

void Save(const std::string& file, std::span<const uint8_t> bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out || bytes.empty()) std::fprintf(stderr, "%s was not written\n", file.c_str());
}

std::span<const uint8_t> BytesOf(const std::string& text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

const ByteList kExif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3,
                        0,   1,   0,  0, 0, 6, 0, 0, 0, 0, 0,    0, 0};

std::string Faces() {
  return Packet(
      " xmlns:mwg-rs='http://www.metadataworkinggroup.com/schemas/regions/'"
      " xmlns:stArea='http://ns.adobe.com/xmp/sType/Area#'"
      " xmlns:stDim='http://ns.adobe.com/xap/1.0/sType/Dimensions#'",
      "<mwg-rs:Regions rdf:parseType='Resource'>"
      "<mwg-rs:AppliedToDimensions stDim:w='400' stDim:h='200' stDim:unit='pixel'/>"
      "<mwg-rs:RegionList><rdf:Bag><rdf:li><rdf:Description mwg-rs:Name='a'>"
      "<mwg-rs:Area stArea:x='0.5' stArea:y='.5' stArea:w='0.1' stArea:h='0.1' "
      "stArea:unit='normalized'/></rdf:Description></rdf:li></rdf:Bag></mwg-rs:RegionList>"
      "</mwg-rs:Regions>");
}

void SavePngs(const std::string& folder) {
  Metadata metadata;
  metadata.exif = kExif;
  metadata.xmp = Packet(" tiff:Orientation='6'", "", 10);
  metadata.iptc = {0x1C, 2, 5, 0, 1, 'a'};
  metadata.photoshop = {'8', 'B', 'I', 'M', 4, 10, 0, 0, 0, 0, 0, 1, 1, 0};
  metadata.comments = {"a", "\xE2\x82\xAC"};
  metadata.texts.resize(2);
  metadata.texts[0].keyword = metadata.texts[1].keyword = "Title";
  metadata.texts[0].isCompressed = true;
  metadata.texts[1].isInternational = true;
  metadata.resolution = {300, 72};
  metadata.pngChunks = {{detail::PngKind("gAMA"), {0, 0, 177, 143}, false},
                        {detail::PngKind("abCd"), {1}, true}};
  const auto save = [&](const std::string& name, Pixels pixels, const PngForm& form) {
    PictureWriting writing;
    writing.form = form;
    writing.metadata = metadata;
    TMemoryStream stream;
    WritePng(pixels, writing, stream);
    Save(folder + "/" + name + ".png", stream.Bytes());
  };
  save("gray", GrayRaster(9, 5), {8, 0, false});
  save("palette", GradientRaster(pf4bit, 9, 5), {4, 3, true});
  save("color", GradientRaster(pf24bit, 9, 5), {8, 2, false});
  Raster alpha = GradientRaster(pf32bit, 9, 5);
  alpha.alphaFormat = afDefined;
  save("alpha", std::move(alpha), {8, 6, false});
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  Samples words(layout, 9, 5);
  for (int y = 0; y < 5; y++) {
    for (size_t i = 0; i < words.Stride(); i++) words.Row(y)[i] = static_cast<uint8_t>(i * 7);
  }
  save("words", std::move(words), {16, 2, true});
}

ByteList Joined(std::initializer_list<ByteList> parts) {
  ByteList whole;
  for (const ByteList& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

void SaveStills(const std::string& folder) {
  GifFile gif = PlainGif(9, 5, 3);
  gif.extensions = GifExtension(0xFE, {'a'});
  const std::string name = "\x21\xFF\x0BXMP DataXMP<x/>\x01";
  ByteList packet(name.begin(), name.end());
  for (int value = 255; value >= 0; value--) packet.push_back(static_cast<uint8_t>(value));
  packet.push_back(0);
  gif.extensions.insert(gif.extensions.end(), packet.begin(), packet.end());
  Save(folder + "/comment_xmp.gif", gif.Bytes());
  const ByteList pixels = ChunksOfWebp(LossyWebp(GradientRaster(pf24bit, 20, 18)));
  Save(folder + "/metadata.webp",
       WebpFile(Joined({WebpHeaderChunk(webpExif | webpXmp, 20, 18), pixels,
                        WebpChunk("EXIF", kExif), WebpChunk("XMP ", {'<', 'x', '/', '>'})})));
  PictureWriting writing;
  writing.metadata.resolution = {300, 72};
  TMemoryStream plain, indexed;
  WriteBmp(Pixels(GradientRaster(pf24bit, 5, 3)), writing, plain);
  Save(folder + "/color.bmp", plain.Bytes());
  WriteBmp(Pixels(GradientRaster(pf1bit, 5, 3)), writing, indexed);
  Save(folder + "/bits.bmp", indexed.Bytes());
}

void SavePackets(const std::string& folder) {
  const auto save = [&](const std::string& name, const std::string& packet) {
    Save(folder + "/" + name + ".xmp", BytesOf(packet));
  };
  save("attributes", Packet(" tiff:Orientation='6' tiff:XResolution='72/1'", ""));
  save("elements", Packet("",
                          "<tiff:Orientation>8</tiff:Orientation>"
                          "<exif:PixelXDimension>4</exif:PixelXDimension>"));
  save("area", Packet("",
                      "<exif:SubjectArea><rdf:Seq><rdf:li>9</rdf:li><rdf:li>8</rdf:li>"
                      "</rdf:Seq></exif:SubjectArea>"));
  save("faces", Faces());
  save("boxes",
       Packet(" xmlns:MP='http://ns.microsoft.com/photo/1.2/'"
              " xmlns:MPReg='http://ns.microsoft.com/photo/1.2/t/Region#'",
              "<MP:RegionInfo><rdf:Bag><rdf:li><rdf:Description "
              "MPReg:Rectangle='0.5, 0.25, 0.1, 0.2'/></rdf:li></rdf:Bag></MP:RegionInfo>"));
  save("panorama", Packet(" xmlns:GPano='http://ns.google.com/photos/1.0/panorama/' GPano:A='1'",
                          "<GPano:B>2</GPano:B><xmp:Thumbnails/>"));
  std::string wide;
  for (const char letter : Packet(" tiff:Orientation='6'", "", 20)) {
    wide += letter;
    wide += '\0';
  }
  save("utf16", wide);
  save("entity", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  SavePngs(argv[1]);
  SaveStills(argv[2]);
  SavePackets(argv[3]);
  return 0;
}
