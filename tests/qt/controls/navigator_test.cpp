#include <QApplication>
#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

class NavigatorTest : public testing::Test {
 protected:
  NavigatorTest() {
    auto* column = new QVBoxLayout(&dialog_);
    edit_ = new TFloatEdit;
    navigator_ = new TNavigator;
    column->addWidget(edit_);
    column->addWidget(navigator_);
  }

  void Show() {
    dialog_.show();
    dialog_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog_));
    edit_->setFocus();
  }

  QDialog dialog_;
  TFloatEdit* edit_ = nullptr;
  TNavigator* navigator_ = nullptr;
};

TEST_F(NavigatorTest, EachButton_Should_TellItsName) {
  navigator_->setHelpVisible(true);
  navigator_->setRefreshVisible(true);
  QSignalSpy any(navigator_, &TNavigator::clicked);
  QSignalSpy post(navigator_, &TNavigator::postClicked);
  QSignalSpy cancel(navigator_, &TNavigator::cancelClicked);
  QSignalSpy help(navigator_, &TNavigator::helpClicked);
  QSignalSpy refresh(navigator_, &TNavigator::refreshClicked);
  for (const auto button : {nbPost, nbCancel, nbHelp, nbRefresh}) {
    QTest::mouseClick(&navigator_->Button(button), Qt::LeftButton);
    EXPECT_EQ(any.takeFirst()[0].value<TNavigateButton>(), button);
  }
  EXPECT_EQ(post.count(), 1);
  EXPECT_EQ(cancel.count(), 1);
  EXPECT_EQ(help.count(), 1);
  EXPECT_EQ(refresh.count(), 1);
}

TEST_F(NavigatorTest, Enter_Should_Post_When_AFieldHasTheFocus) {
  // A button that comes first would be the dialog's own choice.
  auto* other = new QPushButton("Other", &dialog_);
  QWidget::setTabOrder(edit_, other);
  Show();
  QSignalSpy post(navigator_, &TNavigator::postClicked);
  QTest::keyClick(edit_, Qt::Key_Return);
  EXPECT_EQ(post.count(), 1);
}

TEST_F(NavigatorTest, Keys_Should_PressHelpAndRefresh_When_Visible) {
  navigator_->setHelpVisible(true);
  navigator_->setRefreshVisible(true);
  Show();
  QSignalSpy help(navigator_, &TNavigator::helpClicked);
  QSignalSpy refresh(navigator_, &TNavigator::refreshClicked);
  QTest::keyClick(edit_, Qt::Key_F1);
  QTest::keyClick(edit_, Qt::Key_F5);
  EXPECT_EQ(help.count(), 1);
  EXPECT_EQ(refresh.count(), 1);
}

TEST_F(NavigatorTest, Keys_Should_DoNothing_When_ButtonsAreHiddenOrDisabled) {
  navigator_->setRefreshVisible(true);
  navigator_->Button(nbRefresh).setEnabled(false);
  Show();
  QSignalSpy any(navigator_, &TNavigator::clicked);
  QTest::keyClick(edit_, Qt::Key_F1);
  QTest::keyClick(edit_, Qt::Key_F5);
  EXPECT_EQ(any.count(), 0);
}

TEST_F(NavigatorTest, HelpAndRefresh_Should_BeHidden_When_NotAskedFor) {
  Show();
  EXPECT_TRUE(navigator_->Button(nbPost).isVisible());
  EXPECT_TRUE(navigator_->Button(nbCancel).isVisible());
  EXPECT_FALSE(navigator_->isHelpVisible());
  EXPECT_FALSE(navigator_->isRefreshVisible());
}

TEST_F(NavigatorTest, Handler_Should_DestroyTheNavigator) {
  QObject::connect(navigator_, &TNavigator::clicked, [this] { delete edit_; });
  QObject::connect(navigator_, &TNavigator::postClicked, navigator_, &QObject::deleteLater);
  navigator_->Button(nbPost).click();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(dialog_.findChild<TNavigator*>(), nullptr);
}

TEST(Navigator, Buttons_Should_BearTextsOfTheUsersLanguage) {
  SetTranslator([](std::string_view key) {
    return key == rsCancel ? std::string("Abbrechen") : std::string();
  });
  const TNavigator navigator;
  SetTranslator(nullptr);
  EXPECT_EQ(navigator.Button(nbCancel).text(), "Abbrechen");
  EXPECT_EQ(navigator.Button(nbCancel).accessibleName(), "Abbrechen");
  EXPECT_EQ(navigator.Button(nbPost).text(), "OK");
  EXPECT_EQ(navigator.Button(nbHelp).toolTip(), "Shows help (F1)");
}

TEST(Navigator, Buttons_Should_HaveNamesAndIcons) {
  const TNavigator navigator;
  for (const auto button : {nbPost, nbCancel, nbHelp, nbRefresh}) {
    EXPECT_FALSE(navigator.Button(button).accessibleName().isEmpty());
    EXPECT_FALSE(navigator.Button(button).toolTip().isEmpty());
    EXPECT_FALSE(navigator.Button(button).icon().isNull());
  }
}

TEST_F(NavigatorTest, ACompactBar_Should_BeTwentyEightWideForEachButton) {
  navigator_->setCompact(true);
  Show();
  EXPECT_EQ(navigator_->width(), 56);
  navigator_->setHelpVisible(true);
  QApplication::processEvents();
  EXPECT_EQ(navigator_->width(), 84);
  for (const auto button : {nbPost, nbCancel, nbHelp}) {
    EXPECT_EQ(navigator_->Button(button).size(), QSize(28, 28));
    EXPECT_EQ(navigator_->Button(button).text(), "");
    EXPECT_FALSE(navigator_->Button(button).accessibleName().isEmpty());
    EXPECT_FALSE(navigator_->Button(button).toolTip().isEmpty());
  }
}

TEST_F(NavigatorTest, ACompactBar_Should_BecomeAUsualOneAgain) {
  Show();
  const QSize before = navigator_->Button(nbPost).size();
  const QString text = navigator_->Button(nbPost).text();
  navigator_->setCompact(true);
  EXPECT_TRUE(navigator_->isCompact());
  navigator_->setCompact(false);
  QApplication::processEvents();
  EXPECT_EQ(navigator_->Button(nbPost).text(), text);
  EXPECT_EQ(navigator_->Button(nbPost).size(), before);
}

}  // namespace
}  // namespace rasterkit
