// Writes the seeds of the fuzz targets world_file, aux_xml and geo_keys.
// usage: make_placement_seeds FOLDER (that of all seeds)

#include <cstdio>
#include <fstream>
#include <string>

#include "tests/placement/geo_tag_values.h"

using rasterkit::TagValue;

namespace {

std::string folder;

void Save(const std::string& name, const std::string& bytes) {
  std::ofstream out(folder + "/" + name, std::ios::binary);
  out << bytes;
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

std::string BytesOf(const std::vector<TagValue>& tags) {
  std::string bytes;
  for (const TagValue& tag : tags) {
    const size_t size = tag.bytes.size();
    for (const size_t byte :
         {tag.tag & size_t{255}, size_t{tag.tag} >> 8, size_t{tag.type}, size & 255, size >> 8}) {
      bytes += static_cast<char>(byte);
    }
    bytes.append(tag.bytes.begin(), tag.bytes.end());
  }
  return bytes;
}

void SaveWorldFiles() {
  Save("world_file/plain", "0.5\n0\n0\n-0.5\n440720\n3751320\n");
  Save("world_file/turned", "0.5\r\n0.1\r\n-0.1\r\n-0.5\r\n4.4072E+05\r\n+3751320.5\r\nnotes\r\n");
  Save("world_file/commas", "0,5\n0\n0\n-0,5\n440720\n3751320\n");
  Save("world_file/nan",
       "\xEF\xBB\xBF"
       "nan\n0\n0\ninf\n1e999\n0x10\n");
  Save("world_file/short", "1 0 0 -1 5");
  Save("world_file/zero", "0\n0\n0\n0\n0\n0\n");
}

void SaveAuxXml() {
  Save(
      "aux_xml/all",
      "<PAMDataset><SRS dataAxisToSRSAxisMapping=\"1,2\">PROJCS[\"Grid\",AUTHORITY[\"EPSG\","
      "\"31467\"]]</SRS><GeoTransform>4.4e+05, 60.0, 0.5, 3.7e+06, 0.25, -60.0</GeoTransform>"
      "<GCPList Projection=\"GEOGCS[&quot;WGS 84&quot;]\"><GCP Id=\"1\" Pixel=\"0.5\" Line=\"2\" "
      "X=\"7.5\" Y=\"51\" Z=\"3\"/></GCPList><Metadata domain=\"RPC\"><MDI key=\"LINE_OFF\">5</MDI>"
      "<MDI key=\"LINE_NUM_COEFF\">1 2 3</MDI></Metadata><PAMRasterBand band=\"1\"><NoDataValue>"
      "-9999</NoDataValue></PAMRasterBand></PAMDataset>");
  Save("aux_xml/entities", "<!DOCTYPE a [<!ENTITY b \"cc\">]><PAMDataset>&b;</PAMDataset>");
  Save("aux_xml/broken", "<PAMDataset><GeoTransform>1,2,3</GeoTransform><SRS>");
  Save("aux_xml/wkt2",
       "<PAMDataset><SRS>PROJCRS[\"A \"\"b\"\"\",BASEGEOGCRS[\"C\",ID[\"EPSG\",4326]],"
       "ID[\"EPSG\",32633]]</SRS></PAMDataset>");
}

void SaveKeys() {
  using namespace rasterkit::test;
  for (const bool pixelIsPoint : {false, true}) {
    std::vector<TagValue> tags = KeyTags(pixelIsPoint);
    tags.push_back(DoublesTag(33550, {2, 4, 0}));
    tags.push_back(DoublesTag(33922, {0, 0, 0, 1000, 5000, 0, 9, 9, 0, 1018, 4964, 0}));
    tags.push_back(TextTag(42113, "-9999"));
    Save(pixelIsPoint ? "geo_keys/point" : "geo_keys/area", BytesOf(tags));
  }
  Save("geo_keys/matrix",
       BytesOf({DoublesTag(34264, {3, 1, 0, 700, 0.5, -2, 0, 900, 0, 0, 0, 0, 0, 0, 0, 1}),
                DoublesTag(34736, {6378137, 298.25})}));
  Save("geo_keys/model", BytesOf({DoublesTag(50844, std::vector<double>(92, 1.5)),
                                  WordsTag(34735, {1, 1, 0, 60000, 1026, 34737, 60000, 9})}));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  folder = argv[1];
  SaveWorldFiles();
  SaveAuxXml();
  SaveKeys();
  return 0;
}
