#include <QTimer>

#include "tests/dialogs/editpdfbitmap/editor_test.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EditorRendering : public EditorTest {
 protected:
  /// Runs `action` while the next page is rendered.
  void WhileRendering(std::function<void()> action) {
    QTimer::singleShot(20, &waiting, [this, action = std::move(action)] {
      if (form == nullptr || !Model().IsRendering()) return WhileRendering(action);
      action();
    });
  }
  void RenderAgain() {
    Type("CoBoResolution", "300");
    Key("CoBoResolution", Qt::Key_Return);
  }

  QObject waiting;
};

TEST_F(EditorRendering, Controls_Should_RestButForCancel) {
  OpenPdf();
  pdf.patience = 30;
  std::vector<std::string> enabled;
  bool isAlive = false;
  WhileRendering([&] {
    isAlive = true;
    for (QWidget* widget : form->findChildren<QWidget*>()) {
      const bool counts = widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr;
      if (counts && widget->isVisible() && widget->isEnabled())
        enabled.push_back(widget->objectName().toStdString());
    }
  });
  RenderAgain();
  EXPECT_TRUE(isAlive);
  EXPECT_THAT(enabled, ElementsAre("nbCancel"));
  EXPECT_TRUE(Find("CoBoResolution").isEnabled());
  EXPECT_EQ(QApplication::focusWidget(), &Find("CoBoResolution"));
  EXPECT_EQ(Picture().Width(), 600);
}

TEST_F(EditorRendering, Focus_Should_BeOnThePicture_WhenTheFirstPageIsThere) {
  OpenPdf();
  EXPECT_EQ(form->focusWidget(), &Box());
  pdf.patience = 10;
  Box().setFocus();
  Find<TSpinEditInt>("SpinEditPage").setValue(2);
  EXPECT_EQ(form->focusWidget(), &Box());
}

TEST_F(EditorRendering, Progress_Should_BeShown_When_ThePageTakesItsTime) {
  OpenPdf();
  EXPECT_FALSE(Find("PanelRendering").isVisible());
  pdf.patience = 100;
  bool isShown = false;
  WhileRendering([&] {
    QTimer::singleShot(350, &waiting, [&] { isShown = Find("PanelRendering").isVisible(); });
  });
  RenderAgain();
  EXPECT_TRUE(isShown);
  EXPECT_FALSE(Find("PanelRendering").isVisible());
}

TEST_F(EditorRendering, Cancel_Should_BringThePictureBack) {
  OpenPdf();
  pdf.patience = 100'000;
  WhileRendering([&] { QTest::mouseClick(&Navigator(nbCancel), Qt::LeftButton); });
  RenderAgain();
  EXPECT_FALSE(Model().ModalResult());
  EXPECT_EQ(Picture().Width(), 300);
  EXPECT_EQ(Find<QComboBox>("CoBoResolution").currentText(), "150");
  EXPECT_TRUE(Navigator(nbPost).isEnabled());
}

TEST_F(EditorRendering, Escape_Should_CancelThePage_AndNotTheWindow) {
  OpenPdf();
  pdf.patience = 100'000;
  WhileRendering([&] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape); });
  RenderAgain();
  EXPECT_FALSE(Model().ModalResult());
  EXPECT_EQ(Picture().Width(), 300);
}

TEST_F(EditorRendering, Frame_Should_CloseTheWindow_When_ThePageIsGivenUp) {
  OpenPdf();
  pdf.patience = 100'000;
  WhileRendering([&] { form->close(); });
  RenderAgain();
  EXPECT_EQ(Model().ModalResult(), mrCancel);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(EditorRendering, Events_Should_BeIgnored_WhileAPageIsRendered) {
  OpenPdf();
  pdf.patience = 30;
  const size_t before = pdf.exports.size();
  WhileRendering([&] {
    Click("SpeedButtonOpen");
    Find<QComboBox>("CoBoRotation").setEditText("90");
    QTest::keyClick(&Box(), Qt::Key_Return);
    QTest::keyClick(&Box(), Qt::Key_Delete);
    TurnWheel(Box(), {10, 10}, 120);
  });
  RenderAgain();
  EXPECT_EQ(pdf.exports.size(), before + 1);
  EXPECT_EQ(Model().Rotation(), 0);
  EXPECT_THAT(asked, IsEmpty());
  EXPECT_FALSE(Model().ModalResult());
}

TEST_F(EditorRendering, Cursor_Should_BeTheUsualOneAfterwards) {
  OpenPdf();
  pdf.patience = 10;
  bool hasHourglass = false;
  WhileRendering([&] { hasHourglass = QApplication::overrideCursor() != nullptr; });
  RenderAgain();
  EXPECT_TRUE(hasHourglass);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
