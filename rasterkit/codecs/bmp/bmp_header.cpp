#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// The longest header, or an info header and four masks.
using HeaderBytes = std::array<uint8_t, kBmpV5Header + 16>;

/// A header that states more entries than a byte can address is damaged.
constexpr uint32_t kMostPaletteEntries = 256;

/// Reads the headers of one file.
class HeaderReader {
 public:
  HeaderReader(TStream& stream, uint64_t start, CodecReport& report);
  BmpHeader Read();

 private:
  uint32_t Field(uint32_t offset) const {
    // Fields that a short header lacks are 0.
    return offset + 4 <= headerBytes_ ? BmpLong(bytes_, offset) : 0;
  }
  bool IsCore() const { return headerBytes_ == kBmpCoreHeader; }
  bool IsEmbedded() const {
    return header_.compression == BmpCompression::jpeg ||
           header_.compression == BmpCompression::png;
  }

  void ReadCoreFields();
  void ReadInfoFields();
  void ReadSize(int64_t width, int64_t height);
  void ReadCompression();
  void CheckDepth() const;
  void ReadMasks();
  void ReadPalettePlace();
  void ReadPixelPlace();
  void ReadProfilePlace();

  CodecReport& report_;
  uint64_t fileBytes_;
  uint32_t statedPixelOffset_ = 0;
  uint32_t headerBytes_ = 0;
  HeaderBytes bytes_{};
  BmpHeader header_;
  /// The end of the header and its masks, from the start of the file.
  uint64_t headerEnd_ = 0;
};

HeaderReader::HeaderReader(TStream& stream, uint64_t start, CodecReport& report)
    : report_(report), fileBytes_(stream.Size() - start) {
  std::array<uint8_t, kBmpFileHeaderBytes> fileHeader{};
  stream.SetPosition(start);
  const bool complete = stream.Read(fileHeader) == fileHeader.size();
  if (!complete || fileHeader[0] != 'B' || fileHeader[1] != 'M') {
    throw FormatError("BMP: the file does not start with a bitmap file header");
  }
  statedPixelOffset_ = BmpLong(fileHeader, 10);
  const size_t count = stream.Read(bytes_);
  if (count >= 4) headerBytes_ = BmpLong(bytes_, 0);
  if (!IsBmpHeaderSize(headerBytes_)) {
    throw FormatError("BMP: a header of " + std::to_string(headerBytes_) + " bytes is unknown");
  }
  if (count < headerBytes_) throw FormatError("BMP: the data end inside the header");
  headerEnd_ = kBmpFileHeaderBytes + headerBytes_;
}

BmpHeader HeaderReader::Read() {
  if (IsCore()) {
    ReadCoreFields();
  } else {
    ReadInfoFields();
  }
  CheckDepth();
  ReadMasks();
  ReadPalettePlace();
  ReadPixelPlace();
  ReadProfilePlace();
  return header_;
}

void HeaderReader::ReadCoreFields() {
  ReadSize(BmpWord(bytes_, 4), BmpWord(bytes_, 6));
  header_.bits = static_cast<int>(BmpWord(bytes_, 10));
  header_.paletteEntryBytes = 3;
}

void HeaderReader::ReadInfoFields() {
  header_.bits = static_cast<int>(BmpWord(bytes_, bmp_field::kBits));
  ReadCompression();
  const auto width = static_cast<int32_t>(Field(bmp_field::kWidth));
  const auto height = static_cast<int32_t>(Field(bmp_field::kHeight));
  if (!IsEmbedded()) ReadSize(width, height);
  const auto x = static_cast<int32_t>(Field(bmp_field::kPixelsPerMeterX));
  const auto y = static_cast<int32_t>(Field(bmp_field::kPixelsPerMeterY));
  header_.resolution.x = std::max(x, 0) * kMetersPerInch;
  header_.resolution.y = std::max(y, 0) * kMetersPerInch;
}

void HeaderReader::ReadSize(int64_t width, int64_t height) {
  // In 64 bits the lowest height can be negated too.
  const int64_t rows = height < 0 ? -height : height;
  if (width <= 0 || rows == 0 || rows > std::numeric_limits<int32_t>::max()) {
    throw FormatError("BMP: a size of " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels is not possible");
  }
  header_.width = static_cast<int>(width);
  header_.height = static_cast<int>(rows);
  header_.topDown = height < 0;
}

void HeaderReader::ReadCompression() {
  const uint32_t code = Field(bmp_field::kCompression);
  if (IsOs2BmpHeader(headerBytes_)) {
    if (code == 3) throw UnsupportedError("BMP: OS/2 Huffman compression is not supported");
    if (code == 4) throw UnsupportedError("BMP: OS/2 24-bit run lengths are not supported");
  }
  if (code > static_cast<uint32_t>(BmpCompression::alphaBitFields)) {
    throw UnsupportedError("BMP: compression " + std::to_string(code) + " is unknown");
  }
  header_.compression = static_cast<BmpCompression>(code);
}

void HeaderReader::CheckDepth() const {
  const int bits = header_.bits;
  bool fits = false;
  switch (header_.compression) {
    case BmpCompression::none:
      fits = bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 ||
             bits == 32;
      break;
    case BmpCompression::rle8:
      fits = bits == 8;
      break;
    case BmpCompression::rle4:
      fits = bits == 4;
      break;
    case BmpCompression::bitFields:
    case BmpCompression::alphaBitFields:
      fits = bits == 16 || bits == 24 || bits == 32;
      break;
    case BmpCompression::jpeg:
    case BmpCompression::png:
      fits = bits <= 32;  // the embedded picture has its own depth
      break;
  }
  if (!fits) {
    throw FormatError("BMP: " + std::to_string(bits) + " bits per pixel are not possible with " +
                      "compression " + std::to_string(static_cast<int>(header_.compression)));
  }
}

void HeaderReader::ReadMasks() {
  if (header_.bits <= 8 || IsEmbedded()) return;
  const bool hasMasks = header_.compression == BmpCompression::bitFields ||
                        header_.compression == BmpCompression::alphaBitFields;
  if (!hasMasks) {
    header_.masks = header_.bits == 16 ? kBmpMasks555 : kBmpMasks888;
    // 32-bit pixels without masks have alpha only if the header says so.
    const bool statesAlpha = headerBytes_ == kBmpAlphaMaskHeader || headerBytes_ >= kBmpV4Header;
    if (header_.bits == 32 && statesAlpha &&
        BmpLong(bytes_, bmp_field::kMasks + 12) == kBmpAlpha8888) {
      header_.masks.alpha = kBmpAlpha8888;
    }
    return;
  }
  if (headerBytes_ < kBmpInfoHeader || IsOs2BmpHeader(headerBytes_)) {
    throw FormatError("BMP: the header has no room for color masks");
  }
  const bool hasAlpha =
      header_.compression == BmpCompression::alphaBitFields || headerBytes_ >= kBmpAlphaMaskHeader;
  const uint64_t masksEnd = kBmpFileHeaderBytes + bmp_field::kMasks + (hasAlpha ? 16 : 12);
  if (masksEnd > fileBytes_) throw FormatError("BMP: the data end inside the color masks");
  headerEnd_ = std::max(headerEnd_, masksEnd);
  const auto mask = [&](uint32_t channel) {
    return BmpLong(bytes_, bmp_field::kMasks + 4 * channel);
  };
  header_.masks = {mask(0), mask(1), mask(2), hasAlpha ? mask(3) : 0};
}

void HeaderReader::ReadPalettePlace() {
  if (header_.bits > 8 || IsEmbedded()) return;
  const uint32_t most = 1u << header_.bits;
  const uint32_t stated = Field(bmp_field::kColorsUsed);
  if (!IsCore() && stated > kMostPaletteEntries) {
    throw FormatError("BMP: a palette of " + std::to_string(stated) + " entries is not possible");
  }
  const bool isStated = !IsCore() && stated != 0;
  header_.paletteEntries = static_cast<int>(isStated ? std::min(stated, most) : most);
  header_.paletteOffset = headerEnd_;
}

void HeaderReader::ReadPixelPlace() {
  const auto entryBytes = static_cast<uint64_t>(header_.paletteEntryBytes);
  if (statedPixelOffset_ > headerEnd_ ||
      (statedPixelOffset_ == headerEnd_ && header_.paletteEntries == 0)) {
    header_.pixelOffset = statedPixelOffset_;
    // Some programs state a full palette and write only the entries they need; the offset of the
    // pixels limits their number.
    const uint64_t room = (statedPixelOffset_ - headerEnd_) / entryBytes;
    header_.paletteEntries =
        static_cast<int>(std::min(room, static_cast<uint64_t>(header_.paletteEntries)));
  } else {
    header_.pixelOffset = headerEnd_ + static_cast<uint64_t>(header_.paletteEntries) * entryBytes;
    report_.warnings.emplace_back("BMP: the pixels' offset of " +
                                  std::to_string(statedPixelOffset_) + " lies inside the header, " +
                                  std::to_string(header_.pixelOffset) + " is taken");
  }
  if (header_.pixelOffset >= fileBytes_) {
    throw FormatError("BMP: the pixels' offset of " + std::to_string(header_.pixelOffset) +
                      " lies beyond the end of the data");
  }
  header_.pixelBytes = fileBytes_ - header_.pixelOffset;
}

void HeaderReader::ReadProfilePlace() {
  if (headerBytes_ < kBmpV5Header || Field(bmp_field::kColorSpace) != kBmpProfileEmbedded) return;
  const uint64_t offset = uint64_t{kBmpFileHeaderBytes} + Field(bmp_field::kProfileOffset);
  const uint64_t count = Field(bmp_field::kProfileBytes);
  if (count == 0) return;
  if (offset + count > fileBytes_) {
    report_.warnings.emplace_back("BMP: the color profile lies beyond the end of the data");
    return;
  }
  header_.profileOffset = offset;
  header_.profileBytes = count;
}

}  // namespace

BmpHeader ReadBmpHeader(TStream& stream, uint64_t start, CodecReport& report) {
  return HeaderReader(stream, start, report).Read();
}

}  // namespace rasterkit::detail
