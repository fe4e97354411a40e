#pragma once

#include <QWidget>
#include <memory>

class QStyle;

namespace rasterkit::detail {

/// Qt's Fusion style with outlines that are seen. Its own are a shade darker than the window, and
/// what has the focus wears the selection's colour darkened: on dark grounds neither shows.
///
/// Here the outlines of fields, buttons, boxes, track bars, lists and groups have a contrast of 3
/// to 1 to their grounds, in every palette, and whatever has the focus wears a frame of two pixels
/// with a contrast of 4.5 to 1. Sizes and places are Fusion's.
std::unique_ptr<QStyle> NewClearStyle();

/// Gives the widgets in a window that style where the application's is Fusion; a host that chose
/// another one, or made one of its own, keeps it. To be called again after a change of style.
void UseClearStyle(QWidget& window);

}  // namespace rasterkit::detail
