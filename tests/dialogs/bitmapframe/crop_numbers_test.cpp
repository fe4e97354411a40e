#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_numbers.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

TEST(CropNumbers, Should_BeTheWholeBitmap_When_ThereIsNoCut) {
  TBitmap bitmap = GradientBitmap(pf24bit, 60, 40);
  ModelAndView it;
  it.model.SetOrgBitmap(&bitmap);
  EXPECT_EQ(CropNumbersOf(it.model), (CropNumbers{0, 0, 60, 40}));
  it.model.SetOrgBitmap(nullptr);
  EXPECT_EQ(CropNumbersOf(it.model), (CropNumbers{}));
}

TEST(CropNumbers, Should_BeThePartInside_When_TheCutReachesBeyondTheBitmap) {
  TBitmap bitmap = GradientBitmap(pf24bit, 60, 40);
  ModelAndView it;
  it.model.SetOrgBitmap(&bitmap);
  it.model.SetBmpCutRect({10, 5, 30.4, 25});
  EXPECT_EQ(CropNumbersOf(it.model), (CropNumbers{10, 5, 20, 20}));
  it.model.SetBmpCutRect({-10, -5, 30, 250});
  EXPECT_EQ(CropNumbersOf(it.model), (CropNumbers{0, 0, 30, 40}));
}

TEST(InsideBitmap, Should_KeepTheCornerAndShortenTheRest) {
  const TRect bitmap{0, 0, 60, 40};
  EXPECT_EQ(InsideBitmap({10, 5, 30, 20}, bitmap), (CropNumbers{10, 5, 30, 20}));
  EXPECT_EQ(InsideBitmap({50, 39, 30, 20}, bitmap), (CropNumbers{50, 39, 10, 1}));
  EXPECT_EQ(InsideBitmap({500, -3, 0, -20}, bitmap), (CropNumbers{59, 0, 1, 1}));
  EXPECT_EQ(InsideBitmap({5, 3, 7, 7}, {0, 0, 0, 0}), (CropNumbers{}));
}

}  // namespace
}  // namespace rasterkit::test
