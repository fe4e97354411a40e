#include <QDragEnterEvent>
#include <QDropEvent>
#include <QUrl>
#include <set>

#include "tests/dialogs/editpdfbitmap/editor_test.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class EditorKeys : public EditorTest {
 protected:
  EditorKeys() { OpenGraphic(picture); }

  const TBitmap picture = GradientBitmap(pf24bit, 410, 300);
};

TEST_F(EditorKeys, Escape_Should_RemoveTheRectangleFirst_AndThenCancel) {
  DrawCut(50, 40, 250, 200);
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_FALSE(form->Tool().GetCutRectExists());
  EXPECT_FALSE(Model().ModalResult());
  EXPECT_TRUE(form->isVisible());
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_EQ(Model().ModalResult(), mrCancel);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(EditorKeys, Delete_Should_RemoveTheRectangle) {
  DrawCut(50, 40, 250, 200);
  QTest::keyClick(&Button("SpeedButtonOpen"), Qt::Key_Delete);
  EXPECT_FALSE(form->Tool().GetCutRectExists());
}

TEST_F(EditorKeys, Delete_Should_StayInABox_When_ThatHasTheFocus) {
  DrawCut(50, 40, 250, 200);
  auto& box = Find<QComboBox>("CoBoRotation");
  box.setFocus();
  box.lineEdit()->selectAll();
  QTest::keyClick(&box, Qt::Key_Delete);
  EXPECT_TRUE(form->Tool().GetCutRectExists());
  EXPECT_EQ(box.currentText(), "");
}

TEST_F(EditorKeys, Enter_Should_EndTheWindow_WhereverTheFocusIs) {
  QTest::keyClick(&Button("SpeedButtonMirror"), Qt::Key_Return);
  EXPECT_EQ(Model().ModalResult(), mrOk);
  EXPECT_THAT(asked, IsEmpty());
}

TEST_F(EditorKeys, Enter_Should_PressTheButtonThatItStandsOn_When_ThatIsCancelOrHelp) {
  Navigator(nbHelp).setFocus();
  QTest::keyClick(&Navigator(nbHelp), Qt::Key_Return);
  EXPECT_THAT(topics, SizeIs(1));
  EXPECT_FALSE(Model().ModalResult());
  Navigator(nbCancel).setFocus();
  QTest::keyClick(&Navigator(nbCancel), Qt::Key_Return);
  EXPECT_EQ(Model().ModalResult(), mrCancel);
}

TEST_F(EditorKeys, Enter_Should_BeTheWindows_When_NoControlHasTheFocus) {
  if (form->focusWidget() != nullptr) form->focusWidget()->clearFocus();
  QTest::keyClick(form.get(), Qt::Key_Enter);
  EXPECT_EQ(Model().ModalResult(), mrOk);
}

TEST_F(EditorKeys, CtrlH_Should_ChangeTheSize) {
  WhenModal([](QWidget& window) {
    auto* width = window.findChild<TFloatEdit*>("FlEdW");
    width->setFocus();
    width->selectAll();
    QTest::keyClicks(width, "205");
    QTest::mouseClick(window.findChild<QPushButton*>("ButtonOK"), Qt::LeftButton);
  });
  QTest::keyClick(&Box(), Qt::Key_H, Qt::ControlModifier);
  EXPECT_EQ(Picture().Width(), 205);
  EXPECT_EQ(Picture().Height(), 150);
}

TEST_F(EditorKeys, H_Should_DoNothing_When_CtrlIsNotHeld) {
  QTest::keyClick(&Box(), Qt::Key_H);
  EXPECT_EQ(Picture().Width(), 410);
  EXPECT_FALSE(Model().BmpChanged());
}

TEST_F(EditorKeys, CtrlZ_Should_TakeTheLastChangeBack) {
  Click("SpeedButtonGrayScale");
  EXPECT_TRUE(Button("SpeedButtonGrayScale").isChecked());
  QTest::keyClick(&Box(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(SamePixels(picture, Picture()));
  EXPECT_FALSE(Button("SpeedButtonGrayScale").isChecked());
}

TEST_F(EditorKeys, Arrows_Should_MoveTheRectangle) {
  form->Tool().SetBmpCutRect(RDRect(50, 40, 250, 200));
  QTest::keyClick(&Box(), Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(form->Tool().CutPixels().Left, 60);
  EXPECT_EQ(form->Tool().CutPixels().Right, 260);
}

TEST_F(EditorKeys, Ctrl_Should_BeKnownWhileItIsHeld) {
  QTest::keyPress(&Box(), Qt::Key_Control);
  EXPECT_TRUE(Model().CtrlPressed());
  QTest::keyRelease(&Box(), Qt::Key_Control);
  EXPECT_FALSE(Model().CtrlPressed());
}

TEST_F(EditorKeys, Shortcuts_Should_PressTheButtons) {
  // A button pressed by its key is shown pressed for a moment.
  const auto press = [this](Qt::Key key, const std::function<bool()>& hasHappened) {
    QTest::keyClick(&Box(), key, Qt::ControlModifier);
    return QTest::qWaitFor(hasHappened);
  };
  EXPECT_TRUE(press(Qt::Key_1, [this] { return form->Tool().IsUnscaled(); }));
  EXPECT_TRUE(press(Qt::Key_0, [this] { return !form->Tool().IsUnscaled(); }));
  EXPECT_TRUE(press(Qt::Key_G, [this] { return Picture().PixelFormat() == pf8bit; }));
  AnswerFileDialog("");
  EXPECT_TRUE(press(Qt::Key_O, [this] { return asked.size() == 1; }));
  EXPECT_TRUE(press(Qt::Key_S, [this] { return asked.size() == 2; }));
  EXPECT_EQ(asked.front().kind, PictureFileDialog::Kind::open);
  EXPECT_EQ(asked.back().kind, PictureFileDialog::Kind::save);
}

TEST_F(EditorKeys, Tab_Should_ReachEveryControl) {
  std::set<QString> reached;
  Box().setFocus();
  for (int i = 0; i < 40; ++i) {
    reached.insert(QApplication::focusWidget()->objectName());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  for (const char* name : {"PaintBoxPdf", "CoBoRotation", "SpeedButtonOpen", "SpeedButtonViewZoom",
                           "SpeedButtonViewOrig", "SpeedButtonMirror", "SpeedButtonGrayScale",
                           "SpeedButtonBlackWhite", "SpeedButton256Colors", "SpeedButtonEdit",
                           "SpeedButtonSave", "nbPost", "nbCancel", "nbHelp"})
    EXPECT_TRUE(reached.count(name)) << name;
}

TEST_F(EditorKeys, Wheel_Should_Zoom_WithAndWithoutCtrl_WhereverItIsTurned) {
  const double fitted = form->Tool().StretchFactor();
  const QPoint middle = Box().rect().center();
  TurnWheel(Box(), middle, 120);
  EXPECT_NEAR(form->Tool().StretchFactor(), fitted * 1.05, 1e-9);
  TurnWheel(Box(), middle, 120, Qt::ControlModifier);
  EXPECT_NEAR(form->Tool().StretchFactor(), fitted * 1.05 * 1.05, 1e-9);
  TurnWheel(Box(), middle, -120);
  const double before = form->Tool().StretchFactor();
  auto& box = Find<QComboBox>("CoBoRotation");
  box.setFocus();
  TurnWheel(box, box.rect().center(), 120);
  EXPECT_EQ(box.currentText(), "0");
  EXPECT_GT(form->Tool().StretchFactor(), before);
}

TEST_F(EditorKeys, Wheel_Should_SumUpFineTurnsToANotch) {
  const double fitted = form->Tool().StretchFactor();
  for (int i = 0; i < 3; ++i) TurnWheel(Box(), Box().rect().center(), 30);
  EXPECT_DOUBLE_EQ(form->Tool().StretchFactor(), fitted);
  TurnWheel(Box(), Box().rect().center(), 30);
  EXPECT_NEAR(form->Tool().StretchFactor(), fitted * 1.05, 1e-9);
}

TEST_F(EditorKeys, Wheel_Should_ZoomAboutTheMouse) {
  const QPoint corner = PlaceOf(0, 0);
  TurnWheel(Box(), corner, 120);
  EXPECT_NEAR(form->Tool().PaintRect().Left, corner.x(), 1);
  EXPECT_NEAR(form->Tool().PaintRect().Top, corner.y(), 1);
}

class EditorDrop : public EditorKeys {
 protected:
  /// Drags the data over the window and drops it; false if the window rejects it.
  bool Drop(const QMimeData& data) {
    const QPoint place = form->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(form.get(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(form.get(), &drop);
    QApplication::processEvents();
    return true;
  }
};

TEST_F(EditorDrop, File_Should_BeOpened) {
  const std::string other = folder / "other.bmp";
  GradientBitmap(pf24bit, 20, 10).SaveToFile(other);
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(ToQt(other))});
  EXPECT_TRUE(Drop(data));
  EXPECT_EQ(Picture().Width(), 20);
  EXPECT_EQ(Model().FileNames().fOrgFilename, other);
}

TEST_F(EditorDrop, WhatIsNoFile_Should_BeRefused) {
  QMimeData text;
  text.setText("not a file");
  EXPECT_FALSE(Drop(text));
  QMimeData web;
  web.setUrls({QUrl("https://example.org/plan.pdf")});
  EXPECT_FALSE(Drop(web));
}

TEST_F(EditorDrop, UnreadableFile_Should_BeTold_AndTheOldOneStay) {
  const std::string broken = folder.Write("broken.bmp", "no picture");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(ToQt(broken))});
  EXPECT_TRUE(Drop(data));
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_TRUE(SamePixels(picture, Picture()));
}

}  // namespace
}  // namespace rasterkit::test
