#include <algorithm>
#include <array>
#include <deque>

#include <iconv.h>

#include <rasterkit/metafiles/records/ansi_text.h>

namespace rasterkit {
namespace {

constexpr uint8_t kSymbolCharset = 2;
constexpr char16_t kUnknown = 0xFFFD;

struct CodePage {
  uint8_t charset;
  const char* name;
  bool hasPairs;  ///< some characters have two bytes
};

constexpr CodePage kCodePages[] = {
    {77, "MACINTOSH", false}, {128, "CP932", true},   {129, "CP949", true},
    {130, "JOHAB", true},     {134, "CP936", true},   {136, "CP950", true},
    {161, "CP1253", false},   {162, "CP1254", false}, {163, "CP1258", false},
    {177, "CP1255", false},   {178, "CP1256", false}, {186, "CP1257", false},
    {204, "CP1251", false},   {222, "CP874", false},  {238, "CP1250", false},
    {255, "CP437", false}};

CodePage CodePageOf(uint8_t charset) {
  for (const CodePage& page : kCodePages) {
    if (page.charset == charset) return page;
  }
  return {charset, "CP1252", false};
}

/// Converts to UTF-16 with iconv's tables; if a table is missing, bytes are decoded as Latin-1.
class Converter {
 public:
  explicit Converter(const char* codePage) : handle_(iconv_open("UTF-16LE", codePage)) {}
  ~Converter() {
    if (IsThere()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool IsThere() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  /// Converts exactly these bytes to one character; returns an empty string if they are invalid.
  std::u16string Convert(std::span<const uint8_t> bytes) const {
    std::array<char, 2> in{};
    std::copy(bytes.begin(), bytes.end(), in.begin());
    std::array<unsigned char, 16> out{};
    char* from = in.data();
    char* to = reinterpret_cast<char*>(out.data());
    size_t fromLeft = bytes.size(), toLeft = out.size();
    const size_t result = iconv(handle_, &from, &fromLeft, &to, &toLeft);
    // Some tables hold a letter back until they see whether an accent follows; flush it.
    iconv(handle_, nullptr, nullptr, &to, &toLeft);
    if (result == static_cast<size_t>(-1) || fromLeft != 0) {
      iconv(handle_, nullptr, nullptr, nullptr, nullptr);
      return {};
    }
    std::u16string text;
    for (size_t i = 0; i + 1 < out.size() - toLeft; i += 2) {
      text.push_back(static_cast<char16_t>(out[i] | out[i + 1] << 8));
    }
    return text;
  }

 private:
  iconv_t handle_;
};

AnsiText SymbolText(std::span<const uint8_t> bytes, std::span<const double> steps) {
  AnsiText result;
  for (const uint8_t byte : bytes) result.text.push_back(static_cast<char16_t>(0xF000 + byte));
  result.steps.assign(steps.begin(), steps.end());
  return result;
}

}  // namespace

void LoadAnsiTables() {
  // An open converter keeps its table.
  static std::deque<Converter> converters;
  if (!converters.empty()) return;
  converters.emplace_back(CodePageOf(0).name);
  for (const CodePage& page : kCodePages) converters.emplace_back(page.name);
}

AnsiText DecodeAnsiText(std::span<const uint8_t> bytes, std::span<const double> steps,
                        uint8_t charset) {
  if (charset == kSymbolCharset) return SymbolText(bytes, steps);
  const CodePage page = CodePageOf(charset);
  const Converter converter(page.name);
  AnsiText result;
  result.text.reserve(bytes.size());
  const auto step = [&](size_t at) { return at < steps.size() ? steps[at] : 0; };
  for (size_t i = 0; i < bytes.size();) {
    size_t taken = 1;
    std::u16string letter;
    if (bytes[i] < 0x80 || !converter.IsThere()) {
      letter.push_back(bytes[i]);
    } else {
      letter = converter.Convert(bytes.subspan(i, 1));
      if (letter.empty() && page.hasPairs && i + 1 < bytes.size()) {
        letter = converter.Convert(bytes.subspan(i, 2));
        if (!letter.empty()) taken = 2;
      }
      if (letter.empty()) letter.push_back(kUnknown);
    }
    double width = 0;
    for (size_t k = 0; k < taken; ++k) width += step(i + k);
    for (size_t k = 0; k < letter.size() && i < steps.size(); ++k) {
      result.steps.push_back(k == 0 ? width : 0);
    }
    result.text += letter;
    i += taken;
  }
  return result;
}

}  // namespace rasterkit
