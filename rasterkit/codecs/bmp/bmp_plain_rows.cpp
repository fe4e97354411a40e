#include <string>
#include <utility>

#include <rasterkit/codecs/bmp/bmp_plain_rows.h>
#include <rasterkit/codecs/bmp/bmp_rle.h>
#include <rasterkit/codecs/rows/alpha_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace detail {
namespace {

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

}  // namespace

std::vector<uint8_t> ReadBmpPart(TStream& stream, uint64_t position, uint64_t count) {
  RequirePictureMemory(count, "BMP: a part of the file");
  std::vector<uint8_t> bytes(count);
  stream.SetPosition(position);
  bytes.resize(stream.Read(bytes));
  return bytes;
}

ColorProfile ReadBmpProfile(TStream& stream, uint64_t start, const BmpHeader& header) {
  if (header.profileBytes == 0) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(
      ReadBmpPart(stream, start + header.profileOffset, header.profileBytes));
}

BmpPlainRows::BmpPlainRows(TStream& stream, uint64_t start, const BmpHeader& header)
    : stream_(stream),
      start_(start),
      header_(header),
      format_(RasterFormat(header)),
      hasAlpha_(header.masks.alpha != 0) {
  if (IsBmpRle(header)) return;
  rules_.isConverted = IsConverted(header_, format_);
  rules_.changesZeros = format_ == pf32bit;
  if (rules_.isConverted && format_ != pf4bit) {
    masked_ = std::make_unique<BmpMaskedRows>(header_.masks, header_.bits);
  }
  rules_.finish = [this](const uint8_t* source, uint8_t* target, size_t width) {
    Finish(source, target, width);
  };
}

HPALETTE BmpPlainRows::Palette() const {
  if (!IsIndexed(format_)) return {};
  const auto entryBytes = static_cast<size_t>(header_.paletteEntryBytes);
  std::vector<uint8_t> bytes(static_cast<size_t>(header_.paletteEntries) * entryBytes);
  stream_.SetPosition(start_ + header_.paletteOffset);
  const size_t there = stream_.Read(bytes) / entryBytes;
  std::vector<tagPALETTEENTRY> entries(there);
  for (size_t i = 0; i < there; ++i) {
    const uint8_t* entry = bytes.data() + i * entryBytes;
    entries[i] = {entry[2], entry[1], entry[0], 0};
  }
  return HPALETTE(entries);
}

void BmpPlainRows::RequireMemory(int rows) const {
  // 64 bits on every system: neither the length of rows nor their number can be trusted.
  const auto rowBits =
      static_cast<uint64_t>(header_.width) * static_cast<uint64_t>(StoredBitsPerPixel(format_));
  const uint64_t rowBytes = (rowBits + 31) / 32 * 4;
  const uint64_t bytes = rowBytes * static_cast<uint64_t>(header_.height);
  const std::string what = "BMP: a picture of " + std::to_string(header_.width) + " x " +
                           std::to_string(header_.height) + " pixels";
  RequirePicture(static_cast<uint64_t>(header_.width), static_cast<uint64_t>(header_.height),
                 rowBytes * static_cast<uint64_t>(rows), what);
  if (IsBmpRle(header_)) {
    RequireOneBmpRleRow(header_, bytes);
    RequirePlausibleBmpRle(header_, bytes, what);
  } else {
    RequireOneBmpRow(header_);
    RequirePlausibleBmpRows(header_, bytes, what);
  }
}

void BmpPlainRows::Finish(const uint8_t* source, uint8_t* target, size_t width) {
  if (masked_) {
    format_ == pf24bit ? masked_->To24(source, target, width)
                       : masked_->To32(source, target, width);
  } else if (rules_.isConverted) {
    Widen2BitRow(source, target, width);
  } else if (format_ == pf15bit) {
    ClearTopBits(target, width);
  } else if (format_ == pf32bit && !hasAlpha_) {
    MakeOpaque(target, width);
  }
  if (hasAlpha_ && !isAlphaSeen_) isAlphaSeen_ = HasAnyAlpha(target, width);
}

void BmpPlainRows::Read(const BmpPlace& place, Raster& raster) {
  ReadBmpRows(stream_, start_ + header_.pixelOffset, header_, rules_, place, raster);
}

void BmpPlainRows::MarkAlpha(Raster& raster) const {
  if (isAlphaSeen_) {
    raster.alphaFormat = afDefined;
  } else if (hasAlpha_) {
    for (int y = 0; y < raster.Height(); ++y) {
      MakeOpaque(raster.Row(y), static_cast<size_t>(raster.Width()));
    }
  }
}

void BmpPlainRows::Report(CodecReport& report) const {
  const int there = CompleteBmpRows(header_);
  if (there == header_.height) return;
  report.AddDamage("BMP: premature end of data, " + std::to_string(there) + " of " +
                   std::to_string(header_.height) + " rows are complete");
}

namespace {

class BmpRowReader : public RowReader {
 public:
  BmpRowReader(TStream& stream, uint64_t start, const BmpHeader& header, CodecReport report)
      : header_(header), rows_(stream, start, header), noticed_(std::move(report)) {
    rows_.RequireMemory(1);
    Raster like(rows_.Format(), 0, 0);
    like.palette = rows_.Palette();
    like.resolution = header.resolution;
    like.profile = ReadBmpProfile(stream, start, header);
    like_ = std::move(like);
    rows_.Report(noticed_);
  }

  int Width() const override { return header_.width; }
  int Height() const override { return header_.height; }
  RowAccess Access() const override {
    constexpr int kByte = 8;
    return header_.bits < kByte ? RowAccess::anyRows : RowAccess::anyParts;
  }
  const Pixels& Like() const override { return like_; }
  void Read(int left, int top, Pixels& target) override {
    auto& raster = std::get<Raster>(target);
    const bool isInside = left >= 0 && top >= 0 && raster.Width() <= header_.width - left &&
                          raster.Height() <= header_.height - top;
    const bool isWhole = left == 0 && raster.Width() == header_.width;
    if (!isInside || (!isWhole && Access() != RowAccess::anyParts)) {
      throw RangeError("BMP: the rows do not lie inside of the picture");
    }
    rows_.Read({left, top}, raster);
  }
  void Finish(CodecReport& report) override { report.Append(std::exchange(noticed_, {})); }

 private:
  const BmpHeader header_;
  BmpPlainRows rows_;
  CodecReport noticed_;
  Pixels like_;
};

}  // namespace
}  // namespace detail

std::unique_ptr<RowReader> OpenBmpRows(TStream& stream) {
  const uint64_t start = stream.Position();
  CodecReport report;
  const detail::BmpHeader header = detail::ReadBmpHeader(stream, start, report);
  const bool isWhole =
      detail::IsBmpRle(header) || detail::IsEmbeddedBmp(header) || header.masks.alpha != 0;
  if (isWhole) return nullptr;
  return std::make_unique<detail::BmpRowReader>(stream, start, header, std::move(report));
}

}  // namespace rasterkit
