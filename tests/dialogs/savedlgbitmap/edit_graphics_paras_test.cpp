#include <QApplication>
#include <QComboBox>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <functional>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/edit_graphics_paras.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::WhenModal;
using Action = std::function<void(QWidget&)>;

bool IsVisible(const QWidget& form, const char* name) {
  return form.findChild<QWidget*>(name)->isVisible();
}

void Press(QWidget& form, TNavigateButton button) {
  QTest::mouseClick(&form.findChild<TNavigator*>("NaviResult")->Button(button), Qt::LeftButton);
}

void Type(QWidget& form, const char* name, const char* text) {
  auto* field = form.findChild<QWidget*>(name);
  field->setFocus();
  QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(field, text);
}

/// The ways out that mean that nothing happened.
const Action kCancels[] = {[](QWidget& form) { Press(form, nbCancel); },
                           [](QWidget& form) { QTest::keyClick(&form, Qt::Key_Escape); },
                           [](QWidget& form) { form.close(); },
                           [](QWidget&) { QApplication::quit(); }};

class EditGraphicsParasTest : public testing::Test {
 protected:
  bool Edit(const Action& action, bool showType = true, bool showResolution = true,
            bool showPixelSize = true, bool showHelp = true) {
    WhenModal(action);
    return EditGraphicsParas(rec, showType, showResolution, showPixelSize, showHelp, sizeA, sizeB);
  }
  bool EditPixels(const Action& action) {
    WhenModal(action);
    return EditGraphicsParasPixels(rec, width, height);
  }

  TrecSaveBitmap rec{1, 24, 96, 1, 80};
  float sizeA = 210, sizeB = 297;
  int width = 400, height = 300;
};

TEST_F(EditGraphicsParasTest, Ok_Should_OverwriteTheRecord) {
  EXPECT_TRUE(Edit([](QWidget& form) {
    form.findChild<QComboBox*>("CoBoGraphType")->setCurrentIndex(1);
    form.findChild<QSlider*>("TrackBarComp")->setValue(40);
    Type(form, "SpEdDpi", "150");
    Press(form, nbPost);
  }));
  EXPECT_EQ(rec, (TrecSaveBitmap{6, 24, 150, 1, 40}));
}

TEST_F(EditGraphicsParasTest, OkAtOnce_Should_LeaveTheRecord) {
  const TrecSaveBitmap before = rec;
  EXPECT_TRUE(Edit([](QWidget& form) { QTest::keyClick(&form, Qt::Key_Return); }));
  EXPECT_EQ(rec, before);
}

TEST_F(EditGraphicsParasTest, OtherEnds_Should_LeaveTheRecord) {
  rec.JpgQuality = 5;
  const TrecSaveBitmap before = rec;
  for (const Action& cancel : kCancels) {
    bool answer = true;
    QTimer::singleShot(0, [&] {
      answer = Edit([&](QWidget& form) {
        form.findChild<QComboBox*>("CoBoColors")->setCurrentIndex(0);
        cancel(form);
      });
      QApplication::quit();
    });
    QApplication::exec();
    EXPECT_FALSE(answer);
    EXPECT_EQ(rec, before);
  }
}

TEST_F(EditGraphicsParasTest, AQualityThatIsNone_Should_OpenAndReturnAsNinety) {
  for (const int quality : {5, 101}) {
    rec.JpgQuality = quality;
    EXPECT_TRUE(Edit([](QWidget& form) {
      EXPECT_EQ(form.findChild<QSlider*>("TrackBarComp")->value(), 90);
      Press(form, nbPost);
    }));
    EXPECT_EQ(rec.JpgQuality, 90);
  }
}

TEST_F(EditGraphicsParasTest, EachFlag_Should_ShowItsGroup) {
  const char* const groups[] = {"GBGraphType", "GBDpi", "GBPixels"};
  for (int hidden = 0; hidden < 8; ++hidden) {
    const bool shows[] = {(hidden & 1) == 0, (hidden & 2) == 0, (hidden & 4) == 0};
    const bool done = Edit(
        [&](QWidget& form) {
          for (int i = 0; i < 3; ++i) EXPECT_EQ(IsVisible(form, groups[i]), shows[i]) << groups[i];
          EXPECT_TRUE(IsVisible(form, "GBMm"));
          EXPECT_EQ(form.height(), form.sizeHint().height());
          Press(form, nbPost);
        },
        shows[0], shows[1], shows[2]);
    EXPECT_TRUE(done);
  }
}

TEST_F(EditGraphicsParasTest, WhatIsHidden_Should_StayInTheRecord) {
  rec = {10, 24, 72, 2, 55};
  EXPECT_TRUE(Edit([](QWidget& form) { Press(form, nbPost); }, false, false, false, false));
  EXPECT_EQ(rec, (TrecSaveBitmap{10, 24, 72, 2, 55}));
}

TEST_F(EditGraphicsParasTest, WithoutHelp_Should_LeaveANavigatorFiftySixWide) {
  for (const bool showHelp : {true, false}) {
    Edit(
        [&](QWidget& form) {
          const auto& navigator = *form.findChild<TNavigator*>("NaviResult");
          EXPECT_EQ(navigator.Button(nbHelp).isVisible(), showHelp);
          EXPECT_EQ(navigator.width(), showHelp ? 84 : 56);
          form.close();
        },
        true, true, true, showHelp);
  }
}

TEST_F(EditGraphicsParasTest, ASizeOfNone_Should_HideTheMillimeters) {
  sizeB = 0;
  Edit([](QWidget& form) {
    EXPECT_FALSE(IsVisible(form, "GBMm"));
    form.close();
  });
}

TEST_F(EditGraphicsParasTest, Sizes_Should_BeReturned_When_TheyAreInPixels) {
  EXPECT_TRUE(EditPixels([](QWidget& form) {
    EXPECT_FALSE(IsVisible(form, "GBDpi"));
    EXPECT_FALSE(IsVisible(form, "GBMm"));
    EXPECT_TRUE(IsVisible(form, "GBGraphType"));
    EXPECT_EQ(form.height(), form.sizeHint().height());
    Type(form, "FlEdHeight", "100");
    form.findChild<QComboBox*>("CoBoColors")->setCurrentIndex(2);
    Press(form, nbPost);
  }));
  EXPECT_EQ(width, 133);
  EXPECT_EQ(height, 100);
  EXPECT_EQ(rec, (TrecSaveBitmap{1, 8, 96, 1, 80}));
}

TEST_F(EditGraphicsParasTest, Sizes_Should_Stay_When_PixelsAreCanceled) {
  for (const Action& cancel : kCancels) {
    bool answer = true;
    QTimer::singleShot(0, [&] {
      answer = EditPixels([&](QWidget& form) {
        Type(form, "FlEdWidth", "77");
        cancel(form);
      });
      QApplication::quit();
    });
    QApplication::exec();
    EXPECT_FALSE(answer);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
    EXPECT_EQ(rec, (TrecSaveBitmap{1, 24, 96, 1, 80}));
  }
}

TEST_F(EditGraphicsParasTest, SizesBelowOne_Should_BeEnteredOneByOne) {
  width = 0;
  EXPECT_TRUE(EditPixels([](QWidget& form) {
    Type(form, "FlEdWidth", "50");
    Press(form, nbPost);
  }));
  EXPECT_EQ(width, 50);
  EXPECT_EQ(height, 300);
}

}  // namespace
}  // namespace rasterkit
