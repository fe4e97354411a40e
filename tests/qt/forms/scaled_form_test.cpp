#include <QPushButton>
#include <QTest>

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

}  // namespace
}  // namespace rasterkit
