#include <array>
#include <numbers>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/placement/map_unit.h>

namespace rasterkit {
namespace {

using Keys = std::vector<uint16_t>;

/// A key directory of numbers; a value of 34736 as second word refers to the doubles.
Keys KeysOf(std::initializer_list<std::array<uint16_t, 3>> entries) {
  Keys keys = {1, 1, 0, static_cast<uint16_t>(entries.size())};
  for (const auto& [number, place, value] : entries) {
    keys.insert(keys.end(), {number, place, 1, value});
  }
  return keys;
}

MapUnit UnitOfKeys(std::initializer_list<std::array<uint16_t, 3>> entries,
                   std::vector<double> doubles = {}) {
  CoordinateSystem system;
  system.keys = KeysOf(entries);
  system.doubles = std::move(doubles);
  return MapUnitOf(system);
}

MapUnit UnitOfText(const std::string& wkt) {
  CoordinateSystem system;
  system.wkt = wkt;
  return MapUnitOf(system);
}

TEST(MapUnitOf, LinearUnits_Should_BeThoseOfTheKeys) {
  EXPECT_EQ(UnitOfKeys({{1024, 0, 1}, {3076, 0, 9001}}).symbol, "m");
  const MapUnit feet = UnitOfKeys({{1024, 0, 1}, {3072, 0, 32632}, {3076, 0, 9002}});
  EXPECT_EQ(feet.symbol, "ft");
  EXPECT_DOUBLE_EQ(feet.size, 0.3048);
  EXPECT_TRUE(feet.IsLength());
  const MapUnit survey = UnitOfKeys({{1024, 0, 1}, {3076, 0, 9003}});
  EXPECT_EQ(survey.symbol, "US ft");
  EXPECT_DOUBLE_EQ(survey.size, 1200.0 / 3937);
  EXPECT_EQ(UnitOfKeys({{1024, 0, 1}, {3076, 0, 9036}}).size, 1000);
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {3076, 0, 9999}}).IsKnown()) << "an unknown code";
}

TEST(MapUnitOf, AUnitWithASizeOfItsOwn_Should_BeTheOneOfThatSize) {
  EXPECT_EQ(UnitOfKeys({{1024, 0, 1}, {3076, 0, 32767}, {3077, 34736, 1}}, {5, 0.3048006096012192})
                .symbol,
            "US ft");
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {3076, 0, 32767}}).IsKnown());
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {3076, 0, 32767}, {3077, 34736, 7}}, {0.3048}).IsKnown())
      << "the number is missing";
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {3076, 0, 32767}, {3077, 34736, 0}}, {0}).IsKnown());
  EXPECT_EQ(UnitOfKeys({{1024, 0, 2}, {2054, 0, 32767}, {2055, 34736, 0}}, {std::numbers::pi / 180})
                .symbol,
            "°");
}

TEST(MapUnitOf, Degrees_Should_BeKnownOfGeographicSystems) {
  const MapUnit degrees = UnitOfKeys({{1024, 0, 2}, {2048, 0, 4326}, {2054, 0, 9102}});
  EXPECT_EQ(degrees.symbol, "°");
  EXPECT_EQ(degrees.kind, MapUnit::Kind::angle);
  EXPECT_FALSE(degrees.IsLength());
  EXPECT_EQ(UnitOfKeys({{1024, 0, 2}, {2048, 0, 4326}}).symbol, "°");
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 2}, {2048, 0, 4807}}).IsKnown()) << "it may count in grads";
  EXPECT_EQ(UnitOfKeys({{1024, 0, 2}, {2048, 0, 4807}, {2054, 0, 9105}}).symbol, "gon");
  // Angles of the system below say nothing about a projected one.
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {2054, 0, 9102}, {3072, 0, 32767}}).IsKnown());
}

TEST(MapUnitOf, ACodeAlone_Should_MeanMeters_OnlyWhereThatIsCertain) {
  for (const int code : {25832, 32633, 31467, 3857, 2154, 27700, 26917, 2056}) {
    EXPECT_EQ(UnitOfKeys({{1024, 0, 1}, {3072, 0, static_cast<uint16_t>(code)}}).symbol, "m")
        << code;
  }
  // State planes in feet.
  for (const int code : {2225, 2263, 3435, 6583, 32100}) {
    EXPECT_FALSE(UnitOfKeys({{1024, 0, 1}, {3072, 0, static_cast<uint16_t>(code)}}).IsKnown())
        << code;
  }
  EXPECT_FALSE(UnitOfKeys({{1024, 0, 3}, {2048, 0, 4326}}).IsKnown()) << "geocentric";
  EXPECT_FALSE(MapUnitOf({}).IsKnown());
}

TEST(MapUnitOf, Texts_Should_TellTheUnitOfTheirOuterSystem) {
  const std::string wgs =
      R"(GEOGCS["WGS 84",DATUM["D",SPHEROID["S",6378137,298.25]],PRIMEM["Greenwich",0],)"
      R"(UNIT["degree",0.0174532925199433]])";
  EXPECT_EQ(UnitOfText(wgs).symbol, "°");
  EXPECT_EQ(UnitOfText(R"(PROJCS["X",)" + wgs + R"(,PROJECTION["P"],UNIT["foot",0.3048]])").symbol,
            "ft");
  EXPECT_EQ(UnitOfText(R"(PROJCS["X",)" + wgs +
                       R"(,UNIT["US survey foot",0.304800609601219,AUTHORITY["EPSG","9003"]]])")
                .symbol,
            "US ft");
  EXPECT_FALSE(UnitOfText(R"(PROJCS["X",)" + wgs + R"(,PROJECTION["P"]])").IsKnown());
  EXPECT_EQ(UnitOfText(R"(COMPD_CS["c",PROJCS["X",)" + wgs +
                       R"(,UNIT["metre",1]],VERT_CS["v",UNIT["foot",0.3048]]])")
                .symbol,
            "m");
  // The second version of the notation.
  EXPECT_EQ(UnitOfText(R"(PROJCRS["X",BASEGEOGCRS["b",DATUM["d",ELLIPSOID["e",1,2,)"
                       R"(LENGTHUNIT["metre",1]]]],CS[Cartesian,2],AXIS["E",east,)"
                       R"(LENGTHUNIT["foot",0.3048]],AXIS["N",north,LENGTHUNIT["foot",0.3048]]])")
                .symbol,
            "ft");
  EXPECT_EQ(UnitOfText(R"(GEOGCRS["x",DATUM["d",ELLIPSOID["e",1,2,LENGTHUNIT["metre",1]]],)"
                       R"(CS[ellipsoidal,2],ANGLEUNIT["degree",0.0174532925199433]])")
                .symbol,
            "°");
}

TEST(MapUnitOf, CoordinatesFromTheCenterOfTheEarth_Should_HaveNoUnitOfAMap) {
  const std::string datum = R"(DATUM["D",ELLIPSOID["E",6378137,298.25,LENGTHUNIT["metre",1]]],)"
                            R"(PRIMEM["Greenwich",0,ANGLEUNIT["degree",0.0174532925199433]],)";
  const std::string axes = R"(AXIS["X",geocentricX],AXIS["Y",geocentricY],AXIS["Z",geocentricZ])";
  for (const char* unit : {"LENGTHUNIT", "UNIT"}) {
    const std::string text =
        R"(GEODCRS["WGS 84",)" + datum + "CS[Cartesian,3]," + axes + "," + unit + R"(["metre",1]])";
    EXPECT_FALSE(UnitOfText(text).IsKnown()) << text;
  }
  EXPECT_EQ(UnitOfText(R"(GEODCRS["WGS 84",)" + datum +
                       R"(CS[ellipsoidal,3],AXIS["h",up,LENGTHUNIT["metre",1]],)"
                       R"(AXIS["lat",north,ANGLEUNIT["degree",0.0174532925199433]]])")
                .symbol,
            "°");
}

TEST(MapUnitOf, ATextWithoutAUnit_Should_CountByItsCode) {
  EXPECT_EQ(UnitOfText(R"(PROJCS["X",AUTHORITY["EPSG","25832"]])").symbol, "m");
  EXPECT_FALSE(UnitOfText(R"(PROJCS["X",AUTHORITY["EPSG","2263"]])").IsKnown());
}

TEST(MapUnitOf, Keys_Should_CountBeforeTheText) {
  CoordinateSystem system;
  system.keys = KeysOf({{1024, 0, 1}, {3076, 0, 9002}});
  system.wkt = R"(PROJCS["X",UNIT["metre",1]])";
  EXPECT_EQ(MapUnitOf(system).symbol, "ft");
}

TEST(MapUnitOf, DamagedTexts_Should_BeUnknown) {
  for (const char* text :
       {"", "[", "]", "\"", "PROJCS", "PROJCS[", "PROJCS[\"x", "UNIT[\"m\",1]", "PROJCS[\"x\",UNIT",
        "PROJCS[\"x\",UNIT[\"m\",-1]]", "PROJCS[\"x\",UNIT[\"m\",0]]",
        "PROJCS[\"x\",UNIT[\"m\",1e999]]", "PROJCS[\"x\",UNIT[\"m\",nan]]", "]]]]UNIT[,1]"}) {
    EXPECT_FALSE(UnitOfText(text).IsKnown()) << text;
  }
  EXPECT_FALSE(UnitOfText(std::string(100'000, '[')).IsKnown());
}

TEST(MapUnitNamed, UsualUnits_Should_BeFoundByTheirNames) {
  for (const MapUnit& unit : UsualMapUnits()) {
    EXPECT_TRUE(unit.IsKnown());
    EXPECT_EQ(MapUnitNamed(unit.symbol), unit);
  }
  EXPECT_EQ(UsualMapUnits().size(), 4u);
  EXPECT_EQ(MapUnitNamed("degrees").symbol, "°");
  EXPECT_FALSE(MapUnitNamed("").IsKnown());
  EXPECT_FALSE(MapUnitNamed("furlong").IsKnown());
}

}  // namespace
}  // namespace rasterkit
