#include <algorithm>
#include <array>
#include <string_view>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/picture_type.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;

/// Viewers accept a PDF whose header comes within this many bytes; other kinds need fewer.
constexpr size_t kPdfHeaderWindow = 1024;

bool HasAt(Bytes bytes, size_t offset, std::string_view text) {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<ptrdiff_t>(offset),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

uint32_t Word(Bytes bytes, size_t offset) {
  return detail::BmpWord(bytes, offset);
}

/// "BM" alone starts many a text, so the header behind it has to make sense as well.
bool IsBmp(Bytes bytes) {
  constexpr size_t header = detail::kBmpFileHeaderBytes;
  if (!HasAt(bytes, 0, "BM") || bytes.size() < header + 4) return false;
  const uint32_t headerBytes = detail::BmpLong(bytes, header);
  if (!detail::IsBmpHeaderSize(headerBytes)) return false;
  const size_t depth =
      header + (headerBytes == detail::kBmpCoreHeader ? 10 : size_t{detail::bmp_field::bits});
  return bytes.size() < depth + 2 || Word(bytes, depth) <= 32;
}

bool IsJpeg(Bytes bytes) {
  return HasAt(bytes, 0, "\xFF\xD8\xFF");
}

bool IsPng(Bytes bytes) {
  return HasAt(bytes, 0, "\x89PNG\r\n\x1A\n");
}

/// Both byte orders, classic (42) and with 64-bit offsets (43).
bool IsTiff(Bytes bytes) {
  using namespace std::string_view_literals;
  return HasAt(bytes, 0, "II*\0"sv) || HasAt(bytes, 0, "MM\0*"sv) || HasAt(bytes, 0, "II+\0"sv) ||
         HasAt(bytes, 0, "MM\0+"sv);
}

/// A placeable file has a key; a plain one starts with its type, header size in words and version.
bool IsWmf(Bytes bytes) {
  if (HasAt(bytes, 0, "\xD7\xCD\xC6\x9A")) return true;
  if (bytes.size() < 6) return false;
  const uint32_t type = Word(bytes, 0), version = Word(bytes, 4);
  return (type == 1 || type == 2) && Word(bytes, 2) == 9 && (version == 0x100 || version == 0x300);
}

bool IsEmf(Bytes bytes) {
  using namespace std::string_view_literals;
  return HasAt(bytes, 0, "\1\0\0\0"sv) && HasAt(bytes, 40, " EMF");
}

bool IsGif(Bytes bytes) {
  return HasAt(bytes, 0, "GIF87a") || HasAt(bytes, 0, "GIF89a");
}

bool IsWebp(Bytes bytes) {
  return HasAt(bytes, 0, "RIFF") && HasAt(bytes, 8, "WEBP");
}

bool IsPdf(Bytes bytes) {
  constexpr std::string_view mark = "%PDF-";
  const Bytes window = bytes.first(std::min(bytes.size(), kPdfHeaderWindow));
  return std::search(window.begin(), window.end(), mark.begin(), mark.end(), [](uint8_t a, char b) {
           return a == static_cast<uint8_t>(b);
         }) != window.end();
}

struct Kind {
  PictureType type;
  const char* name;
  bool (*matches)(Bytes bytes);
};

/// A PDF may start with anything and is therefore asked for last.
constexpr std::array kKinds{
    Kind{PictureType::bmp, "bmp", IsBmp}, Kind{PictureType::jpeg, "jpeg", IsJpeg},
    Kind{PictureType::png, "png", IsPng}, Kind{PictureType::tiff, "tiff", IsTiff},
    Kind{PictureType::wmf, "wmf", IsWmf}, Kind{PictureType::emf, "emf", IsEmf},
    Kind{PictureType::gif, "gif", IsGif}, Kind{PictureType::webp, "webp", IsWebp},
    Kind{PictureType::pdf, "pdf", IsPdf},
};

}  // namespace

PictureType SniffPictureType(std::span<const uint8_t> bytes) {
  for (const Kind& kind : kKinds) {
    if (kind.matches(bytes)) return kind.type;
  }
  return PictureType::unknown;
}

PictureType SniffPictureType(TStream& stream) {
  std::array<uint8_t, kPdfHeaderWindow> first;
  const uint64_t position = stream.Position();
  const size_t count = stream.Read(first);
  stream.SetPosition(position);
  return SniffPictureType(std::span(first).first(count));
}

const char* PictureTypeName(PictureType type) {
  for (const Kind& kind : kKinds) {
    if (kind.type == type) return kind.name;
  }
  return "unknown";
}

}  // namespace rasterkit
