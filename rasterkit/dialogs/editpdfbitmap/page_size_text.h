#pragma once

#include <string>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit {

/// What a page will be when it is rendered: "1240 * 1754 px, 210 * 297 mm (6.52 [MB])". The memory
/// is that of the finished bitmap. A size that no bitmap can have is told all the same.
std::string PageSizeText(const PdfPageSize& page, int resolution);

}  // namespace rasterkit
