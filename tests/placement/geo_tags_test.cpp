#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/placement.h>

#include "tests/placement/geo_tag_values.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<TagValue> With(std::vector<TagValue> tags, const std::vector<TagValue>& more) {
  tags.insert(tags.end(), more.begin(), more.end());
  return tags;
}

const TagValue* Find(const std::vector<TagValue>& tags, uint16_t number) {
  for (const TagValue& tag : tags) {
    if (tag.tag == number) return &tag;
  }
  return nullptr;
}

Placement Read(const std::vector<TagValue>& tags) {
  return ReadPlacement("", tags, 100, 50);
}

TEST(GeoTags, ScaleAndTiePointCountFromTheCorner) {
  const Placement placement =
      Read({DoublesTag(33550, {2, 4, 0}), DoublesTag(33922, {10, 20, 0, 1000, 5000, 0})});
  EXPECT_EQ(placement.affine, (Affine{2, 0, 0, -4, 1000 - 19, 5000 + 78}));
  ASSERT_EQ(placement.stated.size(), 1u);
  EXPECT_EQ(placement.stated[0].source, PositionSource::geoTiff);
  EXPECT_THAT(placement.controlPoints, IsEmpty());
  EXPECT_FALSE(placement.pixelIsPoint);
}

TEST(GeoTags, PixelIsPointCountsFromTheCenter) {
  const Placement placement = Read(With(
      KeyTags(true), {DoublesTag(33550, {2, 4, 0}), DoublesTag(33922, {0, 0, 0, 1000, 5000, 0})}));
  EXPECT_EQ(placement.affine, (Affine{2, 0, 0, -4, 1000, 5000}));
  EXPECT_TRUE(placement.pixelIsPoint);
}

TEST(GeoTags, TransformationHasAllSixNumbers) {
  const std::vector<double> matrix = {3, 1, 0, 700, 0.5, -2, 0, 900, 0, 0, 0, 0, 0, 0, 0, 1};
  EXPECT_EQ(Read({DoublesTag(34264, matrix)}).affine, (Affine{3, 0.5, 1, -2, 702, 899.25}));
  EXPECT_EQ(Read(With(KeyTags(true), {DoublesTag(34264, matrix)})).affine,
            (Affine{3, 0.5, 1, -2, 700, 900}));
}

TEST(GeoTags, SeveralTiePointsAreControlPoints) {
  const std::vector<double> ties = {0, 0, 0, 10, 20, 0, 9, 1, 2, 30, 40, 5};
  const Placement area = Read({DoublesTag(33922, ties)});
  EXPECT_FALSE(area.affine);
  EXPECT_TRUE(area.IsKnown());
  ASSERT_EQ(area.controlPoints.size(), 2u);
  EXPECT_EQ(area.controlPoints[1].column, 9);
  EXPECT_EQ(area.controlPoints[1].level, 2);
  EXPECT_EQ(area.controlPoints[1].z, 5);
  const Placement point = Read(With(KeyTags(true), {DoublesTag(33922, ties)}));
  EXPECT_EQ(point.controlPoints[1].column, 9.5);
  EXPECT_EQ(point.controlPoints[1].row, 1.5);
}

TEST(GeoTags, DamagedOnesGiveAWarning) {
  const Placement zero =
      Read({DoublesTag(33550, {0, 4, 0}), DoublesTag(33922, {0, 0, 0, 1, 1, 0})});
  EXPECT_FALSE(zero.affine);
  EXPECT_THAT(zero.warnings, ElementsAre(HasSubstr("no area")));
  const Placement nan =
      Read({DoublesTag(33550, {1, 1, 0}), DoublesTag(33922, {0, 0, 0, NAN, 1, 0})});
  EXPECT_FALSE(nan.affine);
  EXPECT_THAT(Read({DoublesTag(33922, {0, 0, 0, NAN, 1, 0})}).warnings,
              ElementsAre(HasSubstr("1 tie points")));
  EXPECT_THAT(Read({DoublesTag(50844, {1, 2})}).warnings, ElementsAre(HasSubstr("2 numbers")));
  EXPECT_FALSE(Read({DoublesTag(34264, {1, 2, 3})}).affine);
  EXPECT_FALSE(Read({WordsTag(33550, {1, 1}), WordsTag(33922, {0, 0, 0, 1, 1, 1})}).affine);
  EXPECT_FALSE(Read({WordsTag(34735, {1, 1, 0, 9, 1025, 0})}).pixelIsPoint);
}

TEST(GeoTags, AreWrittenAsScaleOnlyWhereRowsRunSouth) {
  Placement placement;
  placement.affine = Affine{2, 0, 0, -4, 981, 5078};
  auto tags = TagsOf(placement);
  ASSERT_NE(Find(tags, 33550), nullptr);
  EXPECT_EQ(*Find(tags, 33550), DoublesTag(33550, {2, 4, 0}));
  EXPECT_EQ(*Find(tags, 33922), DoublesTag(33922, {0, 0, 0, 980, 5080, 0}));
  EXPECT_EQ(Find(tags, 34264), nullptr);
  for (const Affine& affine : {Affine{2, 0, 0, 4, 1, 1}, Affine{-2, 0, 0, -4, 1, 1},
                               Affine{2, 1, 0, -4, 1, 1}, Affine{0, 1, 1, 0, 1, 1}}) {
    placement.affine = affine;
    tags = TagsOf(placement);
    EXPECT_EQ(Find(tags, 33550), nullptr);
    EXPECT_NE(Find(tags, 34264), nullptr);
  }
}

TEST(GeoTags, KeepKeysAsBytes) {
  auto source = With(KeyTags(true), {DoublesTag(34736, {6378137, 298.25}), TextTag(42113, "-9999"),
                                     DoublesTag(50844, std::vector<double>(92, 1.5))});
  const auto tags = TagsOf(Read(source));
  for (const TagValue& tag : source) {
    ASSERT_NE(Find(tags, tag.tag), nullptr) << tag.tag;
    EXPECT_EQ(*Find(tags, tag.tag), tag) << tag.tag;
  }
}

TEST(GeoTags, ComeBack) {
  const auto seed = std::random_device()();
  std::mt19937_64 random(seed);
  const auto number = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  for (int i = 0; i < 500; ++i) {
    Placement placement = Read(KeyTags(i % 2 == 0));
    const bool isStraight = i % 3 == 0;
    placement.affine = Affine{number(0.1, 9),
                              isStraight ? 0 : number(-1, 1),
                              isStraight ? 0 : number(-1, 1),
                              number(-9, -0.1),
                              number(0, 1e6),
                              number(0, 1e7)};
    for (int point = 0; point < i % 4; ++point) {
      placement.controlPoints.push_back({number(0, 99), number(0, 99), 0, number(0, 1e6), 7, 8});
    }
    const Placement back = Read(TagsOf(placement));
    ASSERT_TRUE(back.affine) << "seed " << seed;
    EXPECT_EQ(back.affine->xPerColumn, placement.affine->xPerColumn) << "seed " << seed;
    EXPECT_EQ(back.affine->yPerRow, placement.affine->yPerRow) << "seed " << seed;
    ASSERT_NEAR(back.affine->x, placement.affine->x, 1e-8) << "seed " << seed;
    ASSERT_NEAR(back.affine->y, placement.affine->y, 1e-8) << "seed " << seed;
    ASSERT_EQ(back.controlPoints.size(), placement.controlPoints.size()) << "seed " << seed;
    for (size_t point = 0; point < back.controlPoints.size(); ++point) {
      ASSERT_NEAR(back.controlPoints[point].column, placement.controlPoints[point].column, 1e-12);
      EXPECT_EQ(back.controlPoints[point].x, placement.controlPoints[point].x);
    }
  }
}

TEST(GeoTags, TextWithACodeGivesKeys) {
  const auto keysOf = [](const std::string& wkt) {
    Placement placement;
    placement.affine = Affine{2, 0, 0, -2, 1000, 2000};
    placement.system.wkt = wkt;
    return Read(TagsOf(placement)).system.keys;
  };
  using testing::ElementsAre;
  EXPECT_THAT(keysOf("PROJCS[\"a\",GEOGCS[\"b\",AUTHORITY[\"EPSG\",\"4258\"]],"
                     "AUTHORITY[\"EPSG\",\"25832\"]]"),
              ElementsAre(1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, 25832));
  EXPECT_THAT(keysOf("GEOGCRS[\"b\",ID[\"EPSG\",4326]]"),
              ElementsAre(1, 1, 0, 3, 1024, 0, 1, 2, 1025, 0, 1, 1, 2048, 0, 1, 4326));
  for (const char* wkt : {"PROJCS[\"a\"]", "COMPD_CS[\"a\",AUTHORITY[\"EPSG\",\"7415\"]]",
                          "PROJCS[\"a\",AUTHORITY[\"EPSG\",\"90000\"]]", ""}) {
    EXPECT_THAT(keysOf(wkt), testing::IsEmpty()) << wkt;
  }
}

}  // namespace
}  // namespace rasterkit::test
