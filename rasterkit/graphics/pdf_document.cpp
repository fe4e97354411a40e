#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/graphics/isolated_pdf.h>
#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr double kPixelsPerPoint = 100.0 / 72;

double WholePixels(double points, double scale) {
  return std::max(1.0, std::floor(points * scale * kPixelsPerPoint + 0.5));
}

bool IsQuarterTurn(PdfRotation rotation) {
  return rotation == PdfRotation::clockwise90 || rotation == PdfRotation::clockwise270;
}

/// True for NaN too.
bool IsNoSize(double points) {
  return !(points > 0) || std::isinf(points);
}

}  // namespace

PdfDocument::~PdfDocument() = default;

PdfDocumentMaker& PdfDocumentFactory() {
  static PdfDocumentMaker maker;
  return maker;
}

std::unique_ptr<PdfDocument> CreatePdfDocument() {
  if (PdfDocumentFactory()) return PdfDocumentFactory()();
  return std::make_unique<detail::IsolatedPdfDocument>();
}

PdfPixels PdfPagePixels(const PdfPageSize& page, double scale, PdfRotation rotation) {
  PdfPixels pixels{WholePixels(page.width, scale), WholePixels(page.height, scale)};
  if (IsQuarterTurn(rotation)) std::swap(pixels.width, pixels.height);
  return pixels;
}

double PdfResolution(double scale) {
  const double dotsPerInch = scale * 100;
  const double whole = std::round(dotsPerInch);
  return std::abs(dotsPerInch - whole) < 1e-9 * whole ? whole : dotsPerInch;
}

void RequirePdfPage(const PdfPageSize& page, double scale, PdfRotation rotation) {
  if (IsNoSize(page.width) || IsNoSize(page.height)) {
    throw LimitError(fmt::format("PDF: the page states an impossible size of {} x {} points",
                                 page.width, page.height));
  }
  const PdfPixels pixels = PdfPagePixels(page, scale, rotation);
  const auto limit = static_cast<double>(PictureMemoryLimit());
  if (std::max(pixels.width, pixels.height) <= kMostPdfPixels && pixels.Bytes() <= limit) return;
  throw LimitError(fmt::format(
      "PDF: at {:g} dpi the page has {:.0f} x {:.0f} pixels and takes {:.0f} MiB; the most are "
      "{} pixels in one direction and {:.0f} MiB",
      PdfResolution(scale), pixels.width, pixels.height, std::ceil(pixels.Bytes() / 1048576),
      kMostPdfPixels, std::floor(limit / 1048576)));
}

}  // namespace rasterkit
