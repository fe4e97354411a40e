#include <QApplication>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/gallery/gallery.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit::test {
namespace {

/// The controls that must be reachable without a mouse.
QSet<QString> Reachable(const QWidget& form) {
  QSet<QString> names;
  for (const QWidget* widget : form.findChildren<QWidget*>()) {
    const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) != 0;
    const bool isInner = widget->objectName().startsWith("qt_") || widget->focusProxy() != nullptr;
    if (takesTab && !isInner && widget->isVisible() && widget->isEnabled())
      names += widget->objectName();
  }
  return names;
}

/// The names that a key visits until it comes back to where it began.
QStringList Round(QWidget& form, Qt::Key key) {
  constexpr int kMost = 100;
  QStringList visited;
  const QWidget* first = form.focusWidget();
  if (first == nullptr) return visited;
  do {
    visited += form.focusWidget()->objectName();
    QTest::keyClick(form.focusWidget(), key);
  } while (form.focusWidget() != first && visited.size() < kMost);
  return visited;
}

class TabRound : public testing::TestWithParam<std::string> {
 protected:
  TabRound() {
    for (const Exhibited& exhibited : Gallery())
      if (exhibited.name == GetParam()) form = exhibited.make();
    EXPECT_TRUE(ShowSettled(*form));
    form->activateWindow();
    // Only then is the focus painted.
    EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
  }
  std::unique_ptr<QWidget> form;
};

TEST_P(TabRound, Tab_Should_VisitEveryControlOnceAndComeBack) {
  const QStringList round = Round(*form, Qt::Key_Tab);
  const QSet<QString> visited(round.begin(), round.end());
  EXPECT_EQ(visited, Reachable(*form)) << round.join(' ').toStdString();
  EXPECT_EQ(visited.size(), round.size()) << round.join(' ').toStdString();
}

TEST_P(TabRound, BackTab_Should_GoTheSameWayBack) {
  QStringList round = Round(*form, Qt::Key_Tab), back = Round(*form, Qt::Key_Backtab);
  ASSERT_FALSE(back.isEmpty());
  std::reverse(back.begin() + 1, back.end());
  EXPECT_EQ(back, round);
}

/// The button that Enter presses looks the same with and without the focus.
bool IsDefaultButton(const QWidget& widget) {
  const auto* button = qobject_cast<const QPushButton*>(&widget);
  return button != nullptr && button->isDefault();
}

/// The focused control is visibly marked.
TEST_P(TabRound, Focus_Should_BeSeen) {
  const QStringList round = Round(*form, Qt::Key_Tab);
  for (const QString& name : round) {
    QWidget* widget = form->focusWidget();
    const QImage with = form->grab().toImage();
    const bool isDefault = IsDefaultButton(*widget);
    widget->clearFocus();
    const QImage without = form->grab().toImage();
    EXPECT_TRUE(isDefault || with != without) << name.toStdString();
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_Tab);
  }
}

std::vector<std::string> Names() {
  std::vector<std::string> names;
  for (const Exhibited& exhibited : Gallery()) names.push_back(exhibited.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(Gallery, TabRound, testing::ValuesIn(Names()), [](const auto& info) {
  std::string name = info.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace rasterkit::test
