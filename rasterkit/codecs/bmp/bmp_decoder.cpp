#include <array>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/bmp/bmp_masks.h>
#include <rasterkit/codecs/bmp/bmp_rle.h>
#include <rasterkit/codecs/bmp/bmp_rows.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/rows/alpha_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

using namespace detail;

/// Pixels in the layout of a raster need no conversion.
bool IsStoredAs(const BmpHeader& header, int bits, BmpMasks masks) {
  return header.bits == bits && header.masks == masks;
}

bool IsPlain32(const BmpHeader& header) {
  BmpMasks withAlpha = kBmpMasks888;
  withAlpha.alpha = kBmpAlpha8888;
  return IsStoredAs(header, 32, kBmpMasks888) || IsStoredAs(header, 32, withAlpha);
}

TPixelFormat RasterFormat(const BmpHeader& header) {
  switch (header.bits) {
    case 1:
      return pf1bit;
    case 2:
    case 4:
      return pf4bit;
    case 8:
      return pf8bit;
    default:
      break;
  }
  if (IsStoredAs(header, 16, kBmpMasks555)) return pf15bit;
  if (IsStoredAs(header, 16, kBmpMasks565)) return pf16bit;
  return header.bits == 32 || header.masks.alpha != 0 ? pf32bit : pf24bit;
}

bool IsConverted(const BmpHeader& header, TPixelFormat format) {
  switch (format) {
    case pf4bit:
      return header.bits == 2;
    case pf24bit:
      return !IsStoredAs(header, 24, kBmpMasks888);
    case pf32bit:
      return !IsPlain32(header);
    default:
      return false;
  }
}

/// Expands a byte of four 2-bit indexes to two bytes of two nibbles.
void Widen2BitRow(const uint8_t* source, uint8_t* target, size_t width) {
  for (size_t x = 0; x < width; x += 4, ++source) {
    *target++ = static_cast<uint8_t>((*source >> 6 << 4) | (*source >> 4 & 3));
    if (x + 2 < width) *target++ = static_cast<uint8_t>((*source >> 2 & 3) << 4 | (*source & 3));
  }
}

/// Clears the bit above 5-5-5, which is undefined in the file.
void ClearTopBits(uint8_t* row, size_t width) {
  for (size_t x = 0; x < width; ++x) row[2 * x + 1] &= 0x7F;
}

HPALETTE ReadPalette(TStream& stream, uint64_t start, const BmpHeader& header) {
  const auto entryBytes = static_cast<size_t>(header.paletteEntryBytes);
  std::vector<uint8_t> bytes(static_cast<size_t>(header.paletteEntries) * entryBytes);
  stream.SetPosition(start + header.paletteOffset);
  const size_t there = stream.Read(bytes) / entryBytes;
  std::vector<tagPALETTEENTRY> entries(there);
  for (size_t i = 0; i < there; ++i) {
    const uint8_t* entry = bytes.data() + i * entryBytes;
    entries[i] = {entry[2], entry[1], entry[0], 0};
  }
  return HPALETTE(entries);
}

/// Reads a part of the file completely: an embedded picture, a color profile.
std::vector<uint8_t> ReadPart(TStream& stream, uint64_t position, uint64_t count) {
  RequirePictureMemory(count, "BMP: a part of the file");
  std::vector<uint8_t> bytes(count);
  stream.SetPosition(position);
  bytes.resize(stream.Read(bytes));
  return bytes;
}

class BmpDecoder {
 public:
  BmpDecoder(TStream& stream, CodecReport& report)
      : stream_(stream),
        start_(stream.Position()),
        report_(report),
        header_(ReadBmpHeader(stream, start_, report)) {}

  Raster Decode();

 private:
  bool IsRle() const {
    return header_.compression == BmpCompression::rle4 ||
           header_.compression == BmpCompression::rle8;
  }
  bool IsEmbedded() const {
    return header_.compression == BmpCompression::jpeg ||
           header_.compression == BmpCompression::png;
  }
  Raster DecodeEmbedded();
  Raster DecodePixels();
  void RequireMemory(TPixelFormat format) const;
  void ReadRows(Raster& raster);
  void AddProfile(Raster& raster);

  TStream& stream_;
  const uint64_t start_;
  CodecReport& report_;
  const BmpHeader header_;
};

Raster BmpDecoder::Decode() {
  Raster raster = IsEmbedded() ? DecodeEmbedded() : DecodePixels();
  if (!raster.resolution.IsKnown()) raster.resolution = header_.resolution;
  if (!raster.profile) AddProfile(raster);
  return raster;
}

Raster BmpDecoder::DecodeEmbedded() {
  const std::vector<uint8_t> bytes =
      ReadPart(stream_, start_ + header_.pixelOffset, header_.pixelBytes);
  return header_.compression == BmpCompression::jpeg ? DecodeJpeg(bytes, &report_)
                                                     : DecodePng(bytes, &report_);
}

Raster BmpDecoder::DecodePixels() {
  const TPixelFormat format = RasterFormat(header_);
  RequireMemory(format);
  Raster raster(format, header_.width, header_.height);
  if (IsIndexed(format)) raster.palette = ReadPalette(stream_, start_, header_);
  stream_.SetPosition(start_ + header_.pixelOffset);
  if (IsRle()) {
    ReadBmpRle(stream_, header_, raster, report_);
  } else {
    ReadRows(raster);
  }
  return raster;
}

void BmpDecoder::RequireMemory(TPixelFormat format) const {
  // 64 bits on every system: neither the length of rows nor their number can be trusted.
  const auto rowBits =
      static_cast<uint64_t>(header_.width) * static_cast<uint64_t>(StoredBitsPerPixel(format));
  const uint64_t bytes = (rowBits + 31) / 32 * 4 * static_cast<uint64_t>(header_.height);
  const std::string what = "BMP: a picture of " + std::to_string(header_.width) + " x " +
                           std::to_string(header_.height) + " pixels";
  RequirePicture(static_cast<uint64_t>(header_.width), static_cast<uint64_t>(header_.height), bytes,
                 what);
  if (IsRle()) {
    RequireOneBmpRleRow(header_, bytes);
    RequirePlausibleBmpRle(header_, bytes, what);
  } else {
    RequireOneBmpRow(header_);
    RequirePlausibleBmpRows(header_, bytes, what);
  }
}

void BmpDecoder::ReadRows(Raster& raster) {
  const TPixelFormat format = raster.Format();
  const auto width = static_cast<size_t>(header_.width);
  const bool hasAlpha = header_.masks.alpha != 0;
  BmpRowRules rules;
  rules.isConverted = IsConverted(header_, format);
  rules.changesZeros = format == pf32bit;
  std::unique_ptr<BmpMaskedRows> masked;
  if (rules.isConverted && format != pf4bit) {
    masked = std::make_unique<BmpMaskedRows>(header_.masks, header_.bits);
  }
  bool alphaSeen = false;
  rules.finish = [&](const uint8_t* source, uint8_t* target) {
    if (masked) {
      format == pf24bit ? masked->To24(source, target, width) : masked->To32(source, target, width);
    } else if (rules.isConverted) {
      Widen2BitRow(source, target, width);
    } else if (format == pf15bit) {
      ClearTopBits(target, width);
    } else if (format == pf32bit && !hasAlpha) {
      MakeOpaque(target, width);
    }
    if (hasAlpha && !alphaSeen) alphaSeen = HasAnyAlpha(target, width);
  };
  ReadBmpRows(stream_, header_, rules, raster, report_);
  if (alphaSeen) {
    raster.alphaFormat = afDefined;
  } else if (hasAlpha) {
    // Many programs state an alpha channel and leave it 0: such a picture is opaque, not invisible.
    for (int y = 0; y < header_.height; ++y) MakeOpaque(raster.Row(y), width);
  }
}

void BmpDecoder::AddProfile(Raster& raster) {
  if (header_.profileBytes == 0) return;
  raster.profile = std::make_shared<const std::vector<uint8_t>>(
      ReadPart(stream_, start_ + header_.profileOffset, header_.profileBytes));
}

Raster DecodeStream(TStream& stream, CodecReport& report) {
  if (stream.Size() > stream.Position()) return BmpDecoder(stream, report).Decode();
  // Pipes have no size and no random access.
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  if (bytes.empty()) throw FormatError("BMP: there are no data");
  TSpanStream memory(bytes);
  return BmpDecoder(memory, report).Decode();
}

}  // namespace

bool detail::IsEmptyBmp(TStream& stream) {
  const uint64_t start = stream.Position();
  std::array<uint8_t, kBmpFileHeaderBytes + bmp_field::kCompression + 4> head{};
  if (stream.Size() < start + head.size()) return false;
  const bool isWhole = stream.Read(head) == head.size();
  stream.SetPosition(start);
  const auto field = [&](uint32_t offset) {
    return BmpLong(std::span(head).subspan(kBmpFileHeaderBytes), offset);
  };
  // An embedded JPEG or PNG picture has its size in its own header.
  const bool isPlain =
      field(bmp_field::kCompression) == static_cast<uint32_t>(BmpCompression::none);
  return isWhole && isPlain && head[0] == 'B' && head[1] == 'M' &&
         field(bmp_field::kSize) == kBmpInfoHeader && field(bmp_field::kWidth) == 0 &&
         field(bmp_field::kHeight) == 0;
}

Raster DecodeBmp(TStream& stream, CodecReport* report) {
  const LimitsScope limits;
  CodecReport unread;
  try {
    return DecodeStream(stream, report != nullptr ? *report : unread);
  } catch (const std::bad_alloc&) {
    throw LimitError("BMP: out of memory");
  }
}

}  // namespace rasterkit
