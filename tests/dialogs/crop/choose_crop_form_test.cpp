#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/dialogs/crop/unit_field.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/crop/crop_facts.h"
#include "tests/support/forms/form_events.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class ChooseCropForm : public testing::Test {
 protected:
  ChooseCropForm() : bitmap(GradientBitmap(pf24bit, 600, 400)) {}

  void Open(const CropFacts& facts, const ChooseCropOptions& options = {},
            const CropSettings& settings = {}) {
    form = std::make_unique<TFormChooseCrop>(bitmap, facts, options, std::nullopt, settings);
    form->resize(1000, 560);
    ASSERT_TRUE(ShowSettled(*form));
  }
  template <class Widget>
  Widget& Find(const char* name) {
    return *form->findChild<Widget*>(name);
  }
  TPaintBox& Box() { return Find<TPaintBox>("PaintBox"); }
  TUnitField& Field(const char* name) { return Find<TUnitField>(name); }
  QString Text(const char* name) { return Find<QLabel>(name).text(); }
  void Choose(const char* name, int index) {
    QComboBox& box = Find<QComboBox>(name);
    box.setCurrentIndex(index);
    Q_EMIT box.activated(index);
  }
  void Click(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
  /// A place of the picture in the box.
  QPoint At(double column, double row) {
    const RDRect place = form->Tool().PaintRect();
    const double factor = form->Tool().StretchFactor();
    return {qRound(place.Left + column * factor), qRound(place.Top + row * factor)};
  }
  void MoveTo(QPoint point, Qt::KeyboardModifiers keys = Qt::NoModifier,
              Qt::MouseButtons buttons = Qt::LeftButton) {
    QMouseEvent move(QEvent::MouseMove, point, Box().mapToGlobal(point), Qt::NoButton, buttons,
                     keys);
    QApplication::sendEvent(&Box(), &move);
  }
  void Press(QPoint point, Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::mousePress(&Box(), Qt::LeftButton, keys, point);
  }
  void Release(QPoint point) { QTest::mouseRelease(&Box(), Qt::LeftButton, Qt::NoModifier, point); }
  void Type(const char* name, const char* text, Qt::Key end = Qt::Key_Tab) {
    TUnitField& field = Field(name);
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, end);
  }
  void ExpectRect(int left, int top, int right, int bottom) {
    const TRect rect = form->Model().Rect();
    EXPECT_EQ(rect.Left, left);
    EXPECT_EQ(rect.Top, top);
    EXPECT_EQ(rect.Right, right);
    EXPECT_EQ(rect.Bottom, bottom);
  }

  TBitmap bitmap;
  std::unique_ptr<TFormChooseCrop> form;
};

TEST_F(ChooseCropForm, Numbers_Should_ChangeDuringTheDrag) {
  Open(FactsOfAPlan());
  Press(At(100, 100));
  MoveTo(At(200, 180));
  const double width = Field("FieldWidth").value();
  EXPECT_NEAR(width, 100, 1);
  EXPECT_THAT(Text("LabelSizeValue").toStdString(),
              HasSubstr(std::to_string(static_cast<int>(width)) + " x "));
  MoveTo(At(350, 180));
  EXPECT_NEAR(Field("FieldWidth").value(), 250, 1);
  EXPECT_EQ(Field("FieldWidth").text(), QString::number(Field("FieldWidth").value()));
  EXPECT_TRUE(form->Tool().DragIsActive());
  Release(At(350, 180));
  EXPECT_TRUE(Find<QPushButton>("SpeedButtonUndo").isEnabled());
  // Moving and resizing, too.
  const double left = Field("FieldLeft").value();
  Press(At(220, 140));
  MoveTo(At(240, 140));
  EXPECT_NEAR(Field("FieldLeft").value(), left + 20, 1);
  Release(At(240, 140));
}

TEST_F(ChooseCropForm, Mouse_Should_BeTold_InPixelsAndOnTheMap) {
  Open(FactsOfAPlan());
  EXPECT_EQ(Text("LabelMouse"), "Mouse: not on the picture");
  MoveTo(At(300, 200), Qt::NoModifier, Qt::NoButton);
  EXPECT_EQ(Text("LabelMouse"), "Mouse: 300, 200 px; 1150.00, 1900.00 m");
}

TEST_F(ChooseCropForm, TypedNumbers_Should_BeRounded_AndSayIt) {
  Open(FactsOfAPlan());
  Choose("ComboUnit", static_cast<int>(LengthUnit::millimeters));
  Type("FieldLeft", "10.04");
  ExpectRect(100, 0, 600, 400);
  EXPECT_EQ(Field("FieldLeft").text(), "10.00");
  EXPECT_EQ(Text("LabelRounding"), "10.04 became 10.00 mm, the nearest pixel corner");
  Type("FieldWidth", "20");
  ExpectRect(100, 0, 300, 400);
  EXPECT_EQ(Text("LabelRounding"), "");
}

TEST_F(ChooseCropForm, MapNumbers_Should_BeTyped) {
  Open(FactsOfAPlan());
  Choose("ComboUnit", static_cast<int>(LengthUnit::map));
  EXPECT_EQ(Field("FieldTop").text(), "2000.00");
  Type("FieldTop", "1950");
  Type("FieldLeft", "1050.3");
  ExpectRect(101, 100, 600, 400);
  EXPECT_EQ(Field("FieldLeft").text(), "1050.50");
}

TEST_F(ChooseCropForm, Arrows_InANumberField_Should_StepByPixels) {
  Open(FactsOfAPlan());
  Choose("ComboUnit", static_cast<int>(LengthUnit::millimeters));
  Field("FieldLeft").setFocus();
  QTest::keyClick(&Field("FieldLeft"), Qt::Key_Up);
  ExpectRect(1, 0, 600, 400);
  QTest::keyClick(&Field("FieldWidth"), Qt::Key_PageDown);
  ExpectRect(1, 0, 590, 400);
  EXPECT_EQ(Field("FieldWidth").text(), "58.90");
}

TEST_F(ChooseCropForm, Nonsense_Should_LeaveARectangleInside) {
  Open(FactsOfAPlan());
  for (const char* text : {"-5", "abc", "", "99999999999999", "0", "1e9", "."}) {
    for (const char* field : {"FieldLeft", "FieldTop", "FieldWidth", "FieldHeight"}) {
      Type(field, text);
      const TRect rect = form->Model().Rect();
      EXPECT_TRUE(rect.Left >= 0 && rect.Top >= 0 && rect.Left < rect.Right &&
                  rect.Top < rect.Bottom && rect.Right <= 600 && rect.Bottom <= 400)
          << field << " \"" << text << "\"";
    }
  }
}

TEST_F(ChooseCropForm, Units_Should_BePaleWithAReason_When_ThePictureLacksThem) {
  Open(PlainFacts());
  const auto* entries = qobject_cast<QStandardItemModel*>(Find<QComboBox>("ComboUnit").model());
  EXPECT_TRUE(entries->item(0)->isEnabled());
  EXPECT_TRUE(entries->item(1)->isEnabled());
  EXPECT_FALSE(entries->item(2)->isEnabled());
  EXPECT_EQ(entries->item(2)->toolTip().toStdString(), rsCropNeedsResolution);
  EXPECT_FALSE(entries->item(3)->isEnabled());
  EXPECT_EQ(entries->item(3)->toolTip().toStdString(), rsCropNeedsPosition);
  const auto* ratios = qobject_cast<QStandardItemModel*>(Find<QComboBox>("ComboRatio").model());
  EXPECT_FALSE(ratios->item(static_cast<int>(RatioKind::paper))->isEnabled());
}

TEST_F(ChooseCropForm, TheUnitOfTheMap_Should_BeAsked_OnlyWhen_ItIsUnknownAndUsed) {
  Open(TurnedFacts());
  EXPECT_TRUE(Find<QWidget>("ComboMapUnit").isHidden());
  Choose("ComboUnit", static_cast<int>(LengthUnit::map));
  EXPECT_FALSE(Find<QWidget>("ComboMapUnit").isHidden());
  Choose("ComboMapUnit", 2);
  EXPECT_EQ(Find<QComboBox>("ComboUnit").currentText(), "Map (ft)");
  const auto* ratios = qobject_cast<QStandardItemModel*>(Find<QComboBox>("ComboRatio").model());
  EXPECT_TRUE(ratios->item(static_cast<int>(RatioKind::paper))->isEnabled());
  Open(FactsOfAPlan());
  Choose("ComboUnit", static_cast<int>(LengthUnit::map));
  EXPECT_TRUE(Find<QWidget>("ComboMapUnit").isHidden());
}

TEST_F(ChooseCropForm, Ratio_Should_BeTypedAndSwapped) {
  Open(FactsOfAPlan());
  EXPECT_TRUE(Find<QWidget>("FieldRatioWidth").isHidden());
  Choose("ComboRatio", static_cast<int>(RatioKind::typed));
  EXPECT_FALSE(Find<QWidget>("FieldRatioWidth").isHidden());
  Type("FieldRatioWidth", "3");
  Type("FieldRatioHeight", "1");
  ExpectRect(0, 100, 600, 300);
  Click("ButtonSwap");
  EXPECT_EQ(Field("FieldRatioWidth").value(), 1);
  EXPECT_EQ(Field("FieldRatioHeight").value(), 3);
  EXPECT_LT(Field("FieldWidth").value(), Field("FieldHeight").value());
  Choose("ComboRatio", static_cast<int>(RatioKind::isoPortrait));
  Click("ButtonSwap");
  EXPECT_EQ(Find<QComboBox>("ComboRatio").currentIndex(),
            static_cast<int>(RatioKind::isoLandscape));
}

TEST_F(ChooseCropForm, Paper_Should_HaveItsSizeAtTheScale) {
  Open(FactsOfAPlan());
  Choose("ComboRatio", static_cast<int>(RatioKind::paper));
  EXPECT_FALSE(Find<QWidget>("FieldScale").isHidden());
  EXPECT_EQ(Field("FieldWidth").value(), 420);
  EXPECT_TRUE(Field("FieldWidth").isReadOnly());
  QTest::keyClick(&Field("FieldWidth"), Qt::Key_Up);
  EXPECT_EQ(Field("FieldWidth").value(), 420);
  Choose("ComboPaper", 0);
  EXPECT_EQ(Field("FieldWidth").value(), 297);
  Type("FieldScale", "250");
  EXPECT_EQ(Field("FieldWidth").value(), 148);
  EXPECT_EQ(Field("FieldHeight").value(), 105);
}

TEST_F(ChooseCropForm, HostOptions_Should_SayWhatShows) {
  ChooseCropOptions options;
  options.showsUnits = options.showsRatios = options.showsGuides = false;
  CropSettings settings;
  settings.unit = LengthUnit::millimeters;
  settings.ratio.kind = RatioKind::typed;
  settings.guide = CropGuide::thirds;
  Open(FactsOfAPlan(), options, settings);
  for (const char* name : {"LabUnit", "ComboUnit", "ComboMapUnit", "LabRatio", "ComboRatio",
                           "ButtonSwap", "FieldRatioWidth", "LabGuide", "ComboGuide"}) {
    EXPECT_TRUE(Find<QWidget>(name).isHidden()) << name;
  }
  // What cannot be seen has no effect, and stays remembered.
  EXPECT_EQ(form->Model().Unit(), LengthUnit::pixels);
  EXPECT_EQ(form->Tool().Shape(), CutShape{});
  EXPECT_EQ(form->Model().Guide(), CropGuide::none);
  EXPECT_EQ(form->Settings().unit, LengthUnit::millimeters);
  EXPECT_EQ(form->Settings().ratio.kind, RatioKind::typed);
  EXPECT_EQ(form->Settings().guide, CropGuide::thirds);
  Open(FactsOfAPlan());
  for (const char* name : {"ComboUnit", "ComboRatio", "ButtonSwap", "ComboGuide"}) {
    EXPECT_FALSE(Find<QWidget>(name).isHidden()) << name;
  }
}

TEST_F(ChooseCropForm, HostUnit_Should_ComeBeforeTheRememberedOne) {
  ChooseCropOptions options;
  options.unit = LengthUnit::map;
  CropSettings settings;
  settings.unit = LengthUnit::millimeters;
  Open(FactsOfAPlan(), options, settings);
  EXPECT_EQ(form->Model().Unit(), LengthUnit::map);
  Open(FactsOfAPlan(), {}, settings);
  EXPECT_EQ(form->Model().Unit(), LengthUnit::millimeters);
  Open(PlainFacts(), options, settings);
  EXPECT_EQ(form->Model().Unit(), LengthUnit::pixels);
}

TEST_F(ChooseCropForm, UndoAndRedo_Should_WorkByKeys_WhereverTheFocusIs) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({10, 10, 100, 100});
  form->Tool().SetBmpCutRect({20, 20, 200, 200});
  QTest::keyClick(&Box(), Qt::Key_Z, Qt::ControlModifier);
  ExpectRect(10, 10, 100, 100);
  QTest::keyClick(&Box(), Qt::Key_Y, Qt::ControlModifier);
  ExpectRect(20, 20, 200, 200);
  for (const char* name : {"SpeedButtonFit", "ComboRatio", "FieldLeft"}) {
    SCOPED_TRACE(name);
    Find<QWidget>(name).setFocus();
    QTest::keyClick(&Find<QWidget>(name), Qt::Key_Z, Qt::ControlModifier);
    ExpectRect(10, 10, 100, 100);
    QTest::keyClick(&Find<QWidget>(name), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    ExpectRect(20, 20, 200, 200);
    QTest::keyClick(&Find<QWidget>(name), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&Find<QWidget>(name), Qt::Key_Y, Qt::ControlModifier);
    ExpectRect(20, 20, 200, 200);
  }
  Click("SpeedButtonUndo");
  ExpectRect(10, 10, 100, 100);
  Click("SpeedButtonRedo");
  ExpectRect(20, 20, 200, 200);
  EXPECT_FALSE(Find<QPushButton>("SpeedButtonRedo").isEnabled());
}

TEST_F(ChooseCropForm, Undo_Should_BelongToTheFieldWhileANumberIsTyped) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({10, 10, 100, 100});
  Field("FieldLeft").setFocus();
  QTest::keyClicks(&Field("FieldLeft"), "7");
  QTest::keyClick(&Field("FieldLeft"), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(form->Tool().CutRectExists());
  ExpectRect(10, 10, 100, 100);
}

TEST_F(ChooseCropForm, DoubleClick_Should_Crop_OnlyInTheRectangle) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({100, 100, 300, 300});
  QTest::mouseDClick(&Box(), Qt::LeftButton, Qt::NoModifier, At(500, 50));
  EXPECT_TRUE(form->isVisible());
  form->Tool().SetBmpCutRect({100, 100, 300, 300});
  QTest::mouseDClick(&Box(), Qt::LeftButton, Qt::NoModifier, At(200, 200));
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Accepted);
  ExpectRect(100, 100, 300, 300);
}

TEST_F(ChooseCropForm, Enter_Should_Crop_WithWhatIsTyped) {
  Open(FactsOfAPlan());
  Type("FieldLeft", "50", Qt::Key_Return);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Accepted);
  ExpectRect(50, 0, 600, 400);
  Open(FactsOfAPlan());
  QTest::keyClick(&Box(), Qt::Key_Return);
  EXPECT_EQ(form->result(), QDialog::Accepted);
}

TEST_F(ChooseCropForm, Escape_Should_GiveUpADragFirst_AndDeleteRemove) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({100, 100, 300, 300});
  Press(At(200, 200));
  MoveTo(At(250, 200));
  EXPECT_GT(Field("FieldLeft").value(), 100);
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_TRUE(form->isVisible());
  ExpectRect(100, 100, 300, 300);
  EXPECT_EQ(Field("FieldLeft").value(), 100);
  QTest::keyClick(&Box(), Qt::Key_Delete);
  EXPECT_FALSE(form->Tool().CutRectExists());
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_EQ(form->result(), QDialog::Rejected);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(ChooseCropForm, ShiftAndControl_Should_ShapeADrag) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({100, 100, 300, 200});
  Press(At(300, 150), Qt::ShiftModifier);
  MoveTo(At(400, 150), Qt::ShiftModifier);
  EXPECT_NEAR(Field("FieldWidth").value() / Field("FieldHeight").value(), 2, 0.02);
  MoveTo(At(400, 150), Qt::ControlModifier);
  EXPECT_NEAR(Field("FieldLeft").value(), 0, 1);
  EXPECT_EQ(Field("FieldHeight").value(), 100);
  Release(At(400, 150));
}

TEST_F(ChooseCropForm, Zoom_Should_StayWhenTheWindowIsShownAgainOrActivatedOrResized) {
  Open(FactsOfAPlan());
  for (int i = 0; i < 12; ++i) TurnWheel(Box(), {200, 150}, 120);
  const double zoom = form->Tool().StretchFactor();
  const TRect corner = {form->Tool().PixelCornerAt(100, 100)->X, 0, 0, 0};
  form->hide();
  ASSERT_TRUE(ShowSettled(*form));
  EXPECT_EQ(form->Tool().StretchFactor(), zoom);
  QWidget other;
  other.show();
  other.activateWindow();
  QApplication::processEvents();
  form->activateWindow();
  QApplication::processEvents();
  EXPECT_EQ(form->Tool().StretchFactor(), zoom);
  EXPECT_EQ(form->Tool().PixelCornerAt(100, 100)->X, corner.Left);
  form->resize(form->width() + 80, form->height() + 60);
  Settle(*form);
  EXPECT_EQ(form->Tool().StretchFactor(), zoom);
  Click("SpeedButtonFit");
  EXPECT_NE(form->Tool().StretchFactor(), zoom);
}

TEST_F(ChooseCropForm, Frame_Should_HaveTwoTones_OnAnyPicture) {
  for (const TColor color : {TColor{0}, TColor{0xFFFFFF}, TColor{0x808080}}) {
    bitmap.Canvas().Brush.Color = color;
    bitmap.Canvas().FillRect({0, 0, 600, 400});
    Open(FactsOfAPlan());
    form->Tool().SetBmpCutRect({100, 100, 500, 300});
    const QImage image = Box().grab().toImage();
    const double scale = image.devicePixelRatio();
    int dark = 0, light = 0;
    // Across the left edge, between its handles.
    for (int dx = -4; dx <= 4; ++dx) {
      const QPoint place = (QPointF(At(100, 150)) + QPointF(dx, 0)).toPoint() * scale;
      const int gray = qGray(image.pixel(place));
      dark += gray < 32 ? 1 : 0;
      light += gray > 224 ? 1 : 0;
    }
    EXPECT_GE(dark, 1) << color;
    EXPECT_GE(light, 1) << color;
  }
}

TEST_F(ChooseCropForm, Guides_Should_BeDrawn) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({0, 0, 600, 400});
  const QImage plain = Box().grab().toImage();
  Choose("ComboGuide", static_cast<int>(CropGuide::center));
  const QImage center = Box().grab().toImage();
  EXPECT_NE(plain, center);
  const double scale = center.devicePixelRatio();
  EXPECT_NE(plain.pixel(At(300, 120) * scale), center.pixel(At(300, 120) * scale));
  Choose("ComboGuide", static_cast<int>(CropGuide::none));
  EXPECT_EQ(plain, Box().grab().toImage());
}

TEST_F(ChooseCropForm, Lossless_Should_BeToldForEachRectangle) {
  Open(FactsOfAPlan());
  EXPECT_TRUE(Find<QLabel>("LabelLossless").isHidden());
  ChooseCropOptions options;
  options.isLossless = [](const CropStep& part) { return part.left % 16 == 0; };
  Open(FactsOfAPlan(), options);
  EXPECT_EQ(Text("LabelLossless").toStdString(), rsCropLossless);
  Type("FieldLeft", "17");
  EXPECT_EQ(Text("LabelLossless").toStdString(), rsCropNotLossless);
}

TEST_F(ChooseCropForm, Readers_Should_HearTheRectangle) {
  Open(FactsOfAPlan());
  form->Tool().SetBmpCutRect({100, 50, 300, 250});
  Box().repaint();
  EXPECT_EQ(Box().ContentText(), "Rectangle: left 100, top 50, width 200, height 200");
}

TEST_F(ChooseCropForm, EverythingByKeyboard_Should_MakeARectangle) {
  Open(FactsOfAPlan());
  EXPECT_EQ(form->focusWidget(), &Box());
  Type("FieldWidth", "100");
  Type("FieldHeight", "50");
  Box().setFocus();
  QTest::keyClick(&Box(), Qt::Key_Right, Qt::ShiftModifier);
  QTest::keyClick(&Box(), Qt::Key_Down);
  QTest::keyClick(&Box(), Qt::Key_Right, Qt::ControlModifier);
  ExpectRect(10, 1, 111, 51);
  QTest::keyClick(&Box(), Qt::Key_Plus);
  EXPECT_GT(form->Tool().StretchFactor(), 0);
  QTest::keyClick(&Box(), Qt::Key_Return);
  EXPECT_EQ(form->result(), QDialog::Accepted);
}

}  // namespace
}  // namespace rasterkit::test
