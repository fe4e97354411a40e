#include "tool/reports/pdf_report.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include <fmt/core.h>

#include "tool/command/exit_code.h"
#include "tool/command/json.h"
#include "tool/command/limit_options.h"
#include "tool/command/printable.h"
#include "tool/pages/pdf_file.h"

namespace rasterkit::tool {
namespace {

constexpr double kMillimetersPerPoint = 25.4 / 72;

double Rounded(double value, double steps) {
  return std::round(value * steps) / steps;
}

/// Why the page cannot be drawn at that size; empty if it can.
std::string Refusal(const PdfPageSize& size, double scale) {
  try {
    RequirePdfPage(size, scale);
    return {};
  } catch (const Error& error) {
    return ReasonWithOption(error);
  }
}

Json PageJson(int page, const PdfPageSize& size, double scale) {
  const PdfPixels pixels = PdfPagePixels(size, scale);
  return JsonObject()
      .Add("page", page)
      .Add("points", std::array{Rounded(size.width, 1000), Rounded(size.height, 1000)})
      .Add("millimetres", std::array{Rounded(size.width * kMillimetersPerPoint, 100),
                                     Rounded(size.height * kMillimetersPerPoint, 100)})
      .Add("pixels", std::array{pixels.width, pixels.height})
      .Add("bytes", pixels.Bytes())
      .Add("error", TextOrNull(Refusal(size, scale)));
}

Json DamagedPageJson(int page, const std::string& error) {
  return JsonObject()
      .Add("page", page)
      .Add("points", nullptr)
      .Add("millimetres", nullptr)
      .Add("pixels", nullptr)
      .Add("bytes", nullptr)
      .Add("error", error);
}

void PrintPage(int page, const PdfPageSize& size, double scale) {
  const PdfPixels pixels = PdfPagePixels(size, scale);
  fmt::print(
      "  page {}: {:.6g} x {:.6g} points, {:.1f} x {:.1f} mm, {:.0f} x {:.0f} pixels, {:.0f} MiB\n",
      page, size.width, size.height, size.width * kMillimetersPerPoint,
      size.height * kMillimetersPerPoint, pixels.width, pixels.height,
      std::ceil(pixels.Bytes() / 1048576));
  const std::string refusal = Refusal(size, scale);
  if (!refusal.empty()) fmt::print("    cannot be drawn: {}\n", refusal);
}

/// The size of a page, or nothing and the reason in `error`.
std::optional<PdfPageSize> TrySize(const PdfDocument& document, const std::string& file, int page,
                                   std::string& error) {
  try {
    return SizeOfPage(document, file, page);
  } catch (const Failure& failure) {
    error = failure.what();
    return std::nullopt;
  }
}

void PrintJson(const std::string& file, double dpi, const std::string& error,
               const JsonList& pages) {
  PrintLine(JsonObject()
                .Add("schema", 1)
                .Add("file", file)
                .Add("ok", error.empty())
                .Add("error", TextOrNull(error))
                .Add("dpi", dpi)
                .Add("pages", pages));
}

}  // namespace

int ReportPages(const std::string& file, const std::string& password, double dpi, bool json) {
  std::unique_ptr<PdfDocument> document;
  try {
    document = OpenPdf(file, password);
  } catch (const Failure& failure) {
    if (json) PrintJson(file, dpi, failure.what(), {});
    throw;
  }
  JsonList pages;
  const int count = document->PageCount();
  if (!json) {
    fmt::print("{}: {} page{}, at {:g} dpi\n", OnOneLine(file), count, count == 1 ? "" : "s", dpi);
  }
  for (int page = 1; page <= count; ++page) {
    std::string error;
    const auto size = TrySize(*document, file, page, error);
    if (json) {
      pages.Add(size ? PageJson(page, *size, dpi / 100) : DamagedPageJson(page, error));
    } else if (size) {
      PrintPage(page, *size, dpi / 100);
    } else {
      fmt::print("  page {}: damaged\n", page);
    }
  }
  if (json) PrintJson(file, dpi, {}, pages);
  return exitDone;
}

}  // namespace rasterkit::tool
