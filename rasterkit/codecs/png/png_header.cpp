#include <algorithm>
#include <array>
#include <string>

#include <fmt/format.h>

#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/png_palette_alpha.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/png_signature.h>
#include <rasterkit/codecs/png/png_skeleton.h>
#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/png/png_raw_profiles.h>
#include <rasterkit/metadata/png/png_texts.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint32_t kHeader = PngKind("IHDR"), kPalette = PngKind("PLTE"), kData = PngKind("IDAT");
constexpr uint32_t kEnd = PngKind("IEND"), kTransparency = PngKind("tRNS");
constexpr uint32_t kPhysical = PngKind("pHYs"), kProfile = PngKind("iCCP");
constexpr uint32_t kExif = PngKind("eXIf"), kAnimation = PngKind("acTL");

uint32_t LongAt(Bytes bytes, size_t offset) {
  return uint32_t{bytes[offset]} << 24 | uint32_t{bytes[offset + 1]} << 16 |
         uint32_t{bytes[offset + 2]} << 8 | bytes[offset + 3];
}

bool IsText(uint32_t kind) {
  return kind == PngKind("tEXt") || kind == PngKind("zTXt") || kind == PngKind("iTXt");
}

bool IsStructure(uint32_t kind) {
  return kind == kHeader || kind == kPalette || kind == kData || kind == kEnd ||
         kind == kTransparency;
}

std::string NameOf(uint32_t kind) {
  std::string name;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const char letter = static_cast<char>(kind >> shift);
    name += letter > ' ' && letter <= '~' ? letter : '?';
  }
  return name;
}

constexpr int kColorAlpha = 6;

/// True if pHYs states pixels per meter, not only their shape.
bool IsInMeters(Bytes data) {
  return data.size() == 9 && data[8] == 1;
}

bool IsPossible(const PngForm& form) {
  const int bits = form.bits;
  const bool isSmall = bits == 1 || bits == 2 || bits == 4;
  switch (form.colorType) {
    case 0:
      return isSmall || bits == 8 || bits == 16;
    case 3:
      return isSmall || bits == 8;
    case 2:
    case 4:
    case 6:
      return bits == 8 || bits == 16;
    default:
      return false;
  }
}

HPALETTE PaletteOf(Bytes data) {
  std::vector<tagPALETTEENTRY> entries;
  for (size_t i = 0; i + 2 < data.size(); i += 3) {
    entries.push_back({data[i], data[i + 1], data[i + 2], 0});
  }
  return HPALETTE(entries);
}

class HeaderReader {
 public:
  /// `trailingBytes` follow the file beside those that are in it.
  explicit HeaderReader(Bytes file, uint64_t trailingBytes = 0)
      : file_(file), trailingBytes_(trailingBytes) {}
  PictureHeader Read();

 private:
  void Add(const PngChunk& chunk);
  void AddMetadata(const PngChunk& chunk);
  void AddText(const PngChunk& chunk);
  void AddProfile(Bytes data);
  void AddExif(Bytes data);
  void Warn(const std::string& text) { header_.warnings.push_back("PNG: " + text); }

  const Bytes file_;
  const uint64_t trailingBytes_;
  PictureHeader header_;
  Resolution physical_;
  std::vector<PictureText> rawProfiles_;
  /// Of a palette.
  Bytes colors_, opacities_;
  bool hasData_ = false;
};

void HeaderReader::AddText(const PngChunk& chunk) {
  auto text = ReadPngText(chunk.kind, chunk.data);
  if (!text) {
    Warn(fmt::format("a text ({}) is damaged or too long", NameOf(chunk.kind)));
    return;
  }
  Metadata& metadata = header_.metadata;
  if (text->keyword == kXmpKeyword) {
    if (metadata.xmp.empty()) metadata.xmp = std::move(text->text);
  } else if (text->keyword.starts_with(kRawProfileKeyword)) {
    rawProfiles_.push_back(std::move(*text));
  } else if (text->keyword == "Comment" && !text->isCompressed && text->language.empty() &&
             text->translatedKeyword.empty()) {
    metadata.comments.push_back(std::move(text->text));
  } else {
    metadata.texts.push_back(std::move(*text));
  }
}

/// A name, a zero, the kind of compression, the profile.
void HeaderReader::AddProfile(Bytes data) {
  const auto zero = std::find(data.begin(), data.end(), 0);
  const auto nameBytes = static_cast<size_t>(zero - data.begin());
  std::optional<std::vector<uint8_t>> profile;
  if (nameBytes + 2 <= data.size()) profile = InflateBytes(data.subspan(nameBytes + 2));
  if (!profile || profile->empty()) {
    Warn("the ICC profile is damaged or too long");
  } else if (!header_.metadata.profile) {
    header_.metadata.profile = std::make_shared<const std::vector<uint8_t>>(std::move(*profile));
  }
}

void HeaderReader::AddExif(Bytes data) {
  using std::string_view_literals::operator""sv;
  // Some writers put the prefix of a JPEG segment in front.
  constexpr std::string_view kJpegPrefix = "Exif\0\0"sv;
  if (StartsWith(data, kJpegPrefix)) data = data.subspan(kJpegPrefix.size());
  if (header_.metadata.exif.empty()) header_.metadata.exif.assign(data.begin(), data.end());
}

void HeaderReader::AddMetadata(const PngChunk& chunk) {
  if (chunk.kind == kPhysical) {
    physical_ = FromDotsPerMeter(LongAt(chunk.data, 0), LongAt(chunk.data, 4));
  } else if (chunk.kind == kProfile) {
    AddProfile(chunk.data);
  } else if (chunk.kind == kExif) {
    AddExif(chunk.data);
  } else {
    AddText(chunk);
  }
}

void HeaderReader::Add(const PngChunk& chunk) {
  if (chunk.kind == kData) {
    hasData_ = true;
  } else if (!chunk.Holds()) {
    if (!IsAncillaryPng(chunk.kind) && chunk.kind != kEnd) {
      throw FormatError(fmt::format("PNG: the checksum of {} is wrong", NameOf(chunk.kind)));
    }
    Warn(fmt::format("the checksum of {} is wrong, it is skipped", NameOf(chunk.kind)));
  } else if (chunk.kind == kPalette) {
    if (header_.layout.model == ColorModel::palette) {
      header_.layout.palette = PaletteOf(chunk.data);
      colors_ = chunk.data;
    }
  } else if (chunk.kind == kTransparency) {
    if (header_.layout.alpha == AlphaKind::none && !chunk.data.empty()) {
      header_.layout.alpha = AlphaKind::transparentColor;
      opacities_ = chunk.data;
    }
  } else if (chunk.kind == kAnimation && chunk.data.size() >= 4) {
    constexpr uint32_t kMostFrames = 65535;
    header_.frames = static_cast<int>(std::clamp(LongAt(chunk.data, 0), 1u, kMostFrames));
  } else if (IsPngMetadata(chunk)) {
    AddMetadata(chunk);
  } else if (IsKeptPngChunk(chunk)) {
    header_.metadata.pngChunks.push_back(
        {chunk.kind, std::vector<uint8_t>(chunk.data.begin(), chunk.data.end()), hasData_});
  } else if (!IsStructure(chunk.kind) && !IsPngAnimation(chunk.kind)) {
    header_.hiddenOthers.push_back(
        fmt::format("chunk {} of {} bytes", NameOf(chunk.kind), chunk.data.size()));
  }
}

PictureHeader HeaderReader::Read() {
  const PngSize size = ReadPngSize(file_);
  header_.width = static_cast<int>(size.width);
  header_.height = static_cast<int>(size.height);
  header_.form = size.form;
  header_.layout = PngLayout(size);
  PngChunks chunks(file_);
  // The header chunk.
  chunks.Next();
  while (chunks.Next()) Add(chunks.Chunk());
  if (chunks.IsCutOff()) {
    hasData_ = hasData_ || (chunks.Rest().size() > 8 && LongAt(chunks.Rest(), 4) == kData);
    header_.isCutOff = true;
    Warn("the file is cut off");
  } else if (const uint64_t trailing = trailingBytes_ + chunks.Rest().size(); trailing > 0) {
    header_.hiddenOthers.push_back(fmt::format("{} bytes after the end of the picture", trailing));
  }
  if (!hasData_) throw FormatError("PNG: the file has no pixels");
  if (size.IsPalette() && !header_.layout.palette) {
    throw FormatError("PNG: the file has no palette");
  }
  if (NeedsAlphaChannel(colors_, opacities_)) {
    header_.layout = PngLayout({size.width, size.height, {8, kColorAlpha, false}});
  }
  // Blocks in chunks of their own count before those in old texts.
  for (PictureText& text : rawProfiles_) {
    if (!TakeRawProfile(text, header_.metadata)) header_.metadata.texts.push_back(std::move(text));
  }
  header_.layout.profile = header_.metadata.profile;
  TakeStatedFacts(header_, physical_, "PNG");
  return std::move(header_);
}

}  // namespace

PngSize ReadPngSize(Bytes file) {
  constexpr size_t kDataBytes = 13;
  PngChunks chunks(file);
  if (!IsPng(file) || !chunks.Next() || chunks.Chunk().kind != kHeader ||
      chunks.Chunk().data.size() != kDataBytes) {
    throw FormatError("PNG: the header chunk is missing");
  }
  if (!chunks.Chunk().Holds()) throw FormatError("PNG: the checksum of IHDR is wrong");
  const Bytes data = chunks.Chunk().data;
  PngSize size{LongAt(data, 0), LongAt(data, 4), {data[8], data[9], data[12] == 1}};
  constexpr uint32_t kMostSide = 0x7FFFFFFF;
  if (size.width == 0 || size.height == 0 || size.width > kMostSide || size.height > kMostSide) {
    throw FormatError(
        fmt::format("PNG: a size of {} x {} pixels is not possible", size.width, size.height));
  }
  if (!IsPossible(size.form) || data[10] != 0 || data[11] != 0 || data[12] > 1) {
    throw FormatError(fmt::format("PNG: {} bits with color type {} are not possible",
                                  size.form.bits, size.form.colorType));
  }
  return size;
}

PixelLayout PngLayout(const PngSize& size) {
  PixelLayout layout;
  layout.bits = size.form.bits;
  layout.type = layout.bits == 16 ? NumberType::uint16 : NumberType::uint8;
  layout.bands = size.Bands();
  layout.model = size.IsPalette() ? ColorModel::palette
                 : size.IsGray()  ? ColorModel::gray
                                  : ColorModel::rgb;
  layout.alpha = size.HasAlpha() ? AlphaKind::straight : AlphaKind::none;
  return layout;
}

bool IsKeptPngChunk(const PngChunk& chunk) {
  static constexpr std::array kKept = {
      PngKind("gAMA"), PngKind("cHRM"), PngKind("sRGB"), PngKind("cICP"), PngKind("mDCV"),
      PngKind("cLLI"), PngKind("sBIT"), PngKind("bKGD"), PngKind("tIME"), PngKind("hIST")};
  if (std::find(kKept.begin(), kKept.end(), chunk.kind) != kKept.end()) return true;
  return IsAncillaryPng(chunk.kind) && IsSafeToCopyPng(chunk.kind) && !IsPngMetadata(chunk) &&
         !IsPngAnimation(chunk.kind);
}

bool IsPngMetadata(const PngChunk& chunk) {
  return IsText(chunk.kind) || chunk.kind == kExif || chunk.kind == kProfile ||
         (chunk.kind == kPhysical && IsInMeters(chunk.data));
}

bool IsPngAnimation(uint32_t kind) {
  return kind == kAnimation || kind == PngKind("fcTL") || kind == PngKind("fdAT");
}

}  // namespace detail

PictureHeader ReadPngHeader(std::span<const uint8_t> file) {
  return detail::HeaderReader(file).Read();
}

PictureHeader ReadPngStreamHeader(TStream& stream) {
  const detail::PngSkeleton skeleton = detail::ReadPngSkeleton(stream);
  return detail::HeaderReader(skeleton.file, skeleton.trailingBytes).Read();
}

}  // namespace rasterkit
