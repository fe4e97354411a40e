#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_format.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/rows/alpha_rows.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;

using Bytes = std::span<const uint8_t>;

/// One picture of the file, as its directory entry describes it.
struct Entry {
  int width = 0, height = 0;
  Bytes bytes;
};

bool IsPng(Bytes bytes) {
  constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  return bytes.size() >= sizeof kSignature &&
         std::equal(std::begin(kSignature), std::end(kSignature), bytes.begin());
}

/// Bits per pixel in the header of the picture: the directory often states none.
uint32_t DepthOf(Bytes picture) {
  if (IsPng(picture)) return 32;
  return picture.size() >= kBmpInfoHeader ? BmpWord(picture, bmp_field::kBits) : 0;
}

/// Reads an entry; nothing if it points outside the file.
std::optional<Entry> ReadEntry(Bytes file, size_t place) {
  const auto side = [&](size_t field) {
    const int stated = file[place + field];
    return stated == 0 ? kLargestIcon : stated;
  };
  const size_t offset = BmpLong(file, place + ico_field::kOffset);
  if (offset >= file.size()) return std::nullopt;
  const size_t count =
      std::min<size_t>(BmpLong(file, place + ico_field::kBytes), file.size() - offset);
  if (count < kBmpInfoHeader) return std::nullopt;
  return Entry{side(ico_field::kWidth), side(ico_field::kHeight), file.subspan(offset, count)};
}

Entry ChooseEntry(Bytes file) {
  if (file.size() < kIcoHeaderBytes || BmpWord(file, ico_field::kReserved) != 0 ||
      BmpWord(file, ico_field::kType) != kIcoType) {
    throw FormatError("ICO: the file does not start with an icon directory");
  }
  const size_t stated = BmpWord(file, ico_field::kCount);
  const size_t count = std::min(stated, (file.size() - kIcoHeaderBytes) / kIcoEntryBytes);
  std::optional<Entry> best;
  const auto rank = [](const Entry& entry) {
    return std::tuple(entry.width * entry.height, DepthOf(entry.bytes));
  };
  for (size_t i = 0; i < count; ++i) {
    const auto entry = ReadEntry(file, kIcoHeaderBytes + i * kIcoEntryBytes);
    if (entry && (!best || rank(*entry) > rank(*best))) best = entry;
  }
  if (!best) throw FormatError("ICO: the directory names no picture inside the file");
  return *best;
}

/// Alpha of a picture whose only transparency is its transparent color.
void ApplyTransparentColor(Raster& raster, TColor color) {
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      if (raster.PixelColor(x, y) == color) raster.Row(y)[4 * static_cast<size_t>(x) + 3] = 0;
    }
  }
}

Raster DecodePngEntry(const Entry& entry, CodecReport& report) {
  Raster decoded = DecodePng(entry.bytes, &report);
  const bool hasAlpha = decoded.alphaFormat == afDefined;
  Raster raster =
      decoded.Format() == pf32bit ? std::move(decoded) : ConvertRaster(decoded, pf32bit);
  if (raster.transparentColor && !hasAlpha) ApplyTransparentColor(raster, *raster.transparentColor);
  return raster;
}

/// Converts a picture without file header to a bitmap file for the bitmap decoder.
class BitmapEntry {
 public:
  explicit BitmapEntry(const Entry& entry) : entry_(entry), picture_(entry.bytes) {
    headerBytes_ = BmpLong(picture_, bmp_field::kSize);
    if (headerBytes_ < kBmpInfoHeader || !IsBmpHeaderSize(headerBytes_) ||
        IsOs2BmpHeader(headerBytes_) || headerBytes_ > picture_.size()) {
      throw FormatError("ICO: a picture's header of " + std::to_string(headerBytes_) +
                        " bytes is unknown");
    }
    bits_ = BmpWord(picture_, bmp_field::kBits);
    compression_ = BmpLong(picture_, bmp_field::kCompression);
    RequirePlainRows();
    ReadSize();
  }

  Raster Decode(CodecReport& report) const {
    TMemoryStream stream(MakeFile());
    const Raster colors = DecodeBmp(stream, &report);
    Raster raster = ConvertRaster(colors, pf32bit);
    raster.palette = {};
    if (colors.alphaFormat != afDefined) ApplyMask(raster);
    return raster;
  }

 private:
  /// The place of the mask is known for these compressions only.
  void RequirePlainRows() const {
    for (const BmpCompression plain :
         {BmpCompression::none, BmpCompression::bitFields, BmpCompression::alphaBitFields}) {
      if (compression_ == static_cast<uint32_t>(plain)) return;
    }
    throw UnsupportedError("ICO: a picture with compression " + std::to_string(compression_) +
                           " is not supported");
  }

  void ReadSize() {
    const auto stated = static_cast<int32_t>(BmpLong(picture_, bmp_field::kHeight));
    topDown_ = stated < 0;
    const int64_t rows = topDown_ ? -int64_t{stated} : stated;
    // Colors and mask together; some programs state the colors alone and write no mask.
    const auto width = static_cast<int32_t>(BmpLong(picture_, bmp_field::kWidth));
    hasMask_ = !(rows == entry_.height && width == entry_.width);
    height_ = hasMask_ ? rows / 2 : rows;
  }

  /// 32-bit pixels of an icon have an alpha channel, which an info header cannot state.
  bool AddsMasks() const {
    return bits_ == 32 && compression_ == static_cast<uint32_t>(BmpCompression::none) &&
           headerBytes_ == kBmpInfoHeader;
  }

  /// Offset of the pixels in the picture.
  size_t PixelOffset() const {
    size_t offset = headerBytes_;
    if (headerBytes_ == kBmpInfoHeader) {
      if (compression_ == static_cast<uint32_t>(BmpCompression::bitFields)) offset += 12;
      if (compression_ == static_cast<uint32_t>(BmpCompression::alphaBitFields)) offset += 16;
    }
    if (bits_ > 8) return offset;
    const uint32_t most = 1u << bits_;
    const uint32_t stated = BmpLong(picture_, bmp_field::kColorsUsed);
    return offset + 4 * size_t{stated == 0 ? most : std::min(stated, most)};
  }

  std::vector<uint8_t> MakeFile() const {
    std::vector<uint8_t> file;
    file.reserve(kBmpFileHeaderBytes + picture_.size() + 16);
    file.resize(kBmpFileHeaderBytes);
    const auto append = [&](Bytes part) { file.insert(file.end(), part.begin(), part.end()); };
    append(picture_.first(headerBytes_));
    size_t pixelOffset = kBmpFileHeaderBytes + PixelOffset();
    if (AddsMasks()) {
      for (const uint32_t mask :
           {kBmpMasks888.red, kBmpMasks888.green, kBmpMasks888.blue, kBmpAlpha8888}) {
        for (int shift = 0; shift < 32; shift += 8) {
          file.push_back(static_cast<uint8_t>(mask >> shift));
        }
      }
      pixelOffset += 16;
      Put(file, kBmpFileHeaderBytes + bmp_field::kCompression,
          static_cast<uint32_t>(BmpCompression::alphaBitFields));
    }
    append(picture_.subspan(headerBytes_));
    file[0] = 'B';
    file[1] = 'M';
    Put(file, 10, static_cast<uint32_t>(pixelOffset));
    const auto height = static_cast<uint32_t>(height_);
    Put(file, kBmpFileHeaderBytes + bmp_field::kHeight, topDown_ ? 0 - height : height);
    return file;
  }

  static void Put(std::vector<uint8_t>& file, size_t offset, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) file[offset + i] = static_cast<uint8_t>(value >> (8 * i));
  }

  /// Applies the mask, which follows the rows. Pixels beyond its end are opaque.
  void ApplyMask(Raster& raster) const {
    const auto width = static_cast<size_t>(raster.Width()), height = static_cast<size_t>(height_);
    const uint64_t stride = StrideBytes(raster.Width(), 1);
    const uint64_t start =
        PixelOffset() + StrideBytes(raster.Width(), static_cast<int>(bits_)) * height;
    for (size_t y = 0; y < height; ++y) {
      uint8_t* row = raster.Row(static_cast<int>(topDown_ ? y : height - 1 - y));
      MakeOpaque(row, width);
      const uint64_t place = start + y * stride;
      if (!hasMask_ || place + stride > picture_.size()) continue;
      const uint8_t* mask = picture_.data() + place;
      for (size_t x = 0; x < width; ++x) {
        if ((mask[x / 8] >> (7 - x % 8) & 1) != 0) row[4 * x + 3] = 0;
      }
    }
  }

  const Entry& entry_;
  Bytes picture_;
  uint32_t headerBytes_ = 0, bits_ = 0, compression_ = 0;
  int64_t height_ = 0;
  bool topDown_ = false, hasMask_ = true;
};

}  // namespace

Raster DecodeIco(std::span<const uint8_t> bytes, CodecReport* report) {
  const LimitsScope limits;
  CodecReport unread;
  CodecReport& noticed = report ? *report : unread;
  const Entry entry = ChooseEntry(bytes);
  Raster raster =
      IsPng(entry.bytes) ? DecodePngEntry(entry, noticed) : BitmapEntry(entry).Decode(noticed);
  raster.alphaFormat = afDefined;
  raster.transparentColor = clWhite;
  return raster;
}

}  // namespace rasterkit
