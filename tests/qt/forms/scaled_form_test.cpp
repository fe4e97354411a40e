#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/scaled_form.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::WhenModal;

TEST(ScaledForm, ShowModal_Should_ReturnOk_When_Accepted) {
  TScaledForm form;
  WhenModal([&](QWidget&) { form.accept(); });
  EXPECT_EQ(form.ShowModal(), 1);
}

TEST(ScaledForm, ShowModal_Should_ReturnCancel_When_Rejected) {
  TScaledForm form;
  WhenModal([&](QWidget&) { form.reject(); });
  EXPECT_EQ(form.ShowModal(), 2);
}

TEST(ScaledForm, ShowModal_Should_ReturnCancel_When_EscapeIsPressed) {
  TScaledForm form;
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  EXPECT_EQ(form.ShowModal(), 2);
}

TEST(ScaledForm, ShowModal_Should_ReturnCancel_When_TheFrameClosesIt) {
  TScaledForm form;
  WhenModal([](QWidget& window) { window.close(); });
  EXPECT_EQ(form.ShowModal(), 2);
}

/// A text in a group, as forms have it: two layouts lie between it and the window.
class FormWithGroup : public testing::Test {
 protected:
  FormWithGroup() {
    auto* group = new QWidget(&form);
    (new QVBoxLayout(&form))->addWidget(group);
    (new QVBoxLayout(group))->addWidget(label);
    form.resize(form.sizeHint());
  }
  TScaledForm form;
  QLabel* label = new QLabel("short");
};

TEST_F(FormWithGroup, Should_OpenWithRoomForItsTexts_When_TheyBecameLonger) {
  label->setText(QString(100, 'n'));
  form.show();
  // Before any event.
  const int opened = form.width();
  QTest::qWait(1);
  EXPECT_GE(opened, form.minimumSizeHint().width());
  EXPECT_GE(label->width(), label->sizeHint().width());
}

TEST_F(FormWithGroup, Should_KeepALargerSize_When_ItIsShown) {
  form.resize(form.sizeHint() + QSize(100, 50));
  const QSize before = form.size();
  form.show();
  EXPECT_EQ(form.size(), before);
}

}  // namespace
}  // namespace rasterkit
