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

/// The form as it looks, laid out and painted without being shown to anybody.
QImage GrabForm(QWidget& form);

/// Calls `action` once the modal window that the caller is about to open is up, with that window;
/// an action that leaves it open is followed by a cancel, so that no test can hang.
void WhenModal(std::function<void(QWidget& window)> action);

}  // namespace rasterkit::test
