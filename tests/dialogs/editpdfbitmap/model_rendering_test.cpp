#include <new>
#include <stdexcept>
#include <system_error>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// Pages of a PDF.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kNoMemory[] = "Not enough RAM available for the image! Try a lower DPI-setting.";

class EditRendering : public EditModelTest {
 protected:
  /// The first `times` exports throw.
  template <typename Failure>
  void FailTimes(int times, const Failure& failure) {
    pdf.onExport = [this, times, failure](const PdfDocument::PdfKeepGoing&) {
      if (static_cast<int>(pdf.exports.size()) <= times) throw failure;
      return true;
    };
  }
};

TEST_F(EditRendering, RenderPdfToBmp_Should_ExportThePage_AtDpiOverAHundred) {
  OpenPdf(3);
  Type("300");
  model->CoBoResolutionKeyPress(ComboKey::enter);
  ChoosePage(2);
  ASSERT_THAT(pdf.exports, SizeIs(2));
  EXPECT_EQ(pdf.exports[0].index, 0);
  EXPECT_EQ(pdf.exports[0].scale, 3.0);
  EXPECT_EQ(pdf.exports[1].index, 1);
  EXPECT_EQ(pdf.exports[1].scale, 3.0);
  EXPECT_EQ(pdf.exports[1].rotation, PdfRotation::none);
  EXPECT_EQ(model->Resolution(), 300);
  EXPECT_EQ(model->PageNumber(), 2);
  EXPECT_TRUE(SamePixels(PdfPicture(1, 3.0), Work()));
}

TEST_F(EditRendering, RenderPdfToBmp_Should_SwitchTransparencyOff) {
  OpenPdf();
  EXPECT_FALSE(Work().Transparent());
}

TEST_F(EditRendering, RenderPdfToBmp_Should_NotFoldTheResolution) {
  OpenPdf();
  ChooseResolution("600");
  EXPECT_EQ(model->Resolution(), 600);
}

TEST_F(EditRendering, RenderPdfToBmp_Should_KeepTheResolution_When_TheBoxHoldsNoNumber) {
  OpenPdf();
  for (const char* text : {"", "dpi", "-", "0", "-72", "000"}) {
    Forget();
    ChooseResolution(text);
    EXPECT_THAT(pdf.exports, IsEmpty()) << text;
    model->SpeedButtonGrayScaleClick();
    ASSERT_THAT(pdf.exports, SizeIs(1)) << text;
    EXPECT_EQ(pdf.exports[0].scale, 1.5) << text;
  }
}

TEST_F(EditRendering, RenderPdfToBmp_Should_TakeWhatIsInTheBox_When_AnotherControlAsks) {
  OpenPdf();
  Type("200");
  EXPECT_THAT(pdf.exports, IsEmpty());
  model->SpeedButtonGrayScaleClick();
  EXPECT_EQ(model->Resolution(), 200);
  EXPECT_EQ(pdf.exports.back().scale, 2.0);
}

TEST_F(EditRendering, RenderPdfToBmp_Should_ClampThePage) {
  OpenPdf(3);
  ChoosePage(7);
  EXPECT_EQ(model->PageNumber(), 3);
  ChoosePage(-4);
  EXPECT_EQ(model->PageNumber(), 1);
  EXPECT_EQ(pdf.exports.back().index, 0);
}

TEST_F(EditRendering, RenderPdfToBmp_Should_GiveTheBitmapBackFirst) {
  OpenPdf();
  const MemoryLimit limit(40000);
  const TBitmap* shown = &Work();
  pdf.onExport = [&](const PdfDocument::PdfKeepGoing&) {
    EXPECT_EQ(tool.OrgBitmap(), nullptr);
    EXPECT_EQ(model->WorkBitmap(), nullptr);
    return true;
  };
  EXPECT_EQ(tool.OrgBitmap(), shown);
  ChooseResolution("72");
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditRendering, RealRenderPDF_Should_GiveAnEmptyBitmap_When_TheExportFails) {
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) { return false; };
  EXPECT_TRUE(model->SetOrgFilename("a.pdf"));
  ASSERT_NE(model->WorkBitmap(), nullptr);
  EXPECT_TRUE(Work().Empty());
  EXPECT_THAT(messages, IsEmpty());
}

// Not enough memory.

TEST_F(EditRendering, Shortage_Should_TryTheSameResolutionOnceMore) {
  OpenPdf();
  FailTimes(1, std::bad_alloc());
  ChooseResolution("600");
  EXPECT_THAT(messages, ElementsAre(kNoMemory));
  ASSERT_THAT(pdf.exports, SizeIs(2));
  EXPECT_EQ(pdf.exports[0].scale, 6.0);
  EXPECT_EQ(pdf.exports[1].scale, 6.0);
  EXPECT_EQ(pdf.exports[1].rotation, PdfRotation::none);
  EXPECT_TRUE(SamePixels(PdfPicture(0, 6.0), Work()));
  EXPECT_FALSE(Work().Transparent());
  EXPECT_EQ(Text(CoBoResolution), "150") << "the last good one is shown";
  EXPECT_EQ(model->Resolution(), 150);
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditRendering, Shortage_Should_ShowTheLastGoodResolution_BeforeItIsTold) {
  OpenPdf();
  FailTimes(1, std::bad_alloc());
  std::string shown;
  HostPorts().messageBox = [&](const std::string&) { shown = Text(CoBoResolution); };
  ChooseResolution("600");
  EXPECT_EQ(shown, "150");
}

TEST_F(EditRendering, Shortage_Should_LeaveAnEmptyView_When_ItComesTwice) {
  OpenPdf();
  FailTimes(2, LimitError("PDF: too many pixels"));
  ChooseResolution("600");
  EXPECT_THAT(messages, ElementsAre(kNoMemory, "PDF: too many pixels"));
  EXPECT_THAT(pdf.exports, SizeIs(2));
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_EQ(tool.OrgBitmap(), nullptr);
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_EQ(Text(CoBoResolution), "150");
  ChooseResolution("72");
  EXPECT_TRUE(SamePixels(PdfPicture(0, 0.72), Work())) << "the window still works";
}

TEST_F(EditRendering, Shortage_Should_LeaveAnEmptyView_When_TheSecondErrorIsAnother) {
  OpenPdf();
  pdf.onExport = [this](const PdfDocument::PdfKeepGoing&) -> bool {
    if (pdf.exports.size() == 1) throw std::bad_alloc();
    throw FormatError("PDF: damaged");
  };
  ChooseResolution("600");
  EXPECT_THAT(messages, ElementsAre(kNoMemory, "PDF: damaged"));
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditRendering, Shortage_Should_BeErrorsOfTheSystemToo) {
  OpenPdf();
  FailTimes(1, std::system_error(std::make_error_code(std::errc::io_error)));
  ChooseResolution("72");
  EXPECT_THAT(messages, ElementsAre(kNoMemory));
  EXPECT_TRUE(SamePixels(PdfPicture(0, 0.72), Work()));
}

TEST_F(EditRendering, Shortage_Should_LeaveAWorkingWindow_When_TheFirstPageIsTooLarge) {
  FailTimes(2, LimitError("PDF: too many pixels"));
  EXPECT_TRUE(model->SetOrgFilename("a.pdf"));
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_TRUE(Shown(CoBoResolution));
  EXPECT_FALSE(Usable(NaviResultPost));
  EXPECT_FALSE(Usable(SpeedButtonSave));
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, IsEmpty()) << "there is nothing to hand out";
  model->CoBoResolutionKeyPress(ComboKey::enter);
  ASSERT_NE(model->WorkBitmap(), nullptr) << "the same resolution may be tried again";
  EXPECT_TRUE(Usable(NaviResultPost));
  EXPECT_TRUE(Usable(SpeedButtonSave));
}

TEST_F(EditRendering, Shortage_Should_NotBeRemembered) {
  OpenPdf();
  FailTimes(1, std::bad_alloc());
  ChooseResolution("600");
  EXPECT_EQ(settings["Settings/FormEditPdfBmp.Resolution"], "150");
}

// Other errors.

TEST_F(EditRendering, OtherErrors_Should_BeTold_AndCloseTheWindow) {
  OpenPdf();
  FailTimes(1, FormatError("PDF: damaged", "a.pdf"));
  ChooseResolution("72");
  EXPECT_THAT(messages,
              ElementsAre("PDF could not be rendered! Please contact Tarnwick Hotline.\r\n"
                          "Original error was \"FormatError\": a.pdf: PDF: damaged"));
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
  EXPECT_EQ(model->ModalResult(), mrCancel);
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_EQ(tool.OrgBitmap(), nullptr);
  EXPECT_THAT(pdf.exports, SizeIs(1)) << "no second attempt";
}

TEST_F(EditRendering, OtherErrors_Should_BearTheirClass) {
  FailTimes(1, std::runtime_error("out of ink"));
  model->SetOrgFilename("a.pdf");
  EXPECT_THAT(messages, ElementsAre(HasSubstr("\"runtime_error\": out of ink")));
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
}

TEST_F(EditRendering, OtherErrors_Should_BeTold_When_TheyAreNoExceptions) {
  FailTimes(1, 42);
  model->SetOrgFilename("a.pdf");
  EXPECT_THAT(messages, ElementsAre(HasSubstr("PDF could not be rendered!")));
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
}

TEST_F(EditRendering, OtherErrors_Should_BeThoseOfThePageToo) {
  pdf.onPageSize = [](int) { throw FormatError("PDF: no box"); };
  model->SetOrgFilename("a.pdf");
  EXPECT_THAT(messages, ElementsAre(HasSubstr("\"FormatError\": PDF: no box")));
  EXPECT_EQ(Text(LabelPageSize), "");
}

// Before it works.

TEST_F(EditRendering, PageSize_Should_BeToldBeforeThePageIsRendered) {
  pdf.pages = {{595.276, 841.89}};
  std::string told;
  pdf.onExport = [&](const PdfDocument::PdfKeepGoing&) {
    told = Text(LabelPageSize);
    return true;
  };
  model->SetOrgFilename("a.pdf");
  EXPECT_EQ(told, "1240 * 1754 px, 210 * 297 mm (6.52 [MB])");
}

TEST_F(EditRendering, PageSize_Should_FollowWhatIsTyped) {
  OpenPdf();
  Type("30");
  EXPECT_EQ(Text(LabelPageSize), "30 * 15 px, 25 * 13 mm (1350 [byte])");
  Type("300");
  EXPECT_EQ(Text(LabelPageSize), "300 * 150 px, 25 * 13 mm (135 [kB])");
  EXPECT_THAT(pdf.exports, IsEmpty());
}

TEST_F(EditRendering, PageSize_Should_FollowThePage) {
  OpenPdf();
  pdf.pages = {{72, 36}, {36, 72}};
  model->SetOrgFilename("two.pdf");
  ChoosePage(2);
  EXPECT_THAT(Text(LabelPageSize), StartsWith("75 * 150 px"));
}

TEST_F(EditRendering, Resolution_Should_BeRemembered) {
  OpenPdf();
  ChooseResolution("200");
  EXPECT_EQ(settings["Settings/FormEditPdfBmp.Resolution"], "200");
  StartAnew();
  EXPECT_EQ(Text(CoBoResolution), "200");
  EXPECT_EQ(model->Resolution(), 150) << "nothing is rendered yet";
  OpenPdf();
  EXPECT_EQ(model->Resolution(), 200);
}

}  // namespace
}  // namespace rasterkit::test
