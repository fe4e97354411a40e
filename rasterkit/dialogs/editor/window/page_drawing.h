#pragma once

#include <QImage>
#include <atomic>
#include <functional>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// Draws a small picture of a page, counted from 1, at most `side` pixels wide and high; a null
/// image if the page cannot be read, or soon after `isCanceled` is set. Never throws. May be called
/// on any thread, by one at a time.
using PageDrawing = std::function<QImage(int page, int side, const std::atomic<bool>& isCanceled)>;

/// Draws the pages of a file: a document or a PDF file, which stays open as long as the
/// function. It works under the limits of the thread that calls this.
RASTERKIT_EXPORT PageDrawing DrawPagesOf(const std::string& file, Isolation isolation);

}  // namespace rasterkit
