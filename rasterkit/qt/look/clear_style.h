#pragma once

#include <QWidget>
#include <memory>

class QStyle;

namespace rasterkit::detail {

/// Creates a variant of Qt's Fusion style with visible outlines. Fusion's own outlines are only a
/// shade darker than the window, and its focus is the darkened selection color: neither is visible
/// on a dark background.
///
/// Here the outlines of fields, buttons, boxes, track bars, lists and groups have a contrast of 3
/// to 1 to their background in every palette, and the focused control has a frame of two pixels
/// with a contrast of 4.5 to 1. Sizes and positions are those of Fusion.
std::unique_ptr<QStyle> NewClearStyle();

/// Sets that style on the widgets in a window if the application's style is Fusion. A host with
/// another style, or one of its own, keeps it. Call it again after a change of style.
void UseClearStyle(QWidget& window);

}  // namespace rasterkit::detail
