#pragma once

#include <QImage>
#include <QString>
#include <functional>

namespace rasterkit::test {

/// Gets a photograph and its name; false if it cannot be saved.
using PhotographSink = std::function<bool(const QImage& image, const QString& name)>;

/// Photographs the picture open and save dialogs over a folder with the pictures of `samples/`,
/// after the preview has appeared.
bool PhotographFileDialogs(const PhotographSink& sink);

}  // namespace rasterkit::test
