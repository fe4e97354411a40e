#pragma once

#include <string>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit {

/// Returns the size of the rendered page: "1240 * 1754 px, 210 * 297 mm (6.52 [MB])". The memory is
/// that of the finished bitmap. A size that is too large for a bitmap is shown as well.
std::string PageSizeText(const PdfPageSize& page, int resolution);

}  // namespace rasterkit
