#include <gtest/gtest.h>

#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/placement.h>

namespace rasterkit::test {
namespace {

CoordinateSystem Keys(std::vector<uint16_t> keys, std::string ascii = "") {
  CoordinateSystem system;
  system.keys = {1, 1, 0, static_cast<uint16_t>(keys.size() / 4)};
  system.keys.insert(system.keys.end(), keys.begin(), keys.end());
  system.ascii = std::move(ascii);
  return system;
}

TEST(CoordinateSystem, ProjectedCode) {
  const auto system = Keys({1024, 0, 1, 1, 2048, 0, 1, 4258, 3072, 0, 1, 25832});
  EXPECT_TRUE(system.IsKnown());
  EXPECT_EQ(system.Epsg(), 25832);
  EXPECT_EQ(system.Name(), "");
  EXPECT_EQ(system.Description(), "EPSG:25832");
}

TEST(CoordinateSystem, GeographicCode) {
  const auto system = Keys({1024, 0, 1, 2, 2048, 0, 1, 4326, 2049, 34737, 7, 0}, "WGS 84|");
  EXPECT_EQ(system.Epsg(), 4326);
  EXPECT_EQ(system.Description(), "EPSG:4326 (WGS 84)");
  EXPECT_EQ(Keys({2048, 0, 1, 4326}).Epsg(), 4326);
}

TEST(CoordinateSystem, OwnProjectionHasNoCodeOfItsBase) {
  const auto system =
      Keys({1024, 0, 1, 1, 2048, 0, 1, 4326, 3072, 0, 1, 32767, 3073, 34737, 8, 0}, "My grid|");
  EXPECT_EQ(system.Epsg(), std::nullopt);
  EXPECT_EQ(system.Description(), "My grid");
}

TEST(CoordinateSystem, CitationsOfPrograms) {
  EXPECT_EQ(Keys({1024, 0, 1, 1, 1026, 34737, 40, 0}, "PCS Name = WGS_1984_UTM_Zone_33N|a|").Name(),
            "WGS_1984_UTM_Zone_33N");
  EXPECT_EQ(
      Keys({1024, 0, 1, 1, 3073, 34737, 99, 0}, "ESRI PE String = PROJCS[\"Grid\",GEOGCS[\"x\"]]|")
          .Name(),
      "Grid");
  EXPECT_EQ(Keys({1024, 0, 1, 1, 3073, 34737, 99, 0}, "IMAGINE GeoTIFF Support\nmore|").Name(), "");
  EXPECT_EQ(Keys({1024, 0, 1, 1, 1026, 34737, 99, 0}, "One\nTwo|").Name(), "One");
  EXPECT_EQ(Keys({1024, 0, 1, 1, 1026, 34737, 99, 50}, "One|").Name(), "");
}

TEST(CoordinateSystem, OfTexts) {
  CoordinateSystem system;
  EXPECT_FALSE(system.IsKnown());
  EXPECT_EQ(system.Description(), "");
  system.wkt =
      R"(PROJCS["ETRS89 / UTM zone 32N",GEOGCS["ETRS89",AUTHORITY["EPSG","4258"]],UNIT["metre",1,)"
      R"(AUTHORITY["EPSG","9001"]],AUTHORITY["EPSG","25832"]])";
  EXPECT_TRUE(system.IsKnown());
  EXPECT_EQ(system.Description(), "EPSG:25832 (ETRS89 / UTM zone 32N)");
  system.wkt =
      R"(PROJCRS["WGS 84 / UTM zone 33N", BASEGEOGCRS["WGS 84", ID["EPSG",4326]], ID["EPSG",32633]])";
  EXPECT_EQ(system.Epsg(), 32633);
  system.wkt = R"(GEOGCS["A ""quoted"" name",DATUM["D",SPHEROID["S",6378137,298.25]]])";
  EXPECT_EQ(system.Name(), "A \"quoted\" name");
  EXPECT_EQ(system.Epsg(), std::nullopt);
}

TEST(CoordinateSystem, KeysCountBeforeTexts) {
  auto system = Keys({1024, 0, 1, 1, 3072, 0, 1, 25832});
  system.wkt = R"(PROJCS["Other",AUTHORITY["EPSG","31467"]])";
  EXPECT_EQ(system.Epsg(), 25832);
}

TEST(WktHead, SurvivesBrokenTexts) {
  for (const char* text : {"", "[", "]", "\"", "A[\"", "A[\"\"\"", "A[B[", "ID[\"EPSG\",1]", "A]]]",
                           "A[\"n\",ID[\"EPSG\",99999999999999]]", "A[\"n\",ID[\"ESRI\",5]]"}) {
    EXPECT_EQ(detail::ReadWktHead(text).epsg, std::nullopt) << text;
  }
  EXPECT_EQ(detail::ReadWktHead("A[\"n\",ID[\"ESRI\",5]]").name, "n");
}

}  // namespace
}  // namespace rasterkit::test
