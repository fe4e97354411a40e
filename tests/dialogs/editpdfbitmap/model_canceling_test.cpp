#include <thread>

#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// While a page is being rendered.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EditCanceling : public EditModelTest {
 protected:
  /// The user presses the cancel button while a page is being drawn.
  void CancelWhileRendering() {
    pdf.onExport = [this](const PdfDocument::PdfKeepGoing& keepGoing) {
      EXPECT_TRUE(keepGoing());
      model->NaviResultCancelClick();
      return keepGoing();
    };
  }
};

TEST_F(EditCanceling, Rendering_Should_LeaveNothingButCancel) {
  OpenPdf();
  pdf.onExport = [&](const PdfDocument::PdfKeepGoing& keepGoing) {
    EXPECT_TRUE(model->IsRendering());
    for (int i = 0; i < kEditControls; ++i) {
      const auto control = static_cast<EditControl>(i);
      EXPECT_EQ(Usable(control), control == NaviResultCancel) << i;
    }
    ChoosePage(2);
    model->SpeedButtonMirrorClick();
    model->NaviResultPostClick();
    model->FormDropFile("other.pdf");
    EXPECT_FALSE(model->CoBoResolutionKeyPress(ComboKey::digit));
    EXPECT_TRUE(model->FormKeyDown(EditKey::enter, false));
    EXPECT_TRUE(model->FormKeyDown(EditKey::h, true));
    return keepGoing();
  };
  ChooseResolution("72");
  EXPECT_FALSE(model->IsRendering());
  EXPECT_THAT(pdf.exports, SizeIs(1));
  EXPECT_FALSE(Down(SpeedButtonMirror));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_FALSE(model->InEditCoBo());
  EXPECT_TRUE(Usable(SpeedButtonOpen));
}

TEST_F(EditCanceling, Rendering_Should_TurnTheHostsLoop) {
  OpenPdf();
  int turns = 0;
  ThreadQueue::Current();
  HostPorts().messagePump = [&] { ++turns; };
  pdf.onExport = [](const PdfDocument::PdfKeepGoing& keepGoing) {
    std::this_thread::sleep_for(TApplication::kPumpInterval * 2);
    return keepGoing();
  };
  ChooseResolution("72");
  EXPECT_EQ(turns, 1);
}

TEST_F(EditCanceling, Cancel_Should_BringThePictureBack) {
  OpenPdf();
  model->SpeedButtonMirrorClick();
  const TBitmap before = std::move(*Work().Clone());
  Cut(10, 20, 40, 50);
  CancelWhileRendering();
  ChooseAngle("90");
  EXPECT_TRUE(SamePixels(before, Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_EQ(Text(CoBoRotation), "0");
  EXPECT_TRUE(AlmostEqual(tool.BmpCutRect(), RDRect(10, 20, 40, 50), 1e-9));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_THAT(messages, IsEmpty());
  EXPECT_TRUE(Down(SpeedButtonMirror));
}

TEST_F(EditCanceling, Cancel_Should_BringResolutionAndPageBack) {
  OpenPdf(3);
  CancelWhileRendering();
  ChooseResolution("600");
  EXPECT_EQ(Text(CoBoResolution), "150");
  EXPECT_EQ(model->Resolution(), 150);
  ChoosePage(2);
  EXPECT_EQ(view.page, 1);
  EXPECT_EQ(model->PageNumber(), 1);
  EXPECT_EQ(settings["Settings/FormEditPdfBmp.Resolution"], "150");
}

TEST_F(EditCanceling, Cancel_Should_LeaveAnEmptyView_When_ItIsTheFirstPage) {
  CancelWhileRendering();
  model->SetOrgFilename("a.pdf");
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_FALSE(Usable(NaviResultPost));
  pdf.onExport = nullptr;
  ChooseResolution("150");
  EXPECT_EQ(model->WorkBitmap(), nullptr) << "only Enter requests the same again";
  model->CoBoResolutionKeyPress(ComboKey::enter);
  EXPECT_NE(model->WorkBitmap(), nullptr);
}

TEST_F(EditCanceling, Cancel_Should_LeaveAnEmptyView_When_ThePictureCouldNotBeKept) {
  OpenPdf();
  CancelWhileRendering();
  const MemoryLimit limit(40000);
  ChooseResolution("72");
  EXPECT_EQ(model->WorkBitmap(), nullptr);
  EXPECT_EQ(tool.OrgBitmap(), nullptr);
}

TEST_F(EditCanceling, Cancel_Should_Count_When_TheExportWentOnToItsEnd) {
  OpenPdf();
  pdf.onExport = [this](const PdfDocument::PdfKeepGoing&) {
    model->NaviResultCancelClick();
    return true;
  };
  ChooseResolution("72");
  EXPECT_EQ(model->Resolution(), 150);
  EXPECT_TRUE(SamePixels(PdfPicture(0, 1.5), Work()));
}

TEST_F(EditCanceling, Cancel_Should_NotLastLonger) {
  OpenPdf();
  CancelWhileRendering();
  ChooseResolution("72");
  pdf.onExport = nullptr;
  ChooseResolution("200");
  EXPECT_EQ(model->Resolution(), 200);
}

TEST_F(EditCanceling, Escape_Should_CancelToo) {
  OpenPdf();
  pdf.onExport = [this](const PdfDocument::PdfKeepGoing& keepGoing) {
    EXPECT_TRUE(model->FormKeyDown(EditKey::escape, false));
    return keepGoing();
  };
  ChooseResolution("72");
  EXPECT_EQ(model->Resolution(), 150);
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditCanceling, FormClose_Should_CancelAndThenClose) {
  OpenPdf();
  pdf.onExport = [this](const PdfDocument::PdfKeepGoing& keepGoing) {
    model->FormClose();
    EXPECT_THAT(view.closed, IsEmpty());
    return keepGoing();
  };
  ChooseResolution("72");
  EXPECT_EQ(model->Resolution(), 150);
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
}

}  // namespace
}  // namespace rasterkit::test
