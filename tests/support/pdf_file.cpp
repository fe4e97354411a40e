#include "tests/support/pdf_file.h"

#include <string_view>

#include <fmt/format.h>

namespace rasterkit::test {
namespace {

/// Numbered objects, and the table that says where each begins.
class PdfBuilder {
 public:
  PdfBuilder() : text_("%PDF-1.4\n") {}

  /// Objects are numbered from 1 in the order in which they come.
  void Add(std::string_view object) {
    places_.push_back(text_.size());
    text_ += fmt::format("{} 0 obj\n{}\nendobj\n", places_.size(), object);
  }

  /// `entries` are more of the trailer's.
  std::string Finish(std::string_view entries) && {
    const size_t table = text_.size();
    const size_t size = places_.size() + 1;
    text_ += fmt::format("xref\n0 {}\n0000000000 65535 f \n", size);
    for (const size_t place : places_) text_ += fmt::format("{:010} 00000 n \n", place);
    text_ += fmt::format("trailer\n<< /Size {} /Root 1 0 R {} >>\nstartxref\n{}\n%%EOF\n", size,
                         entries, table);
    return std::move(text_);
  }

 private:
  std::string text_;
  std::vector<size_t> places_;
};

std::string Stream(std::string_view content) {
  return fmt::format("<< /Length {} >>\nstream\n{}\nendstream", content.size(), content);
}

std::string PageObject(const PdfPageText& page, size_t contentNumber) {
  const auto box = [](std::string_view name, std::string_view numbers) {
    return numbers.empty() ? "" : fmt::format("/{} [{}] ", name, numbers);
  };
  return fmt::format(
      "<< /Type /Page /Parent 2 0 R {}{}{} /Contents {} 0 R "
      "/Resources << /Font << /F1 3 0 R >> >> >>",
      box("MediaBox", page.mediaBox), box("CropBox", page.cropBox), page.entries, contentNumber);
}

std::string Unhex(std::string_view digits) {
  std::string bytes;
  for (size_t i = 0; i < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
  return bytes;
}

/// What a cipher made of the passwords and of "1 0 0 rg 0 0 36 36 re f\n" as object 4.
struct Encryption {
  std::string_view ownerKey, readerKey, content;
};

constexpr Encryption kWithPassword{
    "92fe0f4454ad4c9644693f33c07cb54f587dce1e2682fe9ecea6107a1ef630dd",
    "a2d98dd93474875ec95c60445c51fe1df35ffaac7da1baca629058b1c08a8e39",
    "d8192447577fe8ac8ff3458bcdd1bd8bfd58da8fc8431880"};
constexpr Encryption kForAnybody{"c92422687facee686e373f10b5c7d04738053152f7e2ee30e11c69ec442576ab",
                                 "19794f9d50ebc9182f8a72bb20274501272fe2bee8bbe219d98cb9360ba26be1",
                                 "9445139715950d439f93a253197e7cd4973da3b4e7c4b497"};

}  // namespace

std::string PdfText(const std::vector<PdfPageText>& pages) {
  constexpr size_t kFirstPage = 4;
  std::string kids;
  for (size_t i = 0; i < pages.size(); ++i) kids += fmt::format("{} 0 R ", kFirstPage + 2 * i);
  PdfBuilder builder;
  builder.Add("<< /Type /Catalog /Pages 2 0 R >>");
  builder.Add(fmt::format("<< /Type /Pages /Kids [{}] /Count {} >>", kids, pages.size()));
  builder.Add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
  for (size_t i = 0; i < pages.size(); ++i) {
    builder.Add(PageObject(pages[i], kFirstPage + 2 * i + 1));
    builder.Add(Stream(pages[i].content));
  }
  return std::move(builder).Finish("");
}

std::string NestedFormsPdf(int depth, int times) {
  constexpr int kFirstForm = 5;
  std::string calls;
  for (int i = 0; i < times; ++i) calls += "/X Do ";
  PdfBuilder builder;
  builder.Add("<< /Type /Catalog /Pages 2 0 R >>");
  builder.Add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
  builder.Add(
      fmt::format("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 72 72] /Contents 4 0 R "
                  "/Resources << /XObject << /X {} 0 R >> >> >>",
                  kFirstForm));
  builder.Add(Stream(calls));
  for (int i = 0; i < depth; ++i) {
    const bool isLast = i == depth - 1;
    const std::string content = isLast ? "0 0 9 9 re f " : calls;
    const std::string inner =
        isLast ? "" : fmt::format("/Resources << /XObject << /X {} 0 R >> >> ", kFirstForm + i + 1);
    builder.Add(
        fmt::format("<< /Type /XObject /Subtype /Form /BBox [0 0 72 72] {}/Length {} >>\n"
                    "stream\n{}\nendstream",
                    inner, content.size(), content));
  }
  return std::move(builder).Finish("");
}

std::string PdfRectangle(const std::string& color, double x, double y, double width,
                         double height) {
  return fmt::format("{} rg {} {} {} {} re f\n", color, x, y, width, height);
}

std::string EncryptedPdf(PdfReader reader) {
  const Encryption& encryption = reader == PdfReader::withPassword ? kWithPassword : kForAnybody;
  PdfBuilder builder;
  builder.Add("<< /Type /Catalog /Pages 2 0 R >>");
  builder.Add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
  builder.Add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 72 72] /Contents 4 0 R >>");
  builder.Add(Stream(Unhex(encryption.content)));
  builder.Add(fmt::format("<< /Filter /Standard /V 1 /R 2 /P -4 /O <{}> /U <{}> >>",
                          encryption.ownerKey, encryption.readerKey));
  constexpr std::string_view kId = "<000102030405060708090a0b0c0d0e0f>";
  return std::move(builder).Finish(fmt::format("/Encrypt 5 0 R /ID [{} {}]", kId, kId));
}

}  // namespace rasterkit::test
