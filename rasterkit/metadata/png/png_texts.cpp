#include <algorithm>

#include <fmt/format.h>
#include <zlib.h>

#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/metadata/png/png_texts.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kMostKeywordBytes = 79;

std::string TextOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

/// Takes the bytes up to the next zero, and the zero, from `rest`; nothing if there is none.
std::optional<Bytes> TakeUpToZero(Bytes& rest) {
  const auto zero = std::find(rest.begin(), rest.end(), 0);
  if (zero == rest.end()) return std::nullopt;
  const auto length = static_cast<size_t>(zero - rest.begin());
  const Bytes taken = rest.first(length);
  rest = rest.subspan(length + 1);
  return taken;
}

std::optional<std::string> InflatedText(Bytes packed) {
  const auto bytes = InflateBytes(packed);
  if (!bytes) return std::nullopt;
  return TextOf(*bytes);
}

std::optional<PictureText> ReadInternational(PictureText text, Bytes rest) {
  constexpr uint8_t kDeflate = 0;
  if (rest.size() < 2) return std::nullopt;
  text.isInternational = true;
  text.isCompressed = rest[0] != 0;
  if (text.isCompressed && rest[1] != kDeflate) return std::nullopt;
  rest = rest.subspan(2);
  const auto language = TakeUpToZero(rest);
  const auto translated = language ? TakeUpToZero(rest) : std::nullopt;
  if (!translated) return std::nullopt;
  text.language = TextOf(*language);
  text.translatedKeyword = TextOf(*translated);
  const auto content = text.isCompressed ? InflatedText(rest) : std::optional(TextOf(rest));
  if (!content) return std::nullopt;
  text.text = *content;
  return text;
}

void Append(std::vector<uint8_t>& bytes, std::string_view text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

/// Appends a text, deflated if requested.
void AppendContent(std::vector<uint8_t>& bytes, std::string_view text, bool isCompressed) {
  if (!isCompressed) {
    Append(bytes, text);
    return;
  }
  const auto packed = DeflateBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  bytes.insert(bytes.end(), packed.begin(), packed.end());
}

OtherBlock InternationalChunk(const PictureText& text, const std::string& keyword) {
  OtherBlock chunk{PngKind("iTXt"), {}};
  Append(chunk.bytes, keyword);
  chunk.bytes.push_back(0);
  chunk.bytes.push_back(text.isCompressed ? 1 : 0);
  chunk.bytes.push_back(0);
  // Zeros end both.
  Append(chunk.bytes, std::string_view(text.language).substr(0, text.language.find('\0')));
  chunk.bytes.push_back(0);
  Append(chunk.bytes,
         std::string_view(text.translatedKeyword).substr(0, text.translatedKeyword.find('\0')));
  chunk.bytes.push_back(0);
  AppendContent(chunk.bytes, text.text, text.isCompressed);
  return chunk;
}

int DigitOf(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
  return -1;
}

bool IsBlank(char letter) {
  return letter == ' ' || letter == '\n' || letter == '\r' || letter == '\t';
}

}  // namespace

std::optional<std::vector<uint8_t>> InflateBytes(Bytes packed, size_t most) {
  constexpr size_t kPiece = 1 << 16;
  z_stream stream{};
  if (packed.size() > UINT32_MAX || inflateInit(&stream) != Z_OK) return std::nullopt;
  stream.next_in = const_cast<Bytef*>(packed.data());
  stream.avail_in = static_cast<uInt>(packed.size());
  std::vector<uint8_t> result;
  std::vector<uint8_t> piece(kPiece);
  int state = Z_OK;
  while (state == Z_OK && result.size() <= most) {
    stream.next_out = piece.data();
    stream.avail_out = kPiece;
    state = inflate(&stream, Z_NO_FLUSH);
    result.insert(result.end(), piece.data(), stream.next_out);
  }
  inflateEnd(&stream);
  if (state != Z_STREAM_END || result.size() > most) return std::nullopt;
  return result;
}

std::vector<uint8_t> DeflateBytes(Bytes bytes) {
  constexpr int kLevel = 9;
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::vector<uint8_t> packed(size);
  compress2(packed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()), kLevel);
  packed.resize(size);
  return packed;
}

std::string Utf8OfLatin1(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char letter : text) {
    const auto code = static_cast<uint8_t>(letter);
    if (code < 0x80) {
      result += letter;
    } else {
      result += static_cast<char>(0xC0 | code >> 6);
      result += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return result;
}

std::optional<std::string> Latin1OfUtf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < text.size(); i++) {
    const auto first = static_cast<uint8_t>(text[i]);
    if (first < 0x80) {
      result += text[i];
      continue;
    }
    // Two bytes hold the codes 0x80 to 0xFF.
    if ((first != 0xC2 && first != 0xC3) || i + 1 == text.size()) return std::nullopt;
    const auto second = static_cast<uint8_t>(text[++i]);
    if ((second & 0xC0) != 0x80) return std::nullopt;
    result += static_cast<char>((first & 3) << 6 | (second & 0x3F));
  }
  return result;
}

std::optional<PictureText> ReadPngText(uint32_t kind, Bytes data) {
  constexpr uint8_t kDeflate = 0;
  const auto keyword = TakeUpToZero(data);
  if (!keyword || keyword->empty() || keyword->size() > kMostKeywordBytes) return std::nullopt;
  PictureText text;
  text.keyword = Utf8OfLatin1(TextOf(*keyword));
  if (kind == PngKind("iTXt")) return ReadInternational(std::move(text), data);
  if (kind == PngKind("zTXt")) {
    if (data.empty() || data[0] != kDeflate) return std::nullopt;
    const auto content = InflatedText(data.subspan(1));
    if (!content) return std::nullopt;
    text.isCompressed = true;
    text.text = Utf8OfLatin1(*content);
    return text;
  }
  text.text = Utf8OfLatin1(TextOf(data));
  return text;
}

std::optional<OtherBlock> PngTextChunk(const PictureText& text) {
  const auto keyword = Latin1OfUtf8(text.keyword);
  if (!keyword || keyword->empty() || keyword->size() > kMostKeywordBytes ||
      keyword->find('\0') != std::string::npos) {
    return std::nullopt;
  }
  const auto plain = Latin1OfUtf8(text.text);
  if (text.isInternational || !plain) return InternationalChunk(text, *keyword);
  OtherBlock chunk{text.isCompressed ? PngKind("zTXt") : PngKind("tEXt"), {}};
  Append(chunk.bytes, *keyword);
  chunk.bytes.push_back(0);
  if (text.isCompressed) chunk.bytes.push_back(0);
  AppendContent(chunk.bytes, *plain, text.isCompressed);
  return chunk;
}

std::optional<std::vector<uint8_t>> ReadRawProfile(std::string_view text) {
  // A line break, the name, the length in bytes, the digits.
  size_t at = 0;
  const auto skipBlanks = [&] {
    while (at < text.size() && IsBlank(text[at])) at++;
  };
  skipBlanks();
  while (at < text.size() && text[at] != '\n') at++;
  skipBlanks();
  size_t length = 0;
  bool hasLength = false;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; at++) {
    hasLength = true;
    length = length * 10 + static_cast<size_t>(text[at] - '0');
    if (length > text.size()) return std::nullopt;
  }
  if (!hasLength) return std::nullopt;
  std::vector<uint8_t> block;
  block.reserve(length);
  int high = -1;
  for (; at < text.size() && block.size() < length; at++) {
    if (IsBlank(text[at])) continue;
    const int digit = DigitOf(text[at]);
    if (digit < 0) return std::nullopt;
    if (high < 0) {
      high = digit;
    } else {
      block.push_back(static_cast<uint8_t>(high << 4 | digit));
      high = -1;
    }
  }
  if (block.size() != length) return std::nullopt;
  return block;
}

std::string RawProfileText(std::string_view name, Bytes block) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr size_t kBytesPerLine = 36;
  // Some readers expect eight columns.
  std::string text = fmt::format("\n{}\n{:8}\n", name, block.size());
  for (size_t i = 0; i < block.size(); i++) {
    if (i > 0 && i % kBytesPerLine == 0) text += '\n';
    text += kDigits[block[i] >> 4];
    text += kDigits[block[i] & 15];
  }
  text += '\n';
  return text;
}

}  // namespace rasterkit::detail
