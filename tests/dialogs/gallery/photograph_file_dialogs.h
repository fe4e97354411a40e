#pragma once

#include <QImage>
#include <QString>
#include <functional>

namespace rasterkit::test {

/// Gets a photograph and its name; false when it cannot be kept.
using PhotographSink = std::function<bool(const QImage& image, const QString& name)>;

/// The picture open and save dialogs over a folder with the pictures of `samples/`, taken when the
/// preview is there.
bool PhotographFileDialogs(const PhotographSink& sink);

}  // namespace rasterkit::test
