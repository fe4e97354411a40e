#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// The returned graphic.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class EditHandingOut : public EditModelTest {
 protected:
  /// Edits a graphic of a class; its target does not exist.
  template <typename Graphic>
  void EditNewOf() {
    auto graphic = std::make_unique<Graphic>();
    const TBitmap picture = GradientBitmap(pf24bit, 40, 30);
    graphic->Assign(&picture);
    model->SetOrgGraphic(std::move(graphic));
  }
  void Change() { model->SpeedButtonMirrorClick(); }
};

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeTheVeryOne_When_NothingWasChanged) {
  auto graphic = GradientBitmap(pf24bit, 21, 13).Clone();
  const TGraphic* given = graphic.get();
  model->SetOrgGraphic(std::move(graphic));
  EXPECT_EQ(model->GetOrgGraphic().get(), given);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeNone_When_NoneCameAndNothingWasChanged) {
  model->SetOrgGraphic(nullptr);
  EXPECT_EQ(model->GetOrgGraphic(), nullptr);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeOfTheWorkBitmap_When_ItWasChanged) {
  EditNew();
  model->SpeedButtonGrayScaleClick();
  const TBitmap expected = std::move(*Work().Clone());
  const auto graphic = model->GetOrgGraphic();
  ASSERT_NE(dynamic_cast<TBitmap*>(graphic.get()), nullptr);
  EXPECT_TRUE(SamePixels(expected, static_cast<TBitmap&>(*graphic)));
  EXPECT_TRUE(graphic->Modified());
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeTheCut_EvenWhenNothingElseWasChanged) {
  EditNew();
  Cut();
  const auto expected = tool.GetCutBitmap();
  const auto graphic = model->GetOrgGraphic();
  EXPECT_TRUE(SamePixels(*expected, static_cast<TBitmap&>(*graphic)));
  EXPECT_EQ(graphic->Width(), 20);
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeOfTheSameClass) {
  EditNewOf<TJPEGImage>();
  Change();
  EXPECT_NE(dynamic_cast<TJPEGImage*>(model->GetOrgGraphic().get()), nullptr);
  EditNewOf<TPngImage>();
  Change();
  EXPECT_NE(dynamic_cast<TPngImage*>(model->GetOrgGraphic().get()), nullptr);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeTheVeryOne_When_ItCannotBeShown) {
  auto metafile = std::make_unique<TMetafile>();
  const TGraphic* given = metafile.get();
  model->SetOrgGraphic(std::move(metafile));
  EXPECT_THAT(messages, SizeIs(1)) << "it has no records that could be drawn";
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  EXPECT_EQ(model->GetOrgGraphic().get(), given);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeAPng_When_AMetafileCannotTakeThePicture) {
  for (const bool isEnhanced : {false, true}) {
    StartAnew();
    auto metafile = std::make_unique<TMetafile>();
    metafile->SetEnhanced(isEnhanced);
    model->SetOrgGraphic(std::move(metafile));
    OpenPdf();
    const auto graphic = model->GetOrgGraphic();
    ASSERT_NE(dynamic_cast<TPngImage*>(graphic.get()), nullptr);
    EXPECT_EQ(graphic->Width(), 150);
  }
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_BeABitmap_When_NoneCame) {
  model->SetOrgGraphic(nullptr);
  Change();
  EXPECT_NE(dynamic_cast<TBitmap*>(model->GetOrgGraphic().get()), nullptr);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_KeepTheClassThatCameIn_When_APdfWasOpenedInItsPlace) {
  EditNewOf<TJPEGImage>();
  OpenPdf();
  const auto graphic = model->GetOrgGraphic();
  ASSERT_NE(dynamic_cast<TJPEGImage*>(graphic.get()), nullptr);
  EXPECT_EQ(graphic->Width(), 150);
}

TEST_F(EditHandingOut, GetOrgGraphic_Should_Throw_When_MemoryIsShort) {
  EditNewOf<TPngImage>();
  Change();
  const TGraphic* before = model->OrgGraphic();
  const MemoryLimit limit(100);
  EXPECT_THROW(model->GetOrgGraphic(), LimitError);
  EXPECT_EQ(model->OrgGraphic(), before);
}

}  // namespace
}  // namespace rasterkit::test
