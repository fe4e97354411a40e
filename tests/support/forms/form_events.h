#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>
#include <functional>

/// What QtTest 6.4 lacks for tests of forms.
namespace rasterkit::test {

/// Sends a wheel event at `position` (pixels of the widget); one notch up is 120.
void TurnWheel(QWidget& widget, QPoint position, int delta,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Waits until the size and position of a window that is shown stay the same. A display server
/// reports sizes late and in another order than they were requested.
void Settle(QWidget& form);

/// Shows the form and waits until it is on the screen and settled. False if it does not appear.
[[nodiscard]] bool ShowSettled(QWidget& form);

/// Returns a picture of the form, laid out and painted without being shown on the screen.
QImage GrabForm(QWidget& form);

/// Calls `action` with the next modal window as soon as the caller has opened it. If the action
/// leaves the window open, it is canceled afterwards, so that no test can hang.
void WhenModal(std::function<void(QWidget& window)> action);

}  // namespace rasterkit::test
