#include "tool/reports/pdf_report.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include <fmt/format.h>

#include "tool/command/exit_code.h"
#include "tool/pages/pdf_file.h"

#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMillimetresPerPoint = 25.4 / 72;

double Rounded(double value, double steps) {
  return std::round(value * steps) / steps;
}

/// What is wrong with drawing the page at that size, or nothing.
std::string Refusal(const PdfPageSize& size, double scale) {
  try {
    RequirePdfPage(size, scale);
    return {};
  } catch (const Error& error) {
    return error.Reason();
  }
}

Json PageJson(int page, const PdfPageSize& size, double scale) {
  const PdfPixels pixels = PdfPagePixels(size, scale);
  const std::string refusal = Refusal(size, scale);
  Json line;
  line["page"] = page;
  line["points"] = {Rounded(size.width, 1000), Rounded(size.height, 1000)};
  line["millimetres"] = {Rounded(size.width * kMillimetresPerPoint, 100),
                         Rounded(size.height * kMillimetresPerPoint, 100)};
  line["pixels"] = {pixels.width, pixels.height};
  line["bytes"] = pixels.Bytes();
  line["error"] = refusal.empty() ? Json() : Json(refusal);
  return line;
}

Json DamagedPageJson(int page, const std::string& error) {
  return {{"page", page},     {"points", Json()}, {"millimetres", Json()},
          {"pixels", Json()}, {"bytes", Json()},  {"error", error}};
}

void PrintPage(int page, const PdfPageSize& size, double scale) {
  const PdfPixels pixels = PdfPagePixels(size, scale);
  fmt::print(
      "  page {}: {:.6g} x {:.6g} points, {:.1f} x {:.1f} mm, {:.0f} x {:.0f} pixels, {:.0f} MiB\n",
      page, size.width, size.height, size.width * kMillimetresPerPoint,
      size.height * kMillimetresPerPoint, pixels.width, pixels.height,
      std::ceil(pixels.Bytes() / 1048576));
  const std::string refusal = Refusal(size, scale);
  if (!refusal.empty()) fmt::print("    cannot be drawn: {}\n", refusal);
}

/// The size of a page, or why there is none.
std::optional<PdfPageSize> TrySize(const PdfDocument& document, const std::string& file, int page,
                                   std::string& error) {
  try {
    return SizeOfPage(document, file, page);
  } catch (const Failure& failure) {
    error = failure.what();
    return std::nullopt;
  }
}

void PrintJson(const Json& line) {
  fmt::print("{}\n", line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

Json Heading(const std::string& file, double dpi, const std::string& error) {
  Json line;
  line["schema"] = 1;
  line["file"] = file;
  line["ok"] = error.empty();
  line["error"] = error.empty() ? Json() : Json(error);
  line["dpi"] = dpi;
  line["pages"] = Json::array();
  return line;
}

}  // namespace

int ReportPages(const std::string& file, const std::string& password, double dpi, bool json) {
  std::unique_ptr<PdfDocument> document;
  try {
    document = OpenPdf(file, password);
  } catch (const Failure& failure) {
    if (json) PrintJson(Heading(file, dpi, failure.what()));
    throw;
  }
  Json line = Heading(file, dpi, {});
  const int count = document->PageCount();
  if (!json) fmt::print("{}: {} page{}, at {:g} dpi\n", file, count, count == 1 ? "" : "s", dpi);
  for (int page = 1; page <= count; ++page) {
    std::string error;
    const auto size = TrySize(*document, file, page, error);
    if (json) {
      line["pages"].push_back(size ? PageJson(page, *size, dpi / 100)
                                   : DamagedPageJson(page, error));
    } else if (size) {
      PrintPage(page, *size, dpi / 100);
    } else {
      fmt::print("  page {}: damaged\n", page);
    }
  }
  if (json) PrintJson(line);
  return exitDone;
}

}  // namespace rasterkit::tool
