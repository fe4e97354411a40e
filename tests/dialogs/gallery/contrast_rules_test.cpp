#include "tests/dialogs/gallery/contrast_rules.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/look/style.h>

#include "tests/dialogs/gallery/for_each_form.h"
#include "tests/support/forms/color_contrast.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

struct Look {
  const char* name;
  void (*use)();
};

void PrintTo(const Look& look, std::ostream* out) {
  *out << look.name;
}

/// The library's own palettes, and hosts that set a palette with the default style.
const Look kLooks[] = {
    {"Light", [] { UsePalette(LightPalette()); }},
    {"Dark", [] { UsePalette(DarkPalette()); }},
    {"HostsLight",
     [] {
       QApplication::setStyle("Fusion");
       QApplication::setPalette(LightPalette());
     }},
    {"HostsDark",
     [] {
       QApplication::setStyle("Fusion");
       QApplication::setPalette(QPalette(QColor(53, 53, 53)));
     }},
};

class ContrastRules : public testing::TestWithParam<Look> {
 protected:
  ContrastRules() { GetParam().use(); }
  ~ContrastRules() override {
    QApplication::setStyle("Fusion");
    QApplication::setPalette(QPalette());
  }

  using Rule = std::vector<std::string>(QWidget&);
  static void ExpectNoFaults(Rule* rule) {
    ForEachForm([&](QWidget& form) {
      form.activateWindow();
      EXPECT_TRUE(QTest::qWaitForWindowActive(&form));
      // After a key the focus is always drawn.
      QTest::keyClick(&form, Qt::Key_Tab);
      EXPECT_THAT(rule(form), IsEmpty());
    });
  }
};

TEST_P(ContrastRules, Texts_Should_BeReadable) {
  ExpectNoFaults(FaintTexts);
}

TEST_P(ContrastRules, Frames_Should_BeSeen) {
  ExpectNoFaults(FaintFrames);
}

TEST_P(ContrastRules, Drawings_Should_BeSeen) {
  ExpectNoFaults(FaintIcons);
}

TEST_P(ContrastRules, Focus_Should_BeSeen) {
  ExpectNoFaults(FaintFocus);
}

INSTANTIATE_TEST_SUITE_P(Looks, ContrastRules, testing::ValuesIn(kLooks),
                         [](const auto& info) { return std::string(info.param.name); });

// Tests of the rules.

class FaintForm : public testing::Test {
 protected:
  FaintForm() {
    QApplication::setStyle("Fusion");
    form.setPalette(DarkPalette());
    form.resize(200, 100);
  }
  QWidget form;
};

TEST_F(FaintForm, APaleText_Should_BeFound) {
  QLabel label("pale", &form);
  label.setGeometry(10, 10, 100, 30);
  QPalette pale = label.palette();
  pale.setColor(QPalette::WindowText, QColor(90, 90, 90));
  label.setPalette(pale);
  form.show();
  EXPECT_THAT(FaintTexts(form), SizeIs(1));
  label.setPalette(form.palette());
  EXPECT_THAT(FaintTexts(form), IsEmpty());
}

TEST_F(FaintForm, AFrameOfFusion_Should_BeFound_AndMended) {
  QGroupBox group("Group", &form);
  group.setGeometry(10, 10, 120, 60);
  QLineEdit edit(&form);
  edit.setGeometry(10, 75, 120, 22);
  form.show();
  EXPECT_THAT(FaintFrames(form), SizeIs(2));
  detail::UseClearStyle(form);
  EXPECT_THAT(FaintFrames(form), IsEmpty());
}

TEST_F(FaintForm, ADarkDrawingOnDark_Should_BeFound) {
  QPixmap black(8, 8);
  black.fill(Qt::black);
  QPushButton button(QIcon(black), QString(), &form);
  button.setIconSize({8, 8});
  button.setGeometry(10, 10, 80, 30);
  form.show();
  EXPECT_THAT(FaintIcons(form), SizeIs(1));
  black.fill(Qt::white);
  button.setIcon(black);
  EXPECT_THAT(FaintIcons(form), IsEmpty());
}

TEST_F(FaintForm, AFocusThatIsNotSeen_Should_BeFound) {
  QWidget plain(&form);
  plain.setGeometry(10, 10, 50, 20);
  plain.setFocusPolicy(Qt::TabFocus);
  form.show();
  form.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  EXPECT_THAT(FaintFocus(form), SizeIs(1));
}

// How the outlines get onto forms.

TEST(ClearStyle, AHostsOwnStyle_Should_Stay) {
  QApplication::setStyle("Windows");
  QWidget form;
  QLineEdit edit(&form);
  detail::UseClearStyle(form);
  EXPECT_FALSE(edit.testAttribute(Qt::WA_SetStyle));
  QApplication::setStyle("Fusion");
  detail::UseClearStyle(form);
  EXPECT_TRUE(edit.testAttribute(Qt::WA_SetStyle));
  QApplication::setStyle("Windows");
  detail::UseClearStyle(form);
  EXPECT_FALSE(edit.testAttribute(Qt::WA_SetStyle));
  QApplication::setStyle("Fusion");
}

TEST(ClearStyle, AStyleThatAWidgetWasGiven_Should_Stay) {
  const std::unique_ptr<QStyle> own = detail::NewClearStyle();
  QWidget form;
  QLineEdit edit(&form);
  edit.setStyle(own.get());
  detail::UseClearStyle(form);
  EXPECT_EQ(edit.style(), own.get());
}

/// The size hints of all widgets of a form, in order.
std::vector<QSize> WantedSizes(const QWidget& form) {
  QCoreApplication::processEvents();
  std::vector<QSize> sizes = {form.sizeHint(), form.minimumSizeHint()};
  for (const QWidget* widget : form.findChildren<QWidget*>()) sizes.push_back(widget->sizeHint());
  return sizes;
}

TEST(ClearStyle, Sizes_Should_BeThoseOfFusion) {
  for (const Exhibited& exhibited : Gallery()) {
    const std::unique_ptr<QWidget> form = exhibited.make();
    form->show();
    const std::vector<QSize> clear = WantedSizes(*form);
    for (QWidget* widget : form->findChildren<QWidget*>()) widget->setStyle(nullptr);
    EXPECT_EQ(clear, WantedSizes(*form)) << exhibited.name;
  }
}

}  // namespace
}  // namespace rasterkit::test
