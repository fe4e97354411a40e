#pragma once

#include <functional>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {

/// Shows each form of the gallery, waits until it is on the screen and settled, and passes it to
/// the rule. Failures name the form.
void ForEachForm(const std::function<void(QWidget&, const Exhibited&)>& rule);
void ForEachForm(const std::function<void(QWidget&)>& rule);

}  // namespace rasterkit::test
