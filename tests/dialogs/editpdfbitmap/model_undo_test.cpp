#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// Ctrl+Z.
namespace rasterkit::test {
namespace {

using testing::IsEmpty;

class EditUndo : public EditModelTest {
 protected:
  void Undo() { EXPECT_TRUE(model->FormKeyDown(EditKey::z, true)); }
  /// Every effect of `change` is undone.
  void ExpectUndone(const std::function<void()>& change) {
    const TBitmap before = std::move(*Work().Clone());
    const TGraphic* graphic = model->OrgGraphic();
    const bool changed = model->BmpChanged(), hasCut = tool.GetCutRectExists();
    const RDRect cut = tool.BmpCutRect();
    const int rotation = model->Rotation(), resolution = model->Resolution(),
              page = model->PageNumber();
    std::vector<bool> down;
    for (const EditControl toggle : kToggles) down.push_back(Down(toggle));

    change();
    EXPECT_TRUE(model->CanUndo());
    Undo();
    EXPECT_TRUE(SamePixels(before, Work()));
    EXPECT_EQ(tool.OrgBitmap(), &Work());
    EXPECT_EQ(model->OrgGraphic(), graphic);
    EXPECT_EQ(model->BmpChanged(), changed);
    EXPECT_EQ(model->Rotation(), rotation);
    EXPECT_EQ(Text(CoBoRotation), std::to_string(rotation));
    EXPECT_EQ(model->Resolution(), resolution);
    EXPECT_EQ(Text(CoBoResolution), std::to_string(resolution));
    EXPECT_EQ(model->PageNumber(), page);
    EXPECT_EQ(tool.GetCutRectExists(), hasCut);
    if (hasCut) {
      EXPECT_TRUE(AlmostEqual(tool.BmpCutRect(), cut, 1e-9));
    }
    for (size_t i = 0; i < down.size(); ++i) EXPECT_EQ(Down(kToggles[i]), down[i]);
    EXPECT_FALSE(model->CanUndo()) << "one step";
    EXPECT_THAT(view.calls, testing::Contains("repaint"));
  }
};

TEST_F(EditUndo, Should_TakeBackEveryChange_When_TheTargetIsNew) {
  EditNew();
  Cut();
  view.onChangeBitmap = [](TBitmap& bitmap, TChgBmpValuesRec&) {
    bitmap.ScanLine(0)[0] ^= 1;
    return true;
  };
  view.onEditSize = [](int32_t& width, int32_t&, bool&) {
    width = 17;
    return true;
  };
  ExpectUndone([&] { model->SpeedButtonMirrorClick(); });
  ExpectUndone([&] { model->SpeedButton256ColorsClick(); });
  ExpectUndone([&] { model->SpeedButtonGrayScaleClick(); });
  ExpectUndone([&] { model->SpeedButtonBlackWhiteClick(); });
  ExpectUndone([&] { ChooseAngle("10"); });
  ExpectUndone([&] { model->SpeedButtonEditClick(); });
  ExpectUndone([&] { model->FormKeyDown(EditKey::h, true); });
  ExpectUndone([&] { model->SpeedButtonCutClick(); });
  EXPECT_TRUE(Usable(SpeedButtonEdit));
}

TEST_F(EditUndo, Should_TakeBackEveryChange_When_AllIsMadeAnew) {
  EditExisting();
  Cut();
  ExpectUndone([&] { model->SpeedButtonGrayScaleClick(); });
  ExpectUndone([&] { ChooseAngle("90"); });
  ExpectUndone([&] { model->SpeedButtonMirrorClick(); });
}

TEST_F(EditUndo, Should_TakeBackEveryChange_When_ItIsAPage) {
  OpenPdf(3);
  Cut();
  ExpectUndone([&] { ChooseResolution("72"); });
  ExpectUndone([&] { ChooseAngle("90"); });
  ExpectUndone([&] { ChoosePage(3); });
  EXPECT_EQ(view.page, 1);
  ExpectUndone([&] { model->SpeedButton256ColorsClick(); });
}

TEST_F(EditUndo, Should_TakeBackOnlyTheLastChange) {
  EditNew();
  model->SpeedButtonMirrorClick();
  const TBitmap mirrored = std::move(*Work().Clone());
  model->SpeedButtonGrayScaleClick();
  Undo();
  EXPECT_TRUE(SamePixels(mirrored, Work()));
  EXPECT_TRUE(Down(SpeedButtonMirror));
  Undo();
  EXPECT_TRUE(SamePixels(mirrored, Work()));
}

TEST_F(EditUndo, Should_TakeBackTheCutFirst_When_ThatIsLater) {
  EditNew();
  model->SpeedButtonMirrorClick();
  const TBitmap mirrored = std::move(*Work().Clone());
  Cut();
  Undo();
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_TRUE(SamePixels(mirrored, Work()));
  Undo();
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Work()));
}

TEST_F(EditUndo, Should_TakeBackThePicture_When_TheCutIsEarlier) {
  for (const auto change :
       {&EditPdfBmpModel::SpeedButtonGrayScaleClick, &EditPdfBmpModel::SpeedButtonMirrorClick}) {
    StartAnew();
    EditNew();
    Cut();
    (*model.*change)();
    Undo();
    EXPECT_TRUE(tool.GetCutRectExists());
    EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Work()));
    Undo();
    EXPECT_TRUE(tool.GetCutRectExists()) << "that is as far as it goes";
  }
}

TEST_F(EditUndo, Should_BringBackTheCut_When_ItWasRemovedByTheKey) {
  EditNew();
  Cut();
  model->FormKeyDown(EditKey::escape, false);
  Undo();
  EXPECT_TRUE(tool.GetCutRectExists());
}

TEST_F(EditUndo, Should_BeNothing_When_NothingWasChanged) {
  EditNew();
  EXPECT_FALSE(model->CanUndo());
  Undo();
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Work()));
  EXPECT_FALSE(model->FormKeyDown(EditKey::z, false)) << "Z alone is nothing";
}

TEST_F(EditUndo, Should_NotReachAnotherFile) {
  EditNew();
  model->SpeedButtonMirrorClick();
  model->SetOrgGraphic(GradientBitmap(pf24bit, 9, 7).Clone());
  EXPECT_FALSE(model->CanUndo());
  model->SpeedButtonMirrorClick();
  OpenPdf();
  EXPECT_FALSE(model->CanUndo());
}

TEST_F(EditUndo, Should_StayWithinTheMemoryOfAPicture) {
  EditNew();
  const MemoryLimit limit(7199);  // Two pictures are 7200 bytes.
  model->SpeedButtonMirrorClick();
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_FALSE(model->CanUndo());
}

TEST_F(EditUndo, Should_StayWithinTheMemoryOfAPicture_When_APageFollows) {
  OpenPdf();
  {
    // The previous page takes 33900 bytes, and the next one 72 * 36 * 4 while it is drawn.
    const MemoryLimit limit(33900 + 10367);
    ChooseResolution("72");
  }
  EXPECT_EQ(model->Resolution(), 72);
  EXPECT_FALSE(model->CanUndo());
  ChooseResolution("150");
  EXPECT_TRUE(model->CanUndo());
}

TEST_F(EditUndo, Should_StayWithinTheMemoryOfAPicture_When_AGraphicFollows) {
  EditNew();
  view.onChangeBitmap = [](TBitmap&, TChgBmpValuesRec&) { return true; };
  const MemoryLimit limit(7200);  // Bitmap, bitmap before, graphic before.
  model->SpeedButtonEditClick();
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_FALSE(model->CanUndo());
}

TEST_F(EditUndo, Should_KeepTheEarlierChange_When_TheLaterWasNotMade) {
  EditNew();
  model->SpeedButtonMirrorClick();
  model->SpeedButtonEditClick();
  EXPECT_TRUE(model->CanUndo());
  Undo();
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Work()));
}

TEST_F(EditUndo, Should_NotBeMistakenForAFailure) {
  EditNew();
  model->SpeedButtonMirrorClick();
  const TBitmap mirrored = std::move(*Work().Clone());
  {
    const MemoryLimit limit(100);
    model->SpeedButtonGrayScaleClick();
  }
  EXPECT_TRUE(SamePixels(mirrored, Work()))
      << "the failure of the later is not the end of the earlier";
  Undo();
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Work()));
}

TEST_F(EditUndo, Should_KeepTheRememberedResolution_When_TheSourceIsAGraphic) {
  settings["Settings/FormEditPdfBmp.Resolution"] = "300";
  StartAnew();
  EditNew();
  model->SpeedButtonMirrorClick();
  Undo();
  EXPECT_EQ(Text(CoBoResolution), "300");
}

}  // namespace
}  // namespace rasterkit::test
