#include <algorithm>

#include <rasterkit/metafiles/records/ansi_text.h>
#include <rasterkit/metafiles/records/font_record.h>
#include <rasterkit/metafiles/records/utf16.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

constexpr uint8_t kDefaultCharset = 1, kSymbolCharset = 2;

std::string ReadUtf16Name(MetafileBytes& fields) {
  std::u16string name;
  for (size_t i = 0; i < kFaceNameLength && fields.Left() >= 2; ++i) {
    const auto unit = static_cast<char16_t>(fields.Word());
    if (unit == 0) break;
    name.push_back(unit);
  }
  return Utf8FromUtf16(name);
}

std::string ReadAnsiName(MetafileBytes& fields) {
  const auto bytes = fields.Take(std::min(fields.Left(), kFaceNameLength));
  const auto end = std::find(bytes.begin(), bytes.end(), 0);
  const auto name = bytes.first(static_cast<size_t>(end - bytes.begin()));
  return Utf8FromUtf16(DecodeAnsiText(name, {}, kDefaultCharset).text);
}

/// A missing symbol font is then replaced by a font that has the symbols.
void MarkSymbolFont(LogicalFont& font) {
  for (const char* const name : {"Symbol", "Wingdings", "Wingdings 2", "Wingdings 3", "Webdings"}) {
    if (CompareText(font.faceName, name) == 0) font.charset = kSymbolCharset;
  }
}

}  // namespace

LogicalFont ReadFont(MetafileBytes& fields, FontLayout layout) {
  const bool isWmf = layout == FontLayout::wmf;
  const auto number = [&]() -> int32_t { return isWmf ? fields.Short() : fields.Int(); };
  LogicalFont font;
  font.height = number();
  font.width = number();
  font.escapement = number();
  font.orientation = number();
  font.weight = number();
  font.italic = fields.Byte() != 0;
  font.underline = fields.Byte() != 0;
  font.strikeOut = fields.Byte() != 0;
  font.charset = fields.Byte();
  fields.Skip(3);  // output precision, clipping precision, quality
  font.pitchAndFamily = fields.Byte();
  font.faceName = isWmf ? ReadAnsiName(fields) : ReadUtf16Name(fields);
  MarkSymbolFont(font);
  return font;
}

}  // namespace rasterkit::detail
