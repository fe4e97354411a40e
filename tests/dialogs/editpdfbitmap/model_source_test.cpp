#include <rasterkit/graphics/png_image.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// Where the picture comes from.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class EditSource : public EditModelTest {
 protected:
  std::string WriteBitmap(const std::string& name, TPixelFormat format = pf24bit) {
    GradientBitmap(format, 21, 13).SaveToFile(folder / name);
    return folder / name;
  }
};

TEST_F(EditSource, Model_Should_StartAsItIsMade) {
  EXPECT_EQ(model->OrgCaption(), "Convert pdf to png");
  EXPECT_EQ(view.caption, "Convert pdf to png");
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_EQ(model->OrgGraphic(), nullptr);
  EXPECT_EQ(model->PageNumber(), -1);
  EXPECT_EQ(model->Resolution(), 150);
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_EQ(pdf.documents, 0);
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_FALSE(model->IsPDF());
  EXPECT_EQ(Text(CoBoResolution), "150");
  EXPECT_EQ(Text(CoBoRotation), "0");
}

TEST_F(EditSource, Model_Should_LetTheToolGo_When_ItEnds) {
  EditNew();
  model.reset();
  EXPECT_EQ(tool.OrgBitmap(), nullptr);
  EXPECT_FALSE(tool.OnStateChanged);
  Cut();
}

TEST_F(EditSource, CutRectChanged_Should_EnableTheCutButton_ExactlyWhileThereIsACut) {
  EditNew();
  EXPECT_FALSE(Usable(SpeedButtonCut));
  Cut();
  EXPECT_TRUE(Usable(SpeedButtonCut));
  EXPECT_FALSE(Shown(SpeedButtonCut)) << "it stays hidden";
  tool.DelCutRect();
  EXPECT_FALSE(Usable(SpeedButtonCut));
}

TEST_F(EditSource, CutRectChanged_Should_ShowTheSizeOfThePicture_When_TheCutIsGone) {
  EditNew();
  Cut();
  EXPECT_EQ(box.sizeText, "20 * 10 px (600 [byte])");
  model->FormKeyDown(EditKey::del, false);
  EXPECT_EQ(box.sizeText, "40 * 30 px (3600 [byte])");
}

// The window for a given graphic.

TEST_F(EditSource, SetOrgCaption_Should_ShowInTheTitle) {
  model->SetOrgCaption("Edit bitmap");
  EXPECT_EQ(view.caption, "Edit bitmap");
  model->SetBmpFilename("maps/a.bmp");
  EXPECT_EQ(view.caption, "a.bmp - Edit bitmap");
}

TEST_F(EditSource, SetBmpDir_Should_LeaveNamesAndTitleAlone) {
  model->SetOrgCaption("Edit bitmap");
  model->SetBmpDir("maps/");
  model->SetOrgGraphic(GradientBitmap(pf24bit, 40, 30).Clone());
  EXPECT_EQ(model->GetBmpFilename(), "maps/");
  EXPECT_EQ(view.caption, "Edit bitmap");
  EXPECT_FALSE(model->BmpFileExisted());
}

TEST_F(EditSource, SetBmpFilename_Should_NoteWhetherTheFileExisted) {
  EditNew();
  EXPECT_FALSE(model->BmpFileExisted());
  StartAnew();
  EditExisting();
  EXPECT_TRUE(model->BmpFileExisted());
  EXPECT_EQ(model->GetBmpFilename(), folder / "old.bmp");
}

TEST_F(EditSource, SetOrgGraphic_Should_ShowItsPicture) {
  EditNew(pf24bit, 21, 13);
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 13), Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_EQ(model->HelpContext(), 570002);
}

TEST_F(EditSource, SetOrgGraphic_Should_ShowABlankPicture_When_ThereIsNone) {
  model->SetOrgGraphic(nullptr);
  EXPECT_EQ(Work().Width(), 10);
  EXPECT_EQ(Work().Height(), 10);
  EXPECT_EQ(model->OrgGraphic(), nullptr);
}

TEST_F(EditSource, SetOrgGraphic_Should_DrawATransparentPngOnWhite) {
  TBitmap picture = GradientBitmap(pf24bit, 9, 7);
  picture.SetTransparent(true);
  auto png = std::make_unique<TPngImage>();
  png->Assign(&picture);
  const auto expected = GraphicIntoBitmap(png.get());
  model->SetOrgGraphic(std::move(png));
  EXPECT_TRUE(SamePixels(*expected, Work()));
  EXPECT_TRUE(Work().Transparent());
}

TEST_F(EditSource, SetOrgGraphic_Should_LeaveEverythingAsItWas_When_MemoryIsShort) {
  EditNew(pf24bit, 21, 13);
  auto large = GradientBitmap(pf24bit, 100, 100).Clone();
  {
    const MemoryLimit limit(5000);
    model->SetOrgGraphic(std::move(large));
  }
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_EQ(Work().Width(), 21);
  EXPECT_EQ(model->OrgGraphic()->Width(), 21);
}

TEST_F(EditSource, CheckBmpAction_Should_GoByThePixelFormat) {
  const struct {
    TPixelFormat format;
    bool colors256, others;
  } cases[] = {{pf1bit, false, false}, {pf4bit, false, true},  {pf8bit, false, true},
               {pf15bit, false, true}, {pf16bit, false, true}, {pf24bit, true, true},
               {pf32bit, true, true}};
  for (const auto& [format, colors256, others] : cases) {
    EditNew(format);
    EXPECT_EQ(Usable(SpeedButton256Colors), colors256) << format;
    EXPECT_EQ(Usable(SpeedButtonGrayScale), others) << format;
    EXPECT_EQ(Usable(SpeedButtonBlackWhite), others) << format;
    EXPECT_EQ(Usable(SpeedButtonEdit), others) << format;
  }
}

// Files.

TEST_F(EditSource, SetOrgFilename_Should_LoadAGraphic) {
  const std::string name = WriteBitmap("a.bmp");
  EXPECT_TRUE(model->SetOrgFilename(name));
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 13), Work()));
  EXPECT_FALSE(model->IsPDF());
  EXPECT_EQ(model->FileNames().fOrgFilename, name);
  EXPECT_THAT(view.calls, testing::Contains("repaint"));
  EXPECT_FALSE(model->BmpChanged());
}

TEST_F(EditSource, SetOrgFilename_Should_ShowTheFullName_When_TheGraphicLiesElsewhere) {
  const std::string name = WriteBitmap("a.bmp");
  model->SetOrgFilename(name);
  EXPECT_EQ(view.caption, name + " - Convert pdf to png");
  model->SetBmpFilename(folder / "b.bmp");
  EXPECT_EQ(view.caption, "a.bmp - Convert pdf to png");
}

TEST_F(EditSource, SetOrgFilename_Should_RenderAPdf_WhateverTheCaseOfItsExtension) {
  EXPECT_TRUE(model->SetOrgFilename("plans/Plan.PDF"));
  EXPECT_TRUE(model->IsPDF());
  EXPECT_THAT(pdf.loads, ElementsAre("plans/Plan.PDF"));
  EXPECT_TRUE(SamePixels(PdfPicture(0, 1.5), Work()));
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_EQ(view.caption, "Plan.PDF - Convert pdf to png");
}

TEST_F(EditSource, SetOrgFilename_Should_MakeTheDocumentOnce) {
  OpenPdf();
  model->SetOrgFilename("another.pdf");
  EXPECT_EQ(pdf.documents, 1);
  EXPECT_THAT(pdf.loads, ElementsAre("plans/plan.pdf", "another.pdf"));
}

TEST_F(EditSource, SetOrgFilename_Should_NotAskForTheTarget_When_APdfComesFirst) {
  folder.Write("old.png", std::string_view("x"));
  OpenPdf();
  model->SetBmpFilename(folder / "old.png");
  EXPECT_FALSE(model->BmpFileExisted());
  EXPECT_EQ(model->GetBmpFilename(), folder / "old.png");
}

TEST_F(EditSource, SetOrgFilename_Should_KeepThePage_When_ItIsPartOfADocumentThatFails) {
  OpenPdf(3);
  ChoosePage(2);
  const TBitmap shown = std::move(*Work().Clone());
  pdf.onLoad = [](const std::string& name) {
    if (name == "bad.pdf") throw FormatError("PDF: damaged", name);
  };
  EXPECT_FALSE(model->SetOrgFilename("bad.pdf"));
  EXPECT_THAT(messages, ElementsAre("bad.pdf: PDF: damaged"));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_TRUE(SamePixels(shown, Work()));
  EXPECT_EQ(view.caption, "plan.pdf - Convert pdf to png");
  ChoosePage(3);
  EXPECT_TRUE(SamePixels(PdfPicture(2, 1.5), Work())) << "the document is open again";
}

TEST_F(EditSource, SetOrgFilename_Should_TellWhy_When_APdfCannotBeOpened) {
  pdf.onLoad = [](const std::string& name) { throw PdfPasswordError("needs a password", name); };
  EXPECT_FALSE(model->SetOrgFilename("a.pdf"));
  EXPECT_THAT(messages, ElementsAre("a.pdf: needs a password"));
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_FALSE(model->IsPDF());
  EXPECT_EQ(model->FileNames().fOrgFilename, "");
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditSource, SetOrgFilename_Should_TellWhy_When_NothingDrawsPdf) {
  PdfDocumentFactory() = nullptr;
  EXPECT_FALSE(model->SetOrgFilename("a.pdf"));
  EXPECT_THAT(messages, SizeIs(1));
}

TEST_F(EditSource, SetOrgFilename_Should_ShowABlankPicture_When_TheFirstCannotBeRead) {
  const std::string name = folder.Write("a.png", std::string_view("no picture"));
  EXPECT_TRUE(model->SetOrgFilename(name));
  EXPECT_EQ(Work().Width(), 10);
  EXPECT_EQ(model->OrgGraphic(), nullptr);
  EXPECT_THAT(messages, ElementsAre("The file " + name + " cannot be read as a picture."));
}

TEST_F(EditSource, SetOrgFilename_Should_KeepThePicture_When_AnotherCannotBeRead) {
  EditNew(pf24bit, 21, 13);
  EXPECT_FALSE(model->SetOrgFilename(folder / "missing.png"));
  EXPECT_EQ(Work().Width(), 21);
  EXPECT_EQ(model->FileNames().fOrgFilename, folder / "new.bmp");
  EXPECT_THAT(messages, SizeIs(1));
}

// What is visible for each kind of source.

TEST_F(EditSource, SetIsPDF_Should_HideThePages_When_ThereIsOne) {
  OpenPdf(1);
  EXPECT_FALSE(Shown(LabelPage));
  EXPECT_FALSE(Shown(SpinEditPage));
}

TEST_F(EditSource, SetIsPDF_Should_OfferThePages_When_ThereAreMore) {
  OpenPdf(3);
  EXPECT_TRUE(Shown(LabelPage));
  EXPECT_TRUE(Shown(SpinEditPage));
  EXPECT_EQ(Text(LabelPage), "Page (total No. of pages 3)");
  EXPECT_EQ(view.page, 1);
  EXPECT_EQ(view.lastPage, 3);
}

TEST_F(EditSource, SetIsPDF_Should_HideEditAndCut_AndNarrowThePanel) {
  OpenPdf();
  EXPECT_FALSE(Shown(SpeedButtonEdit));
  EXPECT_FALSE(Shown(SpeedButtonCut));
  EXPECT_EQ(view.panelWidth, -2);
  EXPECT_EQ(model->HelpContext(), 570001);
  model->SetOrgFilename("another.pdf");
  EXPECT_EQ(view.panelWidth, -2) << "it is narrow already";
}

TEST_F(EditSource, SetIsPDF_Should_ShowEdit_AndWidenThePanel_When_AGraphicComesAfterAPdf) {
  OpenPdf(3);
  model->SetOrgFilename(WriteBitmap("a.bmp"));
  EXPECT_TRUE(Shown(SpeedButtonEdit));
  EXPECT_FALSE(Shown(SpeedButtonCut));
  EXPECT_EQ(view.panelWidth, 0);
  EXPECT_FALSE(Shown(LabelPage));
  EXPECT_FALSE(Shown(SpinEditPage));
  EXPECT_EQ(model->HelpContext(), 570002);
}

TEST_F(EditSource, SetIsPDF_Should_LeaveThePanelAlone_When_TheFirstIsAGraphic) {
  EditNew();
  EXPECT_EQ(view.panelWidth, 0);
  EXPECT_TRUE(Shown(SpeedButtonEdit));
}

TEST_F(EditSource, SetIsPDF_Should_ShowTheResolution_ExactlyForAPdf) {
  EditNew();
  for (const EditControl control : {LabelDpiX, CoBoResolution, LabelPageSize})
    EXPECT_FALSE(Shown(control));
  OpenPdf();
  for (const EditControl control : {LabelDpiX, CoBoResolution, LabelPageSize})
    EXPECT_TRUE(Shown(control));
  model->SetOrgFilename(WriteBitmap("a.bmp"));
  for (const EditControl control : {LabelDpiX, CoBoResolution, LabelPageSize})
    EXPECT_FALSE(Shown(control));
}

TEST_F(EditSource, SetIsPDF_Should_EnableTheSettings_When_APictureOfOneBitWasThereBefore) {
  EditNew(pf1bit);
  OpenPdf();
  for (const EditControl button :
       {SpeedButton256Colors, SpeedButtonGrayScale, SpeedButtonBlackWhite})
    EXPECT_TRUE(Usable(button));
}

TEST_F(EditSource, OpenPdf_Should_RemoveTheCut) {
  EditNew();
  Cut();
  OpenPdf();
  EXPECT_FALSE(tool.GetCutRectExists());
  Cut();
  OpenPdf();
  EXPECT_FALSE(tool.GetCutRectExists());
}

TEST_F(EditSource, OpenPdf_Should_StartWithTheFirstPage_When_AnotherDocumentStoodElsewhere) {
  OpenPdf(3);
  ChoosePage(3);
  ChooseAngle("90");
  OpenPdf(1);
  EXPECT_EQ(model->PageNumber(), 1);
  EXPECT_EQ(view.lastPage, 1);
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_EQ(Text(CoBoRotation), "0");
  EXPECT_TRUE(SamePixels(PdfPicture(0, 1.5), Work()));
}

}  // namespace
}  // namespace rasterkit::test
