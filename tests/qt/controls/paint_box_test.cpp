#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>
#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::GrabForm;
using test::TurnWheel;
using testing::ElementsAre;

/// Counts what reaches a parent.
class Parent : public QWidget {
 public:
  int presses = 0;

 protected:
  void mousePressEvent(QMouseEvent*) override { ++presses; }
};

class PaintBoxTest : public testing::Test {
 protected:
  PaintBoxTest() {
    parent_.resize(100, 80);
    box_ = new TPaintBox(&parent_);
    box_->resize(100, 80);
    parent_.show();
    HostPorts().messageBox = [this](const std::string& text) { messages_.push_back(text); };
  }
  ~PaintBoxTest() override { HostPorts().messageBox = nullptr; }

  Parent parent_;
  TPaintBox* box_ = nullptr;
  std::vector<std::string> messages_;
};

TEST_F(PaintBoxTest, OnPaint_Should_DrawWhatIsSeen) {
  box_->OnPaint = [](TPaintBox& sender, QPainter& painter) {
    painter.fillRect(sender.rect(), Qt::red);
  };
  EXPECT_EQ(GrabForm(*box_).pixelColor(99, 79), QColor(Qt::red));
}

TEST_F(PaintBoxTest, OnPaint_Should_BeClippedToWhatMustBePainted) {
  QRectF clip;
  box_->OnPaint = [&](TPaintBox&, QPainter& painter) { clip = painter.clipBoundingRect(); };
  QImage image(100, 80, QImage::Format_RGB32);
  box_->render(&image, {}, QRegion(10, 20, 30, 5));
  EXPECT_EQ(clip, QRectF(10, 20, 30, 5));
}

TEST_F(PaintBoxTest, MouseHandlers_Should_GetButtonsAndPlaces) {
  std::vector<std::string> seen;
  const auto note = [&seen](const char* what) {
    return [&seen, what](TPaintBox&, QMouseEvent& event) {
      seen.push_back(what + std::to_string(event.position().toPoint().x()) + "," +
                     std::to_string(event.position().toPoint().y()) +
                     (event.buttons().testFlag(Qt::LeftButton) ? " left" : ""));
    };
  };
  box_->OnMouseDown = note("down ");
  box_->OnMouseMove = note("move ");
  box_->OnMouseUp = note("up ");
  QTest::mouseMove(box_, {5, 6});
  QTest::mousePress(box_, Qt::LeftButton, {}, {10, 20});
  QTest::mouseRelease(box_, Qt::LeftButton, {}, {30, 40});
  EXPECT_THAT(seen, ElementsAre("move 5,6", "down 10,20 left", "up 30,40"));
  EXPECT_EQ(parent_.presses, 0);
}

TEST_F(PaintBoxTest, OnMouseDown_Should_ComeTwice_When_DoubleClicked) {
  int presses = 0;
  box_->OnMouseDown = [&](TPaintBox&, QMouseEvent&) { ++presses; };
  QMouseEvent twice(QEvent::MouseButtonDblClick, {3, 3}, {3, 3}, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QApplication::sendEvent(box_, &twice);
  EXPECT_EQ(presses, 1);
}

TEST_F(PaintBoxTest, Event_Should_GoToTheParent_When_HandlerIsEmpty) {
  QTest::mousePress(box_, Qt::LeftButton, {}, {10, 20});
  EXPECT_EQ(parent_.presses, 1);
}

TEST_F(PaintBoxTest, LeaveWheelKeyAndResize_Should_ReachTheirHandlers) {
  std::vector<std::string> seen;
  box_->OnMouseLeave = [&](TPaintBox&) { seen.emplace_back("leave"); };
  box_->OnMouseWheel = [&](TPaintBox&, QWheelEvent& event) {
    seen.push_back("wheel " + std::to_string(event.angleDelta().y()));
  };
  box_->OnKeyDown = [&](TPaintBox&, QKeyEvent& event) {
    seen.push_back("key " + event.text().toStdString());
  };
  box_->OnResize = [&](TPaintBox& sender) {
    seen.push_back("size " + std::to_string(sender.width()));
  };
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(box_, &leave);
  TurnWheel(*box_, {1, 1}, -120);
  QTest::keyClick(box_, 'a');
  box_->resize(50, 40);
  EXPECT_THAT(seen, ElementsAre("leave", "wheel -120", "key a", "size 50"));
}

TEST_F(PaintBoxTest, Exception_Should_BeShownAndStop) {
  box_->OnMouseDown = [](TPaintBox&, QMouseEvent&) { throw std::runtime_error("broken"); };
  box_->OnPaint = [](TPaintBox&, QPainter&) { throw std::runtime_error("no paint"); };
  QTest::mousePress(box_, Qt::LeftButton, {}, {10, 20});
  GrabForm(*box_);
  EXPECT_THAT(messages_, testing::IsSupersetOf({"broken", "no paint"}));
}

TEST_F(PaintBoxTest, Handler_Should_ReplaceItself) {
  auto calls = std::make_shared<int>(0);
  box_->OnMouseDown = [calls](TPaintBox& sender, QMouseEvent&) {
    sender.OnMouseDown = nullptr;
    ++*calls;
  };
  QTest::mousePress(box_, Qt::LeftButton);
  QTest::mousePress(box_, Qt::LeftButton);
  EXPECT_EQ(*calls, 1);
}

TEST_F(PaintBoxTest, Handler_Should_KeepAndCallThePreviousOne) {
  int before = 0;
  box_->OnPaint = [&](TPaintBox&, QPainter&) { ++before; };
  box_->OnPaint = [saved = box_->OnPaint](TPaintBox& sender, QPainter& painter) {
    saved(sender, painter);
  };
  GrabForm(*box_);
  EXPECT_GE(before, 1);
}

TEST_F(PaintBoxTest, Handler_Should_DestroyTheBox) {
  box_->OnMouseDown = [](TPaintBox& sender, QMouseEvent&) { delete &sender; };
  QMouseEvent press(QEvent::MouseButtonPress, {3, 3}, {3, 3}, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QApplication::sendEvent(box_, &press);
  EXPECT_TRUE(parent_.children().isEmpty());
}

}  // namespace
}  // namespace rasterkit
