#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/palette/nearest_colors.h>

#include "tests/reference/nearest_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

using reference::Color3;

std::vector<Color3> RandomColors(size_t count, int low, int range, std::mt19937& random) {
  std::vector<Color3> colors(count);
  for (Color3& color : colors)
    for (int& channel : color) channel = low + static_cast<int>(random() % unsigned(range));
  return colors;
}

kernels::ColorList ListOf(const std::vector<Color3>& colors) {
  kernels::ColorList list{};
  list.count = colors.size();
  for (size_t i = 0; i < colors.size(); ++i) {
    list.blue[i] = colors[i][0];
    list.green[i] = colors[i][1];
    list.red[i] = colors[i][2];
  }
  return list;
}

void CompareList(const std::vector<Color3>& colors, const std::vector<Color3>& questions) {
  const kernels::ColorList list = ListOf(colors);
  for (const Color3& color : questions) {
    const size_t expected = reference::NearestOf(colors, color);
    test::ForEachSimdTarget([&](int64_t simd) {
      ASSERT_EQ(kernels::NearestInList(list, color[0], color[1], color[2]), expected)
          << colors.size() << " colors, " << hwy::TargetName(simd);
    });
  }
}

TEST(NearestInListTest, EqualsTheReferenceForEveryCountOfColors) {
  std::mt19937 random(90);
  for (size_t count = 1; count <= 256 && !testing::Test::HasFatalFailure(); ++count) {
    CompareList(RandomColors(count, 0, 1024, random), RandomColors(4, 0, 1024, random));
    // So narrow that many are equally near.
    CompareList(RandomColors(count, 500, 4, random), RandomColors(4, 499, 6, random));
  }
}

TEST(NearestInListTest, EqualsTheReferenceAtTheEndsOfTheRange) {
  CompareList({{1023, 1023, 1023}, {1023, 1023, 1022}}, {{0, 0, 0}, {0, 0, 1023}});
  CompareList({{0, 0, 0}, {0, 0, 0}, {0, 0, 1}}, {{1023, 1023, 1023}, {0, 0, 0}});
}

// Candidates with the numbers `first`, `first - 1` and so on: the lowest number, not the first
// place in the list, must win among equals.
void CompareCell(const std::vector<Color3>& colors, int first, const Color3& cell) {
  std::vector<kernels::CellCandidate> candidates;
  std::vector<Color3> byNumber(colors.rbegin(), colors.rend());
  const int lowest = first - static_cast<int>(colors.size()) + 1;
  for (size_t i = 0; i < colors.size(); ++i)
    candidates.push_back({colors[i][0], colors[i][1], colors[i][2],
                          static_cast<uint8_t>(first - static_cast<int>(i))});
  std::vector<uint8_t> expected;
  for (int red = cell[2]; red < cell[2] + 8; ++red)
    for (int green = cell[1]; green < cell[1] + 8; ++green)
      for (int blue = cell[0]; blue < cell[0] + 8; ++blue)
        expected.push_back(static_cast<uint8_t>(
            lowest + static_cast<int>(reference::NearestOf(byNumber, {blue, green, red}))));
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<uint8_t> answers(kernels::kCellColors, 0xCD);
    kernels::AnswerCell(candidates.data(), candidates.size(), cell[0], cell[1], cell[2],
                        answers.data());
    ASSERT_EQ(answers, expected) << colors.size() << " candidates, " << hwy::TargetName(simd);
  });
}

Color3 RandomCell(std::mt19937& random) {
  Color3 cell;
  for (int& channel : cell) channel = static_cast<int>(random() % 32) * 8;
  return cell;
}

TEST(AnswerCellTest, EqualsTheReferenceForAnyCandidates) {
  std::mt19937 random(91);
  for (int i = 0; i < 120 && !testing::Test::HasFatalFailure(); ++i) {
    const size_t count = i < 60 ? 1 + random() % 12 : 1 + random() % 256;
    const int first = static_cast<int>(count - 1 + random() % (257 - count));
    const bool isNarrow = i % 3 == 0;
    CompareCell(RandomColors(count, isNarrow ? 100 : 0, isNarrow ? 6 : 256, random), first,
                isNarrow ? Color3{96, 96, 96} : RandomCell(random));
  }
}

TEST(AnswerCellTest, EqualsTheReferenceInTheCornersOfTheCube) {
  for (int blue : {0, 248})
    for (int green : {0, 248})
      for (int red : {0, 248})
        CompareCell({{255, 255, 255}, {0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}}, 255,
                    {blue, green, red});
}

TEST(AnswerCellTest, FindsTheOnlyCandidateAtTheOtherEndOfTheCube) {
  CompareCell({{255, 255, 255}}, 255, {0, 0, 0});
  CompareCell({{0, 0, 0}}, 200, {248, 248, 248});
}

TEST(CellPlacesTest, EqualsTheDefinitionForAllColors) {
  std::vector<uint8_t> row(256 * 256 * 4);
  std::vector<uint32_t> expected(256 * 256);
  for (uint32_t red = 0; red < 256; ++red) {
    for (uint32_t i = 0; i < 256 * 256; ++i) {
      const uint32_t blue = i & 255, green = i >> 8;
      row[4 * i] = static_cast<uint8_t>(blue);
      row[4 * i + 1] = static_cast<uint8_t>(green);
      row[4 * i + 2] = static_cast<uint8_t>(red);
      row[4 * i + 3] = static_cast<uint8_t>(i * 7 + red);
      const uint32_t cell = red / 8 * 1024 + green / 8 * 32 + blue / 8;
      expected[i] = cell * kernels::kCellColors + red % 8 * 64 + green % 8 * 8 + blue % 8;
    }
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint32_t> places(expected.size());
      kernels::CellPlaces(row.data(), places.size(), places.data());
      ASSERT_TRUE(places == expected) << "red " << red << ", " << hwy::TargetName(simd);
    });
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(CellPlacesTest, TakesRowsOfAnyLength) {
  std::mt19937 random(92);
  for (size_t count = 0; count <= 70; ++count) {
    std::vector<uint8_t> row(4 * count);
    for (uint8_t& byte : row) byte = static_cast<uint8_t>(random());
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint32_t> places(count + 1, 0x88888888);
      kernels::CellPlaces(row.data(), count, places.data());
      EXPECT_EQ(places[count], 0x88888888u) << hwy::TargetName(simd);
      for (size_t i = 0; i < count; ++i) {
        const unsigned blue = row[4 * i], green = row[4 * i + 1], red = row[4 * i + 2];
        ASSERT_EQ(places[i], (red / 8 * 1024 + green / 8 * 32 + blue / 8) * 512 + red % 8 * 64 +
                                 green % 8 * 8 + blue % 8)
            << count << ", " << hwy::TargetName(simd);
      }
    });
  }
}

}  // namespace
}  // namespace rasterkit
