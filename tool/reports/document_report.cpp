#include "tool/reports/document_report.h"

#include <cstdio>
#include <optional>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/pictures/document/document.h>

#include "tool/command/exit_code.h"
#include "tool/command/json.h"
#include "tool/command/printable.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

std::optional<std::string> CompressionOf(const DocumentPage& page) {
  const auto* const form = std::get_if<TiffForm>(&page.form);
  if (form == nullptr) return std::nullopt;
  return TiffCompressionName(form->compression);
}

Json DpiOf(const DocumentPage& page) {
  if (!page.resolution.IsKnown()) return {};
  return std::vector<double>{page.resolution.x, page.resolution.y};
}

Json TilesOf(const DocumentPage& page) {
  const auto* const form = std::get_if<TiffForm>(&page.form);
  if (form == nullptr || form->tileWidth == 0) return {};
  return std::vector<uint32_t>{form->tileWidth, form->tileHeight};
}

Json PageJson(int number, const DocumentPage& page) {
  const bool ok = page.error.empty();
  const auto ifOk = [ok](const Json& value) { return ok ? value : Json(); };
  return JsonObject()
      .Add("page", number)
      .Add("error", TextOrNull(page.error))
      .Add("width", ifOk(page.width))
      .Add("height", ifOk(page.height))
      .Add("bits", ifOk(page.layout.BitsPerPixel()))
      .Add("compression", ifOk(CompressionOf(page)))
      .Add("tiles", ifOk(TilesOf(page)))
      .Add("dpi", ifOk(DpiOf(page)))
      .Add("smaller_copies", ifOk(page.smallerCopies))
      .Add("masks", ifOk(page.masks))
      .Add("bytes", page.bytes > 0 ? Json(page.bytes) : Json());
}

void PrintJson(const std::string& file, const std::string& error, const JsonList& pages,
               const std::vector<std::string>& warnings = {}) {
  PrintLine(JsonObject()
                .Add("schema", 1)
                .Add("file", file)
                .Add("ok", error.empty())
                .Add("error", TextOrNull(error))
                .Add("pages", pages)
                .Add("warnings", warnings));
}

std::string PageText(const DocumentPage& page) {
  if (!page.error.empty()) return "cannot be read: " + page.error;
  const int bits = page.layout.BitsPerPixel();
  std::string text =
      fmt::format("{} x {} pixels, {} bit{}", page.width, page.height, bits, bits == 1 ? "" : "s");
  if (const auto compression = CompressionOf(page)) text += ", " + *compression;
  if (page.resolution.IsKnown()) {
    text += fmt::format(", {:g} x {:g} dpi", page.resolution.x, page.resolution.y);
  }
  const auto count = [&](int number, const char* one, const char* many) {
    if (number > 0) text += fmt::format(", {} {}", number, number == 1 ? one : many);
  };
  count(page.smallerCopies, "smaller copy", "smaller copies");
  count(page.masks, "mask", "masks");
  if (page.bytes > 0) text += fmt::format(", {} bytes", page.bytes);
  return text;
}

/// What is said of a document and its pages.
struct Listing {
  std::vector<DocumentPage> pages;
  std::vector<std::string> warnings;
};

Listing ListingOf(const std::string& file, bool json) {
  try {
    const Document document = OpenDocument(file);
    return {document.List(), document.Warnings()};
  } catch (const Failure& failure) {
    if (json) PrintJson(file, failure.what(), {});
    throw;
  }
}

}  // namespace

int ReportDocument(const std::string& file, bool json) {
  const auto [pages, warnings] = ListingOf(file, json);
  JsonList list;
  if (!json) {
    fmt::print("{}: {} page{}\n", OnOneLine(file), pages.size(), pages.size() == 1 ? "" : "s");
  }
  int number = 0;
  for (const DocumentPage& page : pages) {
    ++number;
    if (json) {
      list.Add(PageJson(number, page));
    } else {
      fmt::print("  page {}: {}\n", number, OnOneLine(PageText(page)));
    }
  }
  if (json) PrintJson(file, {}, list, warnings);
  std::fflush(stdout);
  for (const std::string& warning : warnings) PrintMessage(file + ": warning: " + warning);
  return exitDone;
}

}  // namespace rasterkit::tool
