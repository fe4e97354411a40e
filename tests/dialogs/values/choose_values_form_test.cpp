#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/dialogs/values/choose_values.h>
#include <rasterkit/dialogs/values/choose_values_form.h>
#include <rasterkit/dialogs/values/histogram_box.h>
#include <rasterkit/dialogs/values/preview_box.h>
#include <rasterkit/dialogs/values/zero_slider.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/host/documentation.h>
#include <rasterkit/qt/qt_color.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/paper_pictures.h"

namespace rasterkit {
namespace {

using test::WhenModal;
using enum ValueControl;

constexpr unsigned kSeed = 5005;

TBitmap Photo(int width = 900, int height = 700) {
  std::mt19937 random(kSeed);
  return test::PaperBitmap(pf24bit, width, height, random, 1);
}

/// Ports of the host, put back after a test.
class HostPortsKept {
 public:
  ~HostPortsKept() { HostPorts() = before_; }

 private:
  const Ports before_ = HostPorts();
};

template <class Start>
class ChoiceTest : public testing::Test {
 protected:
  void Open(const Start& start = {}) {
    form.reset();
    session = std::make_unique<ValueSession>(photo, start);
    form = std::make_unique<TFormChooseValues>(*session);
    form->show();
    form->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
  }
  template <class T = QWidget>
  T& Get(const char* name) const {
    T* child = form->findChild<T*>(name);
    if (child == nullptr) throw std::runtime_error(std::string("no ") + name);
    return *child;
  }
  QPushButton& Button(TNavigateButton button) const {
    return Get<TNavigator>("NaviResult").Button(button);
  }
  void Click(QWidget& widget) { QTest::mouseClick(&widget, Qt::LeftButton); }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }
  QPoint PointOf(int x, int y) const {
    const double scale = form->devicePixelRatioF();
    return {qRound(x / scale), qRound(y / scale)};
  }

  HostPortsKept ports;
  TBitmap photo = Photo();
  std::unique_ptr<ValueSession> session;
  std::unique_ptr<TFormChooseValues> form;
};

class ValuesFormTest : public ChoiceTest<AdjustColors> {
 protected:
  ValuesFormTest() { Open(); }
  ZeroSlider& Track(const char* name) { return Get<ZeroSlider>(name); }
};
class ThresholdFormTest : public ChoiceTest<MakeMono> {
 protected:
  ThresholdFormTest() { Open(); }
};

TEST_F(ValuesFormTest, TrackAndSpin_Should_ShowTheSameNumber_AndChangeTheStep) {
  const std::map<const char*, ValueControl> names = {
      {"Brightness", lightness}, {"Contrast", contrast}, {"Sharpen", sharpen}, {"Red", red},
      {"Green", green},          {"Blue", blue}};
  int value = 10;
  for (const auto& [name, control] : names) {
    auto& track = Get<ZeroSlider>(qPrintable(QString("Track") + name));
    auto& spin = Get<TSpinEditInt>(qPrintable(QString("SpEd") + name));
    track.setValue(++value);
    EXPECT_EQ(spin.value(), value) << name;
    EXPECT_EQ(session->Number(control), value) << name;
    spin.setValue(-value);
    EXPECT_EQ(track.value(), -value) << name;
  }
}

TEST_F(ValuesFormTest, ThePreview_Should_BeFittedAtFirst_AndShowPixelsOfTheStepAtItsOwnSize) {
  EXPECT_TRUE(form->Viewport().IsFitted());
  session->Change(contrast, 40);
  session->Change(sharpen, 60);
  Click(Get("ButtonActualSize"));
  EXPECT_EQ(form->Viewport().Zoom(), 1);
  Picture picture = Picture::Of(photo.Clone());
  picture.Change(session->Adjustment());
  const auto changed = picture.Bitmap();
  const QImage image = form->Preview().Picture();
  const auto areas = form->Viewport().Areas();
  ASSERT_EQ(areas.size(), 2u);
  for (const PreviewArea& area : areas) {
    const TBitmap& expected = area.isChanged ? *changed : photo;
    for (int y = area.box.Top; y < area.box.Bottom; y += 3)
      for (int x = area.box.Left; x < area.box.Right; x += 3)
        ASSERT_EQ(ColorOf(image.pixelColor(x, y)),
                  expected.PixelColor(x - area.place.Left, y - area.place.Top));
  }
  Click(Get("ButtonFit"));
  EXPECT_TRUE(form->Viewport().IsFitted());
}

/// What is on the screen is what was made, not a stretched copy of it.
TEST_F(ValuesFormTest, TheScreen_Should_ShowThePreview_PixelByPixel) {
  Click(Get("ButtonActualSize"));
  Get<QCheckBox>("CheckLoupe").setChecked(false);
  const QImage grabbed = test::GrabForm(form->Preview());
  const QImage made = form->Preview().Picture();
  ASSERT_EQ(grabbed.size(), made.size());
  for (int y = 60; y < made.height() - 4; y += 7)
    for (int x = 4; x < made.width() - 4; x += 5)
      ASSERT_EQ(grabbed.pixelColor(x, y), made.pixelColor(x, y)) << x << ' ' << y;
}

TEST_F(ValuesFormTest, TheLoupe_Should_ShowThePixelsUnderTheCursorInBothPictures) {
  session->Change(sharpen, 80);
  const auto areas = form->Viewport().Areas();
  const TRect& place = areas[0].place;
  const QPoint at = PointOf((place.Left + place.Right) / 2, (place.Top + place.Bottom) / 2);
  EXPECT_TRUE(form->Preview().LoupeRect(areas[0]).isEmpty()) << "no cursor";
  QTest::mouseMove(&form->Preview(), at);
  const QRect left = form->Preview().LoupeRect(areas[0]),
              right = form->Preview().LoupeRect(areas[1]);
  ASSERT_FALSE(left.isEmpty());
  EXPECT_EQ(right.x() - left.x(), areas[1].pane.Left - areas[0].pane.Left);
  const QImage image = test::GrabForm(form->Preview());
  const TPoint pixel = form->Viewport().PixelAt({left.center().x() + 1, left.center().y() + 1});
  const TRect part{pixel.X - 20, pixel.Y - 20, pixel.X + 20, pixel.Y + 20};
  const TBitmap changed = ChangeStepPart(photo, part, session->Adjustment());
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 40; ++x) {
      const QPoint offset(left.width() / 2 - 20 + x, left.height() / 2 - 20 + y);
      ASSERT_EQ(ColorOf(image.pixelColor(right.topLeft() + offset)), changed.PixelColor(x, y));
      ASSERT_EQ(ColorOf(image.pixelColor(left.topLeft() + offset)),
                photo.PixelColor(part.Left + x, part.Top + y));
    }
  Get<QCheckBox>("CheckLoupe").setChecked(false);
  EXPECT_TRUE(form->Preview().LoupeRect(areas[0]).isEmpty());
  Get<QCheckBox>("CheckLoupe").setChecked(true);
  Click(Get("ButtonActualSize"));
  EXPECT_TRUE(form->Preview().LoupeRect(areas[0]).isEmpty()) << "nothing to enlarge";
}

TEST_F(ValuesFormTest, TheDivider_Should_MoveByMouseAndKeys) {
  Get<QComboBox>("ComboView").setCurrentIndex(1);
  ASSERT_EQ(form->Viewport().Mode(), PreviewMode::split);
  PreviewBox& box = form->Preview();
  const QPoint middle = box.rect().center(), quarter(box.width() / 4, box.height() / 2);
  QTest::mousePress(&box, Qt::LeftButton, {}, middle);
  QTest::mouseMove(&box, quarter);
  QTest::mouseRelease(&box, Qt::LeftButton, {}, quarter);
  EXPECT_NEAR(form->Viewport().Divider(), 0.25, 0.01);
  QTest::mouseMove(&box, middle);
  EXPECT_NEAR(form->Viewport().Divider(), 0.25, 0.01) << "released";
  box.setFocus();
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_NEAR(form->Viewport().Divider(), 0.27, 0.01);
  Press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_NEAR(form->Viewport().Divider(), 0.25, 0.01);
}

TEST_F(ValuesFormTest, WheelDragAndKeys_Should_ZoomAndPanBothPictures) {
  PreviewBox& box = form->Preview();
  const double fitted = form->Viewport().Zoom();
  test::TurnWheel(box, box.rect().center(), 120);
  EXPECT_GT(form->Viewport().Zoom(), fitted);
  Click(Get("ButtonActualSize"));
  const auto left = [&] { return form->Viewport().Areas()[1].place.Left; };
  const int before = left();
  QTest::mousePress(&box, Qt::LeftButton, {}, {50, 50});
  QTest::mouseMove(&box, {30, 50});
  QTest::mouseRelease(&box, Qt::LeftButton, {}, {30, 50});
  EXPECT_EQ(left(), before - qRound(20 * box.devicePixelRatioF()));
  box.setFocus();
  Press(Qt::Key_Left);
  EXPECT_EQ(left(), before);
  Press(Qt::Key_Plus);
  EXPECT_EQ(form->Viewport().Zoom(), 2);
  Press(Qt::Key_Minus);
  EXPECT_EQ(form->Viewport().Zoom(), 1);
  Get("SpEdRed").setFocus();
  Press(Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(form->Viewport().Zoom(), 2) << "wherever the focus is";
}

TEST_F(ValuesFormTest, TheKeyB_AndTheButton_Should_ShowTheOriginalWhileHeld) {
  Get("SpEdRed").setFocus();
  QWidget* const focus = QApplication::focusWidget();
  QTest::keyPress(focus, Qt::Key_B);
  EXPECT_TRUE(form->Preview().IsComparing());
  QTest::keyRelease(focus, Qt::Key_B);
  EXPECT_FALSE(form->Preview().IsComparing());
  QTest::mousePress(&Get("ButtonBefore"), Qt::LeftButton);
  EXPECT_TRUE(form->Preview().IsComparing());
  QTest::mouseRelease(&Get("ButtonBefore"), Qt::LeftButton);
  EXPECT_FALSE(form->Preview().IsComparing());
}

TEST_F(ValuesFormTest, WhileHeld_ThePreview_Should_BeTheOriginal) {
  Click(Get("ButtonActualSize"));
  Get<QComboBox>("ComboView").setCurrentIndex(2);
  const QImage plain = form->Preview().Picture();
  session->Change(lightness, 50);
  EXPECT_NE(form->Preview().Picture(), plain);
  form->Preview().SetComparing(true);
  EXPECT_EQ(form->Preview().Picture(), plain);
}

TEST_F(ValuesFormTest, UndoAndRedo_Should_Work_WhereverTheFocusIs) {
  Track("TrackRed").setValue(30);
  session->EndChange();
  Track("TrackBlue").setValue(-30);
  for (const char* name : {"SpEdGreen", "TrackContrast", "ComboView", "PreviewBox"}) {
    SCOPED_TRACE(name);
    Get(name).setFocus();
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(session->Number(blue), 0);
    EXPECT_EQ(session->Number(red), 30);
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(session->Number(blue), -30);
    Press(Qt::Key_Z, Qt::ControlModifier);
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(session->Number(blue), -30);
  }
  EXPECT_FALSE(Get("ButtonRedo").isEnabled());
  Click(Get("ButtonUndo"));
  EXPECT_EQ(session->Number(blue), 0);
  EXPECT_TRUE(Get("ButtonRedo").isEnabled());
  Click(Get("ButtonRedo"));
  EXPECT_EQ(session->Number(blue), -30);
}

TEST_F(ValuesFormTest, KeysThatAreReleased_AndNumbersThatAreEntered_Should_BeStepsOfUndo) {
  Track("TrackRed").setFocus();
  Press(Qt::Key_Right);
  Press(Qt::Key_Right);
  session->Undo();
  EXPECT_EQ(session->Number(red), 1);
  // A key that is held repeats itself.
  auto& track = Track("TrackRed");
  for (int i = 0; i < 5; ++i) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, Qt::Key_Right, Qt::NoModifier, QString(), true);
      QApplication::sendEvent(&track, &event);
    }
  }
  QTest::keyRelease(&track, Qt::Key_Right);
  const int held = session->Number(red);
  EXPECT_GT(held, 5);
  Press(Qt::Key_PageUp);
  EXPECT_GT(session->Number(red), held);
  session->Undo();
  EXPECT_EQ(session->Number(red), held);
  session->Undo();
  EXPECT_EQ(session->Number(red), 1);
  session->Undo();
  EXPECT_EQ(session->Number(red), 0);
  EXPECT_FALSE(session->CanUndo());
  auto& spin = Get<TSpinEditInt>("SpEdBlue");
  spin.setFocus();
  for (const char* number : {"12", "34"}) {
    spin.selectAll();
    QTest::keyClicks(&spin, number);
    Q_EMIT spin.editingFinished();
  }
  EXPECT_EQ(session->Number(blue), 34);
  session->Undo();
  EXPECT_EQ(session->Number(blue), 12);
  session->Undo();
  EXPECT_EQ(session->Number(blue), 0);
}

TEST_F(ValuesFormTest, AControl_Should_BeReset_ByItsLabelItsButtonAndDelete) {
  const auto set = [&] {
    Track("TrackRed").setValue(30);
    session->EndChange();
    Track("TrackBlue").setValue(10);
    session->EndChange();
  };
  set();
  QTest::mouseDClick(&Get("LabRed"), Qt::LeftButton);
  EXPECT_EQ(Track("TrackRed").value(), 0);
  EXPECT_EQ(Track("TrackBlue").value(), 10);
  set();
  Click(Get("ResetRed"));
  EXPECT_EQ(Track("TrackRed").value(), 0);
  EXPECT_FALSE(Get("ResetRed").isEnabled());
  set();
  Track("TrackRed").setFocus();
  Press(Qt::Key_Delete);
  EXPECT_EQ(Track("TrackRed").value(), 0);
  EXPECT_EQ(Track("TrackBlue").value(), 10);
}

TEST_F(ValuesFormTest, ResetAll_Should_SayReset_AndSetEverythingBack) {
  EXPECT_EQ(Button(nbRefresh).text(), "Reset");
  EXPECT_FALSE(Button(nbRefresh).isEnabled());
  Track("TrackRed").setValue(30);
  Track("TrackSharpen").setValue(-30);
  Click(Button(nbRefresh));
  EXPECT_FALSE(session->CanResetAll());
  Track("TrackRed").setValue(30);
  Press(Qt::Key_F5);
  EXPECT_EQ(Track("TrackRed").value(), 0);
}

TEST_F(ValuesFormTest, OK_Should_BePale_UntilSomethingIsChanged) {
  EXPECT_FALSE(Button(nbPost).isEnabled());
  Press(Qt::Key_Return);
  EXPECT_TRUE(form->isVisible());
  Track("TrackRed").setValue(1);
  EXPECT_TRUE(Button(nbPost).isEnabled());
  Press(Qt::Key_Return);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Accepted);
}

TEST_F(ValuesFormTest, Escape_Should_Close_AndF1AskForHelp) {
  int topic = 0;
  HostPorts().helpTopic = [&](int context) { topic = context; };
  Press(Qt::Key_F1);
  EXPECT_NE(topic, 0);
  Press(Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Rejected);
}

TEST_F(ValuesFormTest, WithoutTopicAndDocumentation_Help_Should_TellTheKeys) {
  if (!InstalledDocumentation().isEmpty()) GTEST_SKIP() << "the documentation is installed";
  std::string told;
  HostPorts().helpTopic = nullptr;
  HostPorts().messageBox = [&](const std::string& text) { told = text; };
  Click(Button(nbHelp));
  EXPECT_NE(told, "");
}

TEST_F(ValuesFormTest, TheHistogram_Should_BeThatOfTheChangedPicture) {
  const auto shows = [&](const TBitmap& picture) {
    const TRect all{0, 0, picture.Width(), picture.Height()};
    const LevelFacts facts = FactsOf(CountLevels(picture, {all}).gray);
    const QString mean = QString("mean %1\n").arg(facts.mean);
    return QTest::qWaitFor([&] { return Get<QLabel>("LabHistogram").text().contains(mean); });
  };
  photo = Photo(400, 300);
  Open();
  EXPECT_TRUE(shows(photo));
  Track("TrackBrightness").setValue(60);
  Picture picture = Picture::Of(photo.Clone());
  picture.Change(session->Adjustment());
  EXPECT_TRUE(shows(*picture.Bitmap()));
  EXPECT_FALSE(form->Histogram().Threshold());
}

TEST_F(ThresholdFormTest, TheLine_Should_BeDragged_AndFollowTheNumber) {
  HistogramBox& box = form->Histogram();
  EXPECT_EQ(box.Threshold(), 125);
  const int x = qRound(box.XOf(200));
  QTest::mousePress(&box, Qt::LeftButton, {}, {qRound(box.XOf(60)), 20});
  QTest::mouseMove(&box, {x, 20});
  QTest::mouseRelease(&box, Qt::LeftButton, {}, {x, 20});
  EXPECT_EQ(session->Number(grayValue), box.LevelAt(x));
  EXPECT_NEAR(session->Number(grayValue), 200, 2);
  EXPECT_EQ(box.Threshold(), session->Number(grayValue));
  EXPECT_EQ(Get<ZeroSlider>("TrackThreshold").value(), session->Number(grayValue));
  session->Undo();
  EXPECT_EQ(session->Number(grayValue), 125) << "one step";
  Get<TSpinEditInt>("SpEdThreshold").setValue(77);
  EXPECT_EQ(box.Threshold(), 77);
}

TEST_F(ThresholdFormTest, Automatic_Should_ShowOtsusThreshold_AndAnswerWithNone) {
  Picture automatic = Picture::Of(photo.Clone());
  automatic.Change(MakeMono{std::nullopt});
  ASSERT_TRUE(session->FoundThreshold());
  EXPECT_EQ(form->Histogram().Mark(), session->FoundThreshold());
  Get<QCheckBox>("CheckAutomatic").setChecked(true);
  EXPECT_EQ(Get<ZeroSlider>("TrackThreshold").value(), *session->FoundThreshold());
  EXPECT_EQ(session->Mono().threshold, std::nullopt);
  Click(Get("ButtonActualSize"));
  const auto expected = automatic.Bitmap();
  const QImage image = form->Preview().Picture();
  const PreviewArea area = form->Viewport().Areas()[1];
  for (int y = area.box.Top; y < area.box.Bottom; y += 5)
    for (int x = area.box.Left; x < area.box.Right; x += 5)
      ASSERT_EQ(ColorOf(image.pixelColor(x, y)),
                expected->PixelColor(x - area.place.Left, y - area.place.Top));
  Get<ZeroSlider>("TrackThreshold").setValue(30);
  EXPECT_FALSE(Get<QCheckBox>("CheckAutomatic").isChecked());
}

TEST(ThresholdOfALargePicture, Should_ArriveFromAnotherThread) {
  const TBitmap photo = Photo(1500, 900);
  ValueSession session(photo, MakeMono{});
  TFormChooseValues form(session);
  form.show();
  const int found = detail::OtsuThreshold(CountGraysOf(photo));
  EXPECT_TRUE(QTest::qWaitFor([&] { return session.FoundThreshold() == found; }));
}

// The entries.

TEST(ChooseValues, Should_AnswerWithTheStep_When_TheUserConfirms) {
  const TBitmap photo = Photo(60, 40);
  WhenModal([](QWidget& window) {
    window.findChild<QSlider*>("TrackContrast")->setValue(25);
    window.findChild<QSlider*>("TrackBlue")->setValue(-5);
    QTest::keyClick(&window, Qt::Key_Return);
  });
  const auto answer = ChooseValues(photo);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->contrast, 25);
  EXPECT_EQ(answer->blue, -5);
  EXPECT_EQ(answer->brightness, 0);
}

TEST(ChooseValues, Should_BeginWithTheStart_AndAnswerNothing_When_Canceled) {
  const TBitmap photo = Photo(60, 40);
  int shown = 0;
  WhenModal([&](QWidget& window) {
    shown = window.findChild<QSlider*>("TrackGreen")->value();
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  EXPECT_FALSE(ChooseValues(photo, AdjustColors{0, 0, 0, 0, 12, 0}));
  EXPECT_EQ(shown, 12);
}

TEST(ChooseThreshold, Should_AnswerWithTheThreshold_OrNone) {
  const TBitmap photo = Photo(60, 40);
  WhenModal([](QWidget& window) {
    window.findChild<QSlider*>("TrackThreshold")->setValue(201);
    QTest::keyClick(&window, Qt::Key_Return);
  });
  const auto chosen = ChooseThreshold(photo);
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen->threshold, 201);
  WhenModal([](QWidget& window) {
    window.findChild<QCheckBox*>("CheckAutomatic")->setChecked(true);
    QTest::keyClick(&window, Qt::Key_Return);
  });
  const auto automatic = ChooseThreshold(photo);
  ASSERT_TRUE(automatic);
  EXPECT_EQ(automatic->threshold, std::nullopt);
}

TEST(ChooseValues, AnEmptyPicture_Should_BeRefused) {
  EXPECT_THROW(ChooseValues(TBitmap()), FormatError);
  EXPECT_THROW(ChooseThreshold(TBitmap()), FormatError);
}

}  // namespace
}  // namespace rasterkit
