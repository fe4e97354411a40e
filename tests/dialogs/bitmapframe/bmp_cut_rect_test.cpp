#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

/// A box of 300 x 300 that shows a bitmap of 600 x 400 at (0, 50) to (300, 250).
class CropTool : public testing::Test {
 protected:
  CropTool() : bitmap(GradientBitmap(pf24bit, 600, 400)) {
    box.resize(300, 300);
    box.setFocusPolicy(Qt::StrongFocus);
    tool = std::make_unique<TBmpCutRect>(&box, &label);
    box.OnResize = [this](TPaintBox& sender) { tool->OnResize(sender); };
    box.OnMouseWheel = [this](TPaintBox& sender, QWheelEvent& event) {
      tool->OnMouseWheel(sender, event);
    };
    box.OnKeyDown = [this](TPaintBox& sender, QKeyEvent& event) { tool->OnKeyDown(sender, event); };
    box.show();
    QApplication::processEvents();
    tool->SetOrgBitmap(&bitmap);
  }

  void Press(QPoint at, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::mousePress(&box, button, keys, at);
  }
  /// QtTest's moves do not hold buttons on every platform.
  void MoveTo(QPoint to, Qt::MouseButtons held = Qt::LeftButton) {
    QMouseEvent event(QEvent::MouseMove, to, box.mapToGlobal(to), Qt::NoButton, held,
                      Qt::NoModifier);
    QApplication::sendEvent(&box, &event);
  }
  void Drag(QPoint from, QPoint to) {
    Press(from);
    MoveTo(to);
    QTest::mouseRelease(&box, Qt::LeftButton, Qt::NoModifier, to);
  }
  QImage Shown() { return box.grab().toImage().convertToFormat(QImage::Format_RGB32); }
  QColor ShownAt(int x, int y) { return Shown().pixelColor(x, y); }
  /// The color of the picture under a pixel of the box, which shows every second pixel.
  QColor PictureAt(int x, int y) {
    const TColor color = bitmap.PixelColor(2 * x + 1, 2 * (y - 50) + 1);
    return QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16);
  }
  void ExpectCut(double left, double top, double right, double bottom) {
    const RDRect& rect = tool->BmpCutRect();
    EXPECT_TRUE(AlmostEqual(rect, {left, top, right, bottom}, 1e-9))
        << rect.Left << " " << rect.Top << " " << rect.Right << " " << rect.Bottom;
  }

  TBitmap bitmap;
  TPaintBox box;
  QLabel label;
  std::unique_ptr<TBmpCutRect> tool;
};

TEST_F(CropTool, Paint_Should_ShowThePictureOnTheBoxesBackground) {
  EXPECT_EQ(ShownAt(123, 148), PictureAt(123, 148));
  EXPECT_EQ(ShownAt(150, 20), box.palette().color(box.backgroundRole()));
}

TEST_F(CropTool, Drag_Should_MakeACut_When_TheMouseIsReal) {
  Drag({60, 70}, {160, 170});
  EXPECT_TRUE(tool->CutRectExists());
  ExpectCut(120, 40, 320, 240);
  EXPECT_EQ(label.text(), "200 * 200 px (120 [kB])");
}

TEST_F(CropTool, Paint_Should_DarkenTheOutsideAndDrawHandlesAndFrame_When_ThereIsACut) {
  Drag({60, 70}, {160, 170});
  const QColor outside = PictureAt(30, 148);
  EXPECT_EQ(ShownAt(30, 148), QColor(outside.red() / 2, outside.green() / 2, outside.blue() / 2));
  EXPECT_EQ(ShownAt(123, 148), PictureAt(123, 148));
  const QColor red(255, 0, 0);
  EXPECT_EQ(ShownAt(59, 90), red) << "the frame is two pixels wide, around the edge";
  EXPECT_EQ(ShownAt(60, 90), red);
  EXPECT_EQ(ShownAt(61, 90), PictureAt(61, 90));
  EXPECT_EQ(ShownAt(57, 120), red) << "the left handle";
  EXPECT_EQ(ShownAt(64, 72), red) << "the left top handle";
  EXPECT_EQ(ShownAt(160, 169), red);
}

TEST_F(CropTool, Paint_Should_ShowThePlainPictureAndTheXorOutline_While_Dragging) {
  Drag({60, 70}, {160, 170});
  Press({123, 148});
  EXPECT_EQ(ShownAt(30, 148), PictureAt(30, 148)) << "not darkened";
  const QColor below = PictureAt(60, 90);
  EXPECT_EQ(ShownAt(60, 90), QColor(below.red() ^ 128, below.green() ^ 128, below.blue() ^ 128));
  MoveTo({133, 148});
  EXPECT_EQ(ShownAt(60, 90), below) << "the old outline is gone";
  const QColor moved = PictureAt(70, 90);
  EXPECT_EQ(ShownAt(70, 90), QColor(moved.red() ^ 128, moved.green() ^ 128, moved.blue() ^ 128));
  QTest::mouseRelease(&box, Qt::LeftButton, Qt::NoModifier, {133, 148});
  ExpectCut(140, 40, 340, 240);
}

TEST_F(CropTool, Paint_Should_ShowNoOutline_When_AFrameJustBegan) {
  const QImage before = Shown();
  Press({60, 70});
  EXPECT_EQ(Shown(), before);
}

TEST_F(CropTool, DrawCutRectXor_Should_RestoreThePicture_When_DrawnTwice) {
  for (const RDRect& cut :
       {RDRect{120, 40, 320, 240}, {120, 40, 120, 40}, {120, 40, 122, 300}, {-50, -50, 700, 500}}) {
    tool->SetBmpCutRect(cut);
    QImage picture(300, 300, QImage::Format_RGB32);
    for (int y = 0; y < 300; ++y)
      for (int x = 0; x < 300; ++x) picture.setPixel(x, y, qRgb(x, y, x ^ y));
    const QImage before = picture;
    QPainter painter(&picture);
    tool->DrawCutRectXor(painter);
    EXPECT_EQ(painter.compositionMode(), QPainter::CompositionMode_SourceOver);
    EXPECT_NE(picture, before);
    tool->DrawCutRectXor(painter);
    EXPECT_EQ(picture, before);
  }
}

TEST_F(CropTool, Paint_Should_CallThePreviousHandlerAfterItsOwn_AndGiveItBack) {
  TPaintBox other;
  other.resize(40, 40);
  other.OnPaint = [](TPaintBox&, QPainter& painter) { painter.fillRect(3, 3, 5, 5, Qt::green); };
  {
    TBmpCutRect second(&other, nullptr);
    second.SetOrgBitmap(&bitmap);
    second.OnResize(other);
    const QImage shown = other.grab().toImage();
    EXPECT_EQ(shown.pixelColor(5, 5), QColor(Qt::green));
    second.SetBmpCutRect({0, 0, 600, 400});
    second.MouseDown(CutButton::left, {true}, 20, 15);
    EXPECT_EQ(other.grab().toImage().pixelColor(5, 7), QColor(Qt::green)) << "over the outline";
    EXPECT_NE(shown.pixelColor(20, 20), other.palette().color(other.backgroundRole()));
  }
  EXPECT_FALSE(other.OnMouseDown);
  EXPECT_FALSE(other.OnMouseMove);
  EXPECT_FALSE(other.OnMouseUp);
  EXPECT_FALSE(other.OnMouseLeave);
  EXPECT_EQ(other.grab().toImage().pixelColor(5, 5), QColor(Qt::green));
}

TEST_F(CropTool, Tool_Should_Survive_When_TheBoxGoesFirst) {
  auto mortal = std::make_unique<TPaintBox>();
  auto mortalLabel = std::make_unique<QLabel>();
  TBmpCutRect second(mortal.get(), mortalLabel.get());
  mortal.reset();
  mortalLabel.reset();
  second.SetOrgBitmap(&bitmap);
  second.SetBmpCutRect({1, 1, 50, 50});
  second.BmpCutModel::OnResize();
  EXPECT_TRUE(second.CutRectExists());
}

TEST_F(CropTool, Click_Should_RemoveTheCut_When_OnThePictureOutsideOfIt) {
  Drag({60, 70}, {160, 170});
  QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, {250, 200});
  EXPECT_FALSE(tool->CutRectExists());
}

TEST_F(CropTool, Click_Should_DoNothing_When_OutsideThePicture) {
  Drag({60, 70}, {160, 170});
  QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, {150, 20});
  EXPECT_TRUE(tool->CutRectExists());
}

TEST_F(CropTool, Press_Should_StartNoDrag_When_AKeyOrAnotherButtonIsHeld) {
  for (const Qt::KeyboardModifier key :
       {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
    Press({60, 70}, Qt::LeftButton, key);
    EXPECT_FALSE(tool->DragIsActive());
    QTest::mouseRelease(&box, Qt::LeftButton, key, {60, 70});
  }
  Press({60, 70}, Qt::RightButton);
  EXPECT_FALSE(tool->DragIsActive());
  QMouseEvent both(QEvent::MouseButtonPress, QPointF(60, 70), box.mapToGlobal(QPoint(60, 70)),
                   Qt::LeftButton, Qt::LeftButton | Qt::RightButton, Qt::NoModifier);
  QApplication::sendEvent(&box, &both);
  EXPECT_FALSE(tool->DragIsActive());
  QTest::mouseRelease(&box, Qt::RightButton, Qt::NoModifier, {60, 70});
}

TEST_F(CropTool, DoubleClick_Should_WorkTheCutLikeAClick) {
  Drag({60, 70}, {160, 170});
  QTest::mouseDClick(&box, Qt::LeftButton, Qt::NoModifier, {250, 200});
  EXPECT_TRUE(tool->DragIsActive());
  QTest::mouseRelease(&box, Qt::LeftButton, Qt::NoModifier, {250, 200});
  EXPECT_FALSE(tool->CutRectExists());
  EXPECT_FALSE(tool->DragIsActive());
}

TEST_F(CropTool, EntryMode_Should_ReportThePoint_When_ItIsLineOrCoord) {
  QPoint reported;
  tool->OnBmpRefPointChanged = [&](BmpCutModel&, int x, int y) { reported = {x, y}; };
  tool->SetEntryMode(emCoord);
  QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, {77, 88});
  EXPECT_EQ(reported, QPoint(77, 88));
  EXPECT_FALSE(tool->CutRectExists());
}

TEST_F(CropTool, CutRectEnabled_Should_KeepTheMouseFromTheCut_When_False) {
  tool->SetCutRectEnabled(false);
  Drag({60, 70}, {160, 170});
  EXPECT_FALSE(tool->CutRectExists());
}

TEST_F(CropTool, Cursor_Should_ShowTheTarget_When_TheMouseMovesAndLeaves) {
  tool->SetBmpCutRect({120, 40, 320, 240});
  const std::pair<QPoint, Qt::CursorShape> places[] = {
      {{123, 148}, Qt::SizeAllCursor},  {{30, 148}, Qt::CrossCursor},
      {{60, 120}, Qt::SizeHorCursor},   {{110, 70}, Qt::SizeVerCursor},
      {{60, 70}, Qt::SizeFDiagCursor},  {{160, 170}, Qt::SizeFDiagCursor},
      {{160, 70}, Qt::SizeBDiagCursor}, {{60, 170}, Qt::SizeBDiagCursor},
      {{150, 10}, Qt::ArrowCursor},
  };
  for (const auto& [place, shape] : places) {
    MoveTo(place, Qt::NoButton);
    EXPECT_EQ(box.cursor().shape(), shape) << place.x() << "," << place.y();
  }
  MoveTo({123, 148}, Qt::NoButton);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&box, &leave);
  EXPECT_EQ(box.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(CropTool, MiddleButton_Should_PanWithThePanCursor) {
  Press({100, 100}, Qt::MiddleButton);
  EXPECT_EQ(box.cursor().shape(), Qt::ClosedHandCursor);
  MoveTo({110, 95}, Qt::MiddleButton);
  EXPECT_EQ(tool->PaintRect().Left, 10);
  EXPECT_EQ(tool->PaintRect().Top, 45);
  QTest::mouseRelease(&box, Qt::MiddleButton, Qt::NoModifier, {110, 95});
  EXPECT_EQ(box.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(CropTool, Wheel_Should_ZoomAboutTheMouse_When_TurnedByANotch) {
  TurnWheel(box, {100, 150}, 120);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.525);
  EXPECT_NEAR(tool->PaintRect().Left, -5, 1e-9);
  TurnWheel(box, {100, 150}, -120);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.49875);
}

TEST_F(CropTool, Wheel_Should_AlwaysBeHandled) {
  for (const int delta : {120, -120, 30, 0}) {
    QWheelEvent event(QPointF(100, 150), box.mapToGlobal(QPointF(100, 150)), {}, {0, delta},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    event.ignore();
    tool->OnMouseWheel(box, event);
    EXPECT_TRUE(event.isAccepted()) << delta;
  }
}

TEST_F(CropTool, Wheel_Should_SumUpToANotch_When_ATouchPadTurnsIt) {
  for (int i = 0; i < 3; ++i) TurnWheel(box, {100, 150}, 30);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.5);
  TurnWheel(box, {100, 150}, 30);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.525);
  TurnWheel(box, {100, 150}, 110);
  TurnWheel(box, {100, 150}, -120);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.49875) << "turning back starts at once";
}

TEST_F(CropTool, Arrows_Should_MoveAndResizeTheCut) {
  tool->SetBmpCutRect({120, 40, 320, 240});
  QTest::keyClick(&box, Qt::Key_Right);
  ExpectCut(121, 40, 321, 240);
  QTest::keyClick(&box, Qt::Key_Down, Qt::ShiftModifier);
  ExpectCut(121, 50, 321, 250);
  QTest::keyClick(&box, Qt::Key_Left, Qt::ControlModifier);
  ExpectCut(121, 50, 320, 250);
  QTest::keyClick(&box, Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
  ExpectCut(121, 50, 320, 240);
  QTest::keyClick(&box, Qt::Key_Left);
  QTest::keyClick(&box, Qt::Key_Up);
  ExpectCut(120, 49, 319, 239);
}

TEST_F(CropTool, KeysOfRedo_Should_ChangeNothing_DuringADrag) {
  Press({50, 100});
  MoveTo({150, 200});
  ASSERT_TRUE(tool->DragIsActive());
  const QImage before = Shown();
  const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
      {Qt::Key_Y, Qt::ControlModifier}, {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier}};
  for (const auto& [key, modifiers] : keys) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    tool->OnKeyDown(box, event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_TRUE(tool->DragIsActive());
    EXPECT_EQ(Shown(), before);
  }
  QTest::mouseRelease(&box, Qt::LeftButton, Qt::NoModifier, {150, 200});
  ExpectCut(100, 100, 300, 300);
}

TEST_F(CropTool, CtrlZ_Should_UndoTheLastCut) {
  Drag({60, 70}, {160, 170});
  QTest::keyClick(&box, Qt::Key_Right);
  QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
  ExpectCut(120, 40, 320, 240);
  QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_FALSE(tool->CutRectExists());
}

TEST_F(CropTool, PlusAndMinus_Should_ZoomAboutTheMiddle) {
  QTest::keyClick(&box, Qt::Key_Plus);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.525);
  EXPECT_TRUE(AlmostEqual(tool->PaintRect(), {-7.5, 45, 307.5, 255}, 1e-9));
  QTest::keyClick(&box, Qt::Key_Minus);
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.49875);
}

TEST_F(CropTool, ArrowsWithAlt_Should_ShowWhatLiesBeyondTheEdge) {
  QTest::keyClick(&box, Qt::Key_Right, Qt::AltModifier);
  EXPECT_TRUE(AlmostEqual(tool->PaintRect(), {-20, 50, 280, 250}, 1e-9));
  QTest::keyClick(&box, Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
  EXPECT_TRUE(AlmostEqual(tool->PaintRect(), {-20, 250, 280, 450}, 1e-9));
}

TEST_F(CropTool, Keys_Should_GoOn_When_TheToolHasNoUseForThem) {
  for (const int key : {Qt::Key_Left, Qt::Key_A, Qt::Key_Escape}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    tool->OnKeyDown(box, event);
    EXPECT_FALSE(event.isAccepted());
  }
}

TEST_F(CropTool, Resize_Should_FitAgain_When_TheBoxGetsAnotherSize) {
  box.resize(150, 300);
  QApplication::processEvents();
  EXPECT_DOUBLE_EQ(tool->StretchFactor(), 0.25);
}

TEST_F(CropTool, Paint_Should_DrawUnscaledAtTheRoundedCorner_When_TheFactorIsOne) {
  TBitmap small = GradientBitmap(pf8bit, 101, 51);
  tool->SetOrgBitmap(&small);
  tool->SetFitInOrgBmp(false);
  const QImage shown = Shown();
  const TRect corner = tool->PaintRect().ToRect();
  for (const QPoint& at : {QPoint{0, 0}, {100, 50}, {37, 11}}) {
    const TColor color = small.PixelColor(at.x(), at.y());
    EXPECT_EQ(shown.pixelColor(corner.Left + at.x(), corner.Top + at.y()),
              QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16));
  }
  tool->SetOrgBitmap(nullptr);
}

TEST_F(CropTool, Paint_Should_BeSmoothedInAPause_When_ThePictureIsShrunk) {
  std::mt19937 random(61);
  TBitmap noise = RandomBitmap(pf24bit, 600, 400, random);
  tool->SetOrgBitmap(&noise);
  const QImage first = Shown();
  EXPECT_TRUE(QTest::qWaitFor([&] { return Shown() != first; }, 20000));
}

TEST_F(CropTool, Everything_Should_BeSafe_When_TheBitmapIsNullOrTiny) {
  TBitmap empty, mono;
  mono.SetPixelFormat(pf1bit);
  mono.SetSize(1, 1);
  for (TBitmap* picture : {static_cast<TBitmap*>(nullptr), &empty, &mono}) {
    tool->SetOrgBitmap(picture);
    Drag({10, 10}, {290, 290});
    Drag({150, 150}, {160, 170});
    TurnWheel(box, {150, 150}, 1200);
    TurnWheel(box, {150, 150}, -2400);
    QTest::keyClick(&box, Qt::Key_Right);
    tool->SwapBitmaps(true);
    tool->SetFitInOrgBmp(false);
    EXPECT_EQ(tool->CutRectExists(), picture == &mono);
    if (picture != nullptr) {
      EXPECT_EQ(label.text(), picture == &mono ? "1 * 1 px (0 [byte])" : "0 * 0 px (0 [byte])");
    }
    EXPECT_EQ(ShownAt(5, 5), box.palette().color(box.backgroundRole()));
  }
  // The next picture is shown and cut as usual.
  tool->SetOrgBitmap(nullptr);
  tool->SetOrgBitmap(&bitmap);
  tool->SetFitInOrgBmp(true);
  EXPECT_EQ(ShownAt(123, 148), PictureAt(123, 148));
  Drag({60, 70}, {160, 170});
  ExpectCut(120, 40, 320, 240);
  tool->SetOrgBitmap(nullptr);
}

TEST_F(CropTool, Everything_Should_BeSafe_When_TheBitmapHas30000By30000Pixels) {
  TBitmap large;
  large.ResetPixels(pf1bit, 30000, 30000);
  tool->SetOrgBitmap(&large);
  Drag({60, 70}, {160, 170});
  for (int i = 0; i < 20; ++i) TurnWheel(box, {100, 100}, 1200);
  Shown();
  tool->CalculateBmpPaintRect(true);
  Shown();
  EXPECT_TRUE(tool->CutRectExists());
  EXPECT_EQ(label.text(), "10000 * 10000 px (12.50 [MB])");
  tool->SetOrgBitmap(nullptr);
}

}  // namespace
}  // namespace rasterkit::test
