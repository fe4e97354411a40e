// Writes the seeds of the fuzzers of metadata.
// usage: make_metadata_seeds FOLDER: into the folders exif_block, jpeg_segments, image_resources,
// metadata_edits

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/jpeg_assembly.h>

#include "tests/metadata/exif_blocks.h"

using namespace rasterkit;

namespace {

void Save(const std::string& name, const std::vector<uint8_t>& bytes) {
  std::ofstream out(name, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

std::vector<uint8_t> Resources() {
  ImageResources resources;
  std::vector<uint8_t> resolution(16);
  resolution[1] = resolution[9] = 72;
  resources.Set(image_resource::kResolution, resolution);
  resources.Set(image_resource::kThumbnail, std::vector<uint8_t>(30, 1));
  resources.Set(image_resource::kIptcDigest, std::vector<uint8_t>(16, 2));
  return resources.Bytes();
}

Metadata FullMetadata() {
  Metadata metadata;
  metadata.exif = test::BytesOf(test::MakeCameraBlock(test::ByteOrder::motorola).bytes);
  metadata.xmp =
      "<x:xmpmeta xmpNote:HasExtendedXMP=\"00000000000000000000000000000000\"></x:xmpmeta>";
  metadata.extendedXmp = "<more/>";
  metadata.profile = std::make_shared<std::vector<uint8_t>>(40, uint8_t{3});
  metadata.iptc = test::BytesOf(std::string("\x1C\2\5\0\4name", 9));
  metadata.photoshop = Resources();
  metadata.comments = {"words"};
  metadata.resolution = {72, 72};
  return metadata;
}

std::string TextOf(const std::vector<uint8_t>& bytes) {
  return {bytes.begin(), bytes.end()};
}

/// See metadata_edits_fuzzer.cpp.
void SaveEdits(const std::string& folder) {
  const auto save = [&](const char* name, std::vector<uint8_t> head, const std::string& block) {
    head.insert(head.end(), block.begin(), block.end());
    Save(folder + "/metadata_edits/" + name, head);
  };
  const std::string intel = test::MakeCameraBlock(test::ByteOrder::intel).bytes;
  const std::string motorola = test::MakeCameraBlock(test::ByteOrder::motorola).bytes;
  save("strip_gps", {0, 1, 0, 0}, intel);
  save("strip_damaged", {0, 7, 0, 0}, motorola.substr(0, 300));
  save("gps_and_date", {0, 24, 2, 1}, motorola);
  save("lens", {0, 0, 14, 5}, intel);
  save("comment", {0, 0, 4, 3}, motorola);
  save("records", {2, 1, 8, 3}, std::string("\x1C\2\x5A\0\4city\x1C\2\x50\0\2me", 16));
  save("resources", {3, 1, 0, 0}, TextOf(Resources()));
  const std::string xmp =
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
      "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
      "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" exif:GPSLatitude=\"48,8.5N\" "
      "exif:GPSLongitude=\"11,34.5E\"/></rdf:RDF></x:xmpmeta>";
  save("packet", {1, 1, 9, 0}, xmp);
  save("packet_position", {1, 8, 9, 7}, xmp);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::string folder = arguments[1];
  for (const auto order : {test::ByteOrder::intel, test::ByteOrder::motorola}) {
    const std::string name = order == test::ByteOrder::intel ? "intel" : "motorola";
    Save(folder + "/exif_block/" + name, test::BytesOf(test::MakeCameraBlock(order).bytes));
  }
  Save(folder + "/exif_block/cut",
       test::BytesOf(test::MakeCameraBlock(test::ByteOrder::intel).bytes.substr(0, 150)));
  Save(folder + "/exif_block/empty", ExifBlock().Bytes());
  SaveEdits(folder);
  const Metadata metadata = FullMetadata();
  Save(folder + "/image_resources/usual", JoinImageResources(metadata));
  Save(folder + "/image_resources/without_padding",
       test::BytesOf(std::string("8BIM\4\4\3abc\0\0\0\3xyz", 17)));
  Changes changes;
  std::vector<uint8_t> jpeg = {0xFF, 0xD8, 1, 2, 3};
  for (const NewJpegSegment& segment : AssembleJpegSegments(metadata, true, changes)) {
    const std::vector<uint8_t> bytes = BytesOf(segment);
    jpeg.insert(jpeg.end(), bytes.begin(), bytes.end());
  }
  const std::string scan = test::JpegOf({}).substr(2) + "trailer";
  jpeg.insert(jpeg.end(), scan.begin(), scan.end());
  Save(folder + "/jpeg_segments/full.jpg", jpeg);
  Save(folder + "/jpeg_segments/cut.jpg", {jpeg.begin(), jpeg.begin() + 100});
}
