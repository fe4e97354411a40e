#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <memory>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>

#include "tests/support/copy_of.h"
#include "tests/support/forms/form_events.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaperBitmap;
using test::SamePixels;
using test::WhenModal;
using enum ValueControl;

TBitmap Photo(int width, int height) {
  std::mt19937 random(62);
  return PaperBitmap(pf24bit, width, height, random, 1);
}

/// The color of a pixel of an image.
TColor ColorAt(const QImage& image, int x, int y) {
  const QRgb pixel = image.pixel(x, y);
  return RGB(static_cast<uint8_t>(qRed(pixel)), static_cast<uint8_t>(qGreen(pixel)),
             static_cast<uint8_t>(qBlue(pixel)));
}

/// How often a widget is painted.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count;
    return false;
  }
};

class FormChgBmpTest : public testing::Test {
 protected:
  void Open(int32_t operation, int width = 900, int height = 700,
            const TChgBmpValuesRec& values = {}) {
    form.reset();
    photo = Photo(width, height);
    model = std::make_unique<ChangeValuesModel>(photo);
    model->Load(values);
    model->SetOperation(operation);
    form = std::make_unique<TFormChgBmp>(*model);
    form->show();
    QApplication::processEvents();
  }

  template <class T>
  T& Get(const char* name) const {
    T* child = form->findChild<T*>(name);
    if (child == nullptr) throw std::runtime_error(std::string("no ") + name);
    return *child;
  }
  QWidget& Widget(const char* name) const { return Get<QWidget>(name); }
  QSlider& Track(const char* name) const { return Get<QSlider>(name); }
  TSpinEditInt& Spin(const char* name) const { return Get<TSpinEditInt>(name); }

  void Click(TNavigateButton button) {
    QTest::mouseClick(&Get<TNavigator>("NaviResult").Button(button), Qt::LeftButton);
  }

  /// Both preview boxes show the picture, before and after the change, at the model's offset.
  void ExpectPreviews() {
    TBitmap changed = CopyOf(photo);
    model->ApplyTo(changed);
    const TPoint offset = model->Position().Offset();
    const auto compare = [&](const char* name, const TBitmap& expected) {
      const QImage image = test::GrabForm(Widget(name));
      for (int y = 0; y < std::min(image.height(), expected.Height()); y += 7)
        for (int x = 0; x < std::min(image.width(), expected.Width()); x += 5)
          ASSERT_EQ(ColorAt(image, x, y), expected.PixelColor(x + offset.X, y + offset.Y))
              << name << " at " << x << ", " << y;
    };
    compare("PaintBoxOrg", photo);
    compare("PaintBoxChg", changed);
  }

  TBitmap photo;
  std::unique_ptr<ChangeValuesModel> model;
  std::unique_ptr<TFormChgBmp> form;
};

TEST_F(FormChgBmpTest, Controls_Should_HaveTheirNamesRangesTicksAndTags) {
  Open(0);
  for (const char* name : {"PanBmps", "PanOrg", "PanChg", "PaintBoxOrg", "PaintBoxChg", "GBColors",
                           "GBOptions", "PanShowColor", "PaintBoxFarbe", "PanIntens", "LabVon",
                           "LabMitte", "LabBis", "TrackBar", "SpEdIntens", "NaviResult"})
    EXPECT_NE(form->findChild<QWidget*>(name), nullptr) << name;
  for (const char* color : {"Red", "Green", "Blue"}) {
    const std::string track = std::string("TB") + color, spin = std::string("SpEd") + color;
    EXPECT_EQ(Track(track.c_str()).property("tag").toInt(), 4);
    EXPECT_EQ(Track(track.c_str()).tickInterval(), 25);
    EXPECT_EQ(Track(track.c_str()).minimum(), -100);
    EXPECT_EQ(Spin(spin.c_str()).maximum(), 100);
  }
  int tag = 0;
  for (const char* option : {"Lightness", "Contrast", "Sharpen"}) {
    ++tag;
    const std::string track = std::string("Track") + option, spin = std::string("SpEd") + option;
    EXPECT_EQ(Track(track.c_str()).property("tag").toInt(), tag);
    EXPECT_EQ(Spin(spin.c_str()).property("tag").toInt(), tag);
    EXPECT_EQ(Track(track.c_str()).tickInterval(), 10);
    EXPECT_EQ(Track(track.c_str()).minimum(), -100);
    EXPECT_EQ(Spin(spin.c_str()).maximum(), 100);
  }
  EXPECT_EQ(Get<QGroupBox>("GBColors").title(), "Color");
  EXPECT_EQ(Get<QGroupBox>("GBOptions").title(), "Options");
  std::set<std::string> labels;
  for (const QLabel* label : form->findChildren<QLabel*>())
    labels.insert(label->text().remove('&').toStdString());
  for (const char* text : {"Red", "Green", "Blue", "-100", "0", "100", "Brightness [%]",
                           "Contrast [%]", "Sharpen [%]", "Gray value"})
    EXPECT_TRUE(labels.count(text)) << text;
}

TEST_F(FormChgBmpTest, Operation0_Should_HideTheGrayValueAndTheSwatch) {
  Open(0);
  EXPECT_TRUE(Widget("PanIntens").isHidden());
  EXPECT_TRUE(Widget("PanShowColor").isHidden());
  EXPECT_TRUE(Widget("GBColors").isVisible());
  EXPECT_TRUE(Widget("GBOptions").isVisible());
}

TEST_F(FormChgBmpTest, Operation5_Should_ShowTheGrayValueOnly) {
  Open(0);
  const int height = form->height();
  Open(5);
  EXPECT_EQ(form->windowTitle(), "Select gray value");
  EXPECT_TRUE(Widget("PanIntens").isVisible());
  EXPECT_FALSE(Widget("GBColors").isVisible());
  EXPECT_FALSE(Widget("GBOptions").isVisible());
  EXPECT_EQ(Track("TrackBar").maximum(), 255);
  EXPECT_EQ(Track("TrackBar").value(), 125);
  EXPECT_EQ(Spin("SpEdIntens").value(), 125);
  EXPECT_EQ(Get<QLabel>("LabVon").text(), "0");
  EXPECT_EQ(Get<QLabel>("LabBis").text(), "255");
  EXPECT_TRUE(Widget("LabMitte").isHidden());
  EXPECT_LT(form->height(), height);
  ExpectPreviews();
}

TEST_F(FormChgBmpTest, OtherOperations_Should_ShowThePicturesAlone) {
  Open(3);
  EXPECT_TRUE(Widget("PanIntens").isHidden());
  EXPECT_FALSE(Widget("GBColors").isVisible());
  EXPECT_EQ(form->focusWidget(), &Widget("PaintBoxOrg"));
  ExpectPreviews();
}

TEST_F(FormChgBmpTest, StartingValues_Should_BeShown) {
  Open(0, 50, 50, {-11, 22, -33, 44, -55, 66, 77});
  EXPECT_EQ(Track("TBRed").value(), -11);
  EXPECT_EQ(Spin("SpEdGreen").value(), 22);
  EXPECT_EQ(Track("TBBlue").value(), -33);
  EXPECT_EQ(Track("TrackSharpen").value(), 44);
  EXPECT_EQ(Spin("SpEdContrast").value(), -55);
  EXPECT_EQ(Track("TrackLightness").value(), 66);
}

TEST_F(FormChgBmpTest, OptionTracks_Should_SetTheirSpinEditAndThePreview) {
  Open(0);
  Click(nbRefresh);
  int task = 0;
  TaskSlots expected{};
  for (const char* option : {"Lightness", "Contrast", "Sharpen"}) {
    QSlider& track = Track((std::string("Track") + option).c_str());
    for (int i = 0; i < 3; ++i) QTest::keyClick(&track, Qt::Key_PageUp);
    QTest::keyClick(&track, Qt::Key_Right);
    EXPECT_EQ(track.value(), 31);
    EXPECT_EQ(Spin((std::string("SpEd") + option).c_str()).value(), 31);
    expected[static_cast<size_t>(task)] = task + 1;
    ++task;
    EXPECT_EQ(model->Slots(), expected);
    ExpectPreviews();
  }
}

TEST_F(FormChgBmpTest, OptionSpinEdits_Should_SetTheirTrackAndThePreview) {
  Open(0);
  Click(nbRefresh);
  for (const char* option : {"Sharpen", "Contrast", "Lightness"}) {
    TSpinEditInt& spin = Spin((std::string("SpEd") + option).c_str());
    spin.setFocus();
    spin.selectAll();
    QTest::keyClicks(&spin, "-2x5");
    EXPECT_EQ(Track((std::string("Track") + option).c_str()).value(), -25);
    ExpectPreviews();
  }
  EXPECT_EQ(model->Slots(), (TaskSlots{3, 2, 1, 0}));
}

TEST_F(FormChgBmpTest, ColorTracksAndSpinEdits_Should_SetEachOther) {
  Open(0);
  Click(nbRefresh);
  for (const char* color : {"Red", "Green", "Blue"}) {
    QSlider& track = Track((std::string("TB") + color).c_str());
    TSpinEditInt& spin = Spin((std::string("SpEd") + color).c_str());
    test::TurnWheel(track, {5, 5}, 120);
    EXPECT_GT(track.value(), 0);
    EXPECT_EQ(spin.value(), track.value());
    QTest::keyClick(&spin, Qt::Key_Down);
    QTest::keyClick(&spin, Qt::Key_PageDown);
    EXPECT_LT(spin.value(), 0);
    EXPECT_EQ(track.value(), spin.value());
    ExpectPreviews();
  }
  EXPECT_EQ(model->Slots(), (TaskSlots{4, 0, 0, 0}));
}

TEST_F(FormChgBmpTest, TheMouse_Should_MoveATrack) {
  Open(0);
  Click(nbRefresh);
  QSlider& track = Track("TrackContrast");
  const QPoint middle = track.rect().center();
  QTest::mousePress(&track, Qt::LeftButton, {}, middle);
  QTest::mouseMove(&track, middle + QPoint(30, 0));
  QTest::mouseRelease(&track, Qt::LeftButton, {}, middle + QPoint(30, 0));
  EXPECT_GT(track.value(), 0);
  EXPECT_EQ(Spin("SpEdContrast").value(), track.value());
}

TEST_F(FormChgBmpTest, UntilRefresh_Should_BrightenFourTimesOnly) {
  Open(0);
  QTest::keyClick(&Track("TrackContrast"), Qt::Key_PageUp);
  QTest::keyClick(&Track("TrackLightness"), Qt::Key_PageUp);
  EXPECT_EQ(model->Slots(), (TaskSlots{1, 1, 1, 1}));
  const QString tip = Get<TNavigator>("NaviResult").Button(nbRefresh).toolTip();
  EXPECT_TRUE(tip.contains("contrast") && tip.contains("F5")) << tip.toStdString();
  model->EnterAllTasks();
  const TFormChgBmp other(*model);
  EXPECT_FALSE(other.findChild<QPushButton*>("nbRefresh")->toolTip().contains("contrast"));
  ExpectPreviews();
}

TEST_F(FormChgBmpTest, TheGrayValue_Should_BeSetByTrackAndSpinEdit) {
  Open(5);
  QTest::keyClick(&Track("TrackBar"), Qt::Key_Right);
  EXPECT_EQ(Spin("SpEdIntens").value(), 126);
  ExpectPreviews();
  QTest::keyClick(&Spin("SpEdIntens"), Qt::Key_PageUp);
  EXPECT_EQ(Track("TrackBar").value(), 136);
  ExpectPreviews();
}

TEST_F(FormChgBmpTest, Refresh_Should_SetEverythingToZero) {
  Open(0, 300, 200, {10, 20, 30, 40, 50, 60, 0});
  Click(nbRefresh);
  for (const QSlider* track : form->findChildren<QSlider*>())
    EXPECT_EQ(track->value(), 0) << track->objectName().toStdString();
  for (const TSpinEditInt* spin : form->findChildren<TSpinEditInt*>()) EXPECT_EQ(spin->value(), 0);
  EXPECT_EQ(model->Slots(), TaskSlots{});
  ExpectPreviews();
  QTest::keyClick(&Track("TBRed"), Qt::Key_Right);
  QTest::keyClick(form.get(), Qt::Key_F5);
  EXPECT_EQ(Track("TBRed").value(), 0);
}

TEST_F(FormChgBmpTest, Dragging_Should_PanBothPreviews) {
  Open(0);
  QWidget& box = Widget("PaintBoxOrg");
  const TPoint before = model->Position().Offset();
  ASSERT_GT(before.X, 20);
  QTest::mousePress(&box, Qt::LeftButton, {}, {100, 80});
  QTest::mouseMove(&box, {90, 85});
  QTest::mouseMove(&box, {85, 100});
  QTest::mouseRelease(&box, Qt::LeftButton, {}, {85, 100});
  EXPECT_EQ(model->Position().Offset().X, before.X + 15);
  EXPECT_EQ(model->Position().Offset().Y, before.Y - 20);
  ExpectPreviews();
  QTest::mouseMove(&box, {10, 10});
  EXPECT_EQ(model->Position().Offset().X, before.X + 15);
}

TEST_F(FormChgBmpTest, Dragging_Should_NeedTheLeftButtonOverTheOriginal) {
  Open(0);
  const int before = model->Position().Offset().X;
  for (const auto& [name, button] :
       {std::pair{"PaintBoxOrg", Qt::RightButton}, {"PaintBoxChg", Qt::LeftButton}}) {
    QWidget& box = Widget(name);
    QTest::mousePress(&box, button, {}, {100, 80});
    EXPECT_NE(box.cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseMove(&box, {80, 80});
    QTest::mouseRelease(&box, button, {}, {80, 80});
    EXPECT_EQ(model->Position().Offset().X, before) << name;
  }
}

TEST_F(FormChgBmpTest, ArrowKeys_Should_PanThePicture) {
  Open(0);
  const TPoint before = model->Position().Offset();
  QWidget& box = Widget("PaintBoxOrg");
  QTest::keyClick(&box, Qt::Key_Right);
  QTest::keyClick(&box, Qt::Key_Up);
  EXPECT_EQ(model->Position().Offset().X, before.X + 20);
  EXPECT_EQ(model->Position().Offset().Y, before.Y - 20);
  ExpectPreviews();
}

TEST_F(FormChgBmpTest, ASmallPicture_Should_ShowAtZeroAndNotBePanned) {
  Open(0, 40, 30);
  QWidget& box = Widget("PaintBoxOrg");
  QTest::mousePress(&box, Qt::LeftButton, {}, {10, 10});
  QTest::mouseMove(&box, {1, 1});
  QTest::mouseRelease(&box, Qt::LeftButton, {}, {1, 1});
  EXPECT_EQ(model->Position().Offset().X, 0);
  ExpectPreviews();
  const QImage image = test::GrabForm(box);
  EXPECT_EQ(image.pixelColor(41, 31), box.palette().color(QPalette::Window));
}

TEST_F(FormChgBmpTest, Resizing_Should_PlaceThePreviewsSideBySideAndCenterAgain) {
  Open(0, 2000, 2000);
  for (const QSize size : {QSize(900, 700), QSize(1201, 803)}) {
    model->Position().Scroll(50, 50);
    form->resize(size);
    QApplication::processEvents();
    const QWidget& whole = Widget("PanBmps");
    const QRect first = Widget("PanOrg").geometry(), second = Widget("PanChg").geometry();
    EXPECT_EQ(first.width(), (whole.width() - 36) / 2);
    EXPECT_EQ(first.height(), whole.height() - 21);
    EXPECT_EQ(second.size(), first.size());
    EXPECT_EQ(second.left() - (first.left() + first.width()), 24);
    EXPECT_EQ(second.top(), first.top());
    EXPECT_TRUE(whole.rect().contains(first.united(second)));
    const QSize box = Widget("PaintBoxOrg").size();
    EXPECT_EQ(model->Position().MaxOffset().X, 2000 - box.width());
    EXPECT_NEAR(model->Position().Offset().X, (2000 - box.width()) / 2.0, 0.51);
    ExpectPreviews();
  }
}

TEST_F(FormChgBmpTest, TheSwatch_Should_ShowTheColorOfTheNumbers) {
  photo = Photo(10, 10);
  model = std::make_unique<ChangeValuesModel>(photo);
  model->Change(red, 200);
  model->Change(blue, 90);
  form = std::make_unique<TFormChgBmp>(*model);
  EXPECT_FALSE(Widget("PanShowColor").isHidden());
  form->show();
  QApplication::processEvents();
  EXPECT_EQ(ColorAt(test::GrabForm(Widget("PaintBoxFarbe")), 3, 3), RGB(200, 0, 90));
  const PaintCounter paintings(Widget("PaintBoxFarbe"));
  QTest::keyClick(&Track("TBGreen"), Qt::Key_End);
  QApplication::processEvents();
  EXPECT_GT(paintings.count, 0);
  EXPECT_EQ(ColorAt(test::GrabForm(Widget("PaintBoxFarbe")), 3, 3), RGB(200, 255, 90));
}

TEST_F(FormChgBmpTest, Tab_Should_GoThroughTheControlsInTheirOrder) {
  Open(0);
  Widget("PaintBoxOrg").setFocus();
  for (const char* next : {"TBRed", "SpEdRed", "TBGreen", "SpEdGreen", "TBBlue", "SpEdBlue",
                           "TrackLightness", "SpEdLightness", "TrackContrast", "SpEdContrast",
                           "TrackSharpen", "SpEdSharpen", "nbPost", "nbCancel", "nbRefresh"}) {
    QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(form->focusWidget()->objectName().toStdString(), next);
  }
  Open(5);
  EXPECT_EQ(form->focusWidget(), &Track("TrackBar"));
  QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(form->focusWidget(), &Spin("SpEdIntens"));
}

TEST_F(FormChgBmpTest, Mnemonics_Should_FocusTheirTrack) {
  Open(0);
  QTest::keyClick(form.get(), Qt::Key_C, Qt::AltModifier);
  EXPECT_TRUE(Widget("TrackContrast").hasFocus());
  QTest::keyClick(form.get(), Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(Widget("TBRed").hasFocus());
}

class ChangeBitmapDialogTest : public testing::Test {
 protected:
  ChangeBitmapDialogTest() : original(Photo(60, 40)), bitmap(CopyOf(original)) {}

  bool Run(int32_t operation, const std::function<void(QWidget&)>& action) {
    WhenModal(action);
    return ChangeBitmap(operation, &bitmap, true, values);
  }
  static QWidget& Child(QWidget& form, const char* name) { return *form.findChild<QWidget*>(name); }

  void ExpectUntouched() {
    EXPECT_TRUE(SamePixels(original, bitmap));
    EXPECT_EQ(bitmap.PixelFormat(), original.PixelFormat());
    EXPECT_EQ(values.Contrast, 7);
    EXPECT_EQ(values.Brightness, 0);
    EXPECT_EQ(values.Red, 300);
  }

  TBitmap original, bitmap;
  TChgBmpValuesRec values{300, 0, 0, 0, 7, 0, 0};
};

/// Changes the brightness, so that canceling has something to discard.
void Brighten(QWidget& form) {
  QTest::keyClick(form.findChild<QWidget*>("TrackLightness"), Qt::Key_PageUp);
}

TEST_F(ChangeBitmapDialogTest, Post_Should_ChangeTheBitmapAndTheValues) {
  EXPECT_TRUE(Run(0, [](QWidget& form) {
    QTest::mouseClick(&Child(form, "nbRefresh"), Qt::LeftButton);
    QTest::keyClick(&Child(form, "TrackContrast"), Qt::Key_PageUp);
    Brighten(form);
    QTest::mouseClick(&Child(form, "nbPost"), Qt::LeftButton);
  }));
  ValueChange expected;
  expected.taskSlots = {kTaskContrast, kTaskBrightness};
  expected.contrast = expected.lightness = 10;
  TBitmap changed = CopyOf(original);
  expected.ApplyTo(changed);
  EXPECT_TRUE(SamePixels(changed, bitmap));
  EXPECT_EQ(values.Contrast, 10);
  EXPECT_EQ(values.Brightness, 10);
  EXPECT_EQ(values.Red, 0);
}

TEST_F(ChangeBitmapDialogTest, Enter_Should_Post) {
  EXPECT_TRUE(Run(0, [](QWidget& form) { QTest::keyClick(&form, Qt::Key_Return); }));
  EXPECT_EQ(values.Red, 100);
}

TEST_F(ChangeBitmapDialogTest, Cancel_Should_LeaveEverything) {
  EXPECT_FALSE(Run(0, [](QWidget& form) {
    Brighten(form);
    QTest::mouseClick(&Child(form, "nbCancel"), Qt::LeftButton);
  }));
  ExpectUntouched();
}

TEST_F(ChangeBitmapDialogTest, Escape_Should_LeaveEverything) {
  EXPECT_FALSE(Run(0, [](QWidget& form) {
    Brighten(form);
    QTest::keyClick(&form, Qt::Key_Escape);
  }));
  ExpectUntouched();
}

TEST_F(ChangeBitmapDialogTest, TheFrame_Should_LeaveEverything) {
  EXPECT_FALSE(Run(0, [](QWidget& form) {
    Brighten(form);
    form.close();
  }));
  ExpectUntouched();
}

TEST_F(ChangeBitmapDialogTest, TheHostQuitting_Should_LeaveEverything) {
  bool answer = true;
  QTimer::singleShot(0, [&] {
    answer = Run(0, [](QWidget& form) {
      Brighten(form);
      QApplication::quit();
    });
  });
  QApplication::exec();
  EXPECT_FALSE(answer);
  ExpectUntouched();
}

TEST_F(ChangeBitmapDialogTest, Operation5_Should_PostBlackAndWhiteAndNoGrayValue) {
  values.GrayValue = 9;
  EXPECT_TRUE(Run(5, [](QWidget& form) {
    QTest::keyClick(&Child(form, "TrackBar"), Qt::Key_PageUp);
    QTest::mouseClick(&Child(form, "nbPost"), Qt::LeftButton);
  }));
  EXPECT_EQ(bitmap.PixelFormat(), pf1bit);
  ValueChange expected;
  expected.operation = 5;
  expected.grayValue = 135;
  TBitmap changed = CopyOf(original);
  expected.ApplyTo(changed);
  EXPECT_TRUE(SamePixels(changed, bitmap));
  EXPECT_EQ(values.GrayValue, 9);
  EXPECT_EQ(values.Red, 300);
}

TEST_F(ChangeBitmapDialogTest, EmptyAndTinyBitmaps_Should_BeSurvived) {
  for (const TPixelFormat format : test::kEveryFormat)
    for (const int size : {0, 1}) {
      bitmap = TBitmap();
      bitmap.SetPixelFormat(format);
      bitmap.SetSize(size, size);
      EXPECT_TRUE(Run(0, [](QWidget& form) {
        Brighten(form);
        QApplication::processEvents();
        QTest::keyClick(&form, Qt::Key_Return);
      }));
      EXPECT_EQ(bitmap.Width(), size);
    }
}

}  // namespace
}  // namespace rasterkit
