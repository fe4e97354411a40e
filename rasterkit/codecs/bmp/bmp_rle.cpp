#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include <rasterkit/codecs/bmp/bmp_rle.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// The second byte after a count of 0; 3 and above is the length of a run of single pixels.
enum RleEscape : int { endOfRow = 0, endOfPicture = 1, delta = 2 };

/// Most pixels of one run, and its bytes.
constexpr uint64_t kLongestRun = 255, kRunBytes = 2;
/// Pictures up to this size may have no data.
constexpr uint64_t kFreePictureBytes = 16 * 1024 * 1024;

/// Reads single bytes of a stream, buffered.
class ByteSource {
 public:
  explicit ByteSource(TStream& stream) : stream_(stream) {}

  /// The next byte; -1 at the end.
  int Next() {
    if (next_ == filled_ && !Fill()) return -1;
    return block_[next_++];
  }

 private:
  bool Fill() {
    next_ = 0;
    filled_ = stream_.Read(block_);
    return filled_ > 0;
  }

  TStream& stream_;
  std::array<uint8_t, 16 * 1024> block_;
  size_t next_ = 0, filled_ = 0;
};

class RleReader {
 public:
  RleReader(TStream& stream, const BmpHeader& header, Raster& raster)
      : source_(stream),
        raster_(raster),
        topDown_(header.topDown),
        isRle4_(header.compression == BmpCompression::rle4) {}

  void Read();

  /// True if the data gave every pixel: they had an end code, or ended after the last pixel.
  bool IsComplete() const { return hasEnd_ || IsLastRowDone(); }
  bool WasCut() const { return wasCut_; }
  /// Number of rows before the place where the data ended.
  int RowsThere() const { return static_cast<int>(y_); }

 private:
  bool IsLastRowDone() const {
    return y_ >= raster_.Height() || (y_ == raster_.Height() - 1 && x_ >= raster_.Width());
  }
  /// Reads one code; false at the end.
  bool Step();
  bool Escape(int code);
  bool Delta();
  bool SinglePixels(int count);
  void Run(int count, uint8_t value);
  void Put(uint8_t index);
  uint8_t* Row() {
    return raster_.Row(static_cast<int>(topDown_ ? y_ : raster_.Height() - 1 - y_));
  }

  ByteSource source_;
  Raster& raster_;
  const bool topDown_, isRle4_;
  /// The place of the next pixel, in the row order of the file. Both grow by at most 255 per code,
  /// so they cannot overflow before the data end.
  int64_t x_ = 0, y_ = 0;
  /// The row in which the time was checked.
  int64_t checkedRow_ = -1;
  bool hasEnd_ = false, wasCut_ = false;
};

void RleReader::Read() {
  // Codes after the last row have no effect.
  while (y_ < raster_.Height() && Step()) {
    if (y_ == checkedRow_) continue;
    RequireTime();
    checkedRow_ = y_;
  }
}

bool RleReader::Step() {
  const int count = source_.Next();
  const int value = source_.Next();
  if (value < 0) return false;
  if (count == 0) return Escape(value);
  Run(count, static_cast<uint8_t>(value));
  return true;
}

bool RleReader::Escape(int code) {
  if (code == endOfPicture) {
    hasEnd_ = true;
    return false;
  }
  if (code == delta) return Delta();
  if (code != endOfRow) return SinglePixels(code);
  x_ = 0;
  ++y_;
  return true;
}

bool RleReader::Delta() {
  const int right = source_.Next();
  const int down = source_.Next();
  if (down < 0) return false;
  x_ += right;
  y_ += down;
  return true;
}

bool RleReader::SinglePixels(int count) {
  const int bytes = isRle4_ ? (count + 1) / 2 : count;
  for (int i = 0; i < bytes; ++i) {
    const int value = source_.Next();
    if (value < 0) return false;
    if (!isRle4_) {
      Put(static_cast<uint8_t>(value));
      continue;
    }
    Put(static_cast<uint8_t>(value >> 4));
    if (2 * i + 1 < count) Put(value & 15);
  }
  // Runs of single pixels are padded to whole words.
  return bytes % 2 == 0 || source_.Next() >= 0;
}

void RleReader::Run(int count, uint8_t value) {
  if (isRle4_) {
    for (int i = 0; i < count; ++i) Put(i % 2 == 0 ? value >> 4 : value & 15);
    return;
  }
  const int64_t room = std::max<int64_t>(raster_.Width() - x_, 0);
  const int64_t inside = std::min<int64_t>(count, room);
  if (inside > 0) std::memset(Row() + x_, value, static_cast<size_t>(inside));
  wasCut_ = wasCut_ || inside < count;
  x_ += count;
}

void RleReader::Put(uint8_t index) {
  if (x_ >= raster_.Width()) {
    wasCut_ = true;
  } else if (!isRle4_) {
    Row()[x_] = index;
  } else {
    // No code moves back, so each nibble of the zeroed rows is written at most once.
    Row()[x_ / 2] |= static_cast<uint8_t>(x_ % 2 == 0 ? index << 4 : index);
  }
  ++x_;
}

}  // namespace

void ReadBmpRle(TStream& stream, const BmpHeader& header, Raster& raster, CodecReport& report) {
  ClearRows(raster, 0, raster.Height());
  RleReader reader(stream, header, raster);
  reader.Read();
  if (!reader.IsComplete()) {
    report.AddDamage("BMP: premature end of data, " + std::to_string(reader.RowsThere()) + " of " +
                     std::to_string(header.height) + " rows are complete");
  }
  if (reader.WasCut()) report.warnings.emplace_back("BMP: runs beyond the picture were dropped");
}

void RequirePlausibleBmpRle(const BmpHeader& header, uint64_t pictureBytes, std::string_view what) {
  const uint64_t pixels =
      SaturatedProduct(static_cast<uint64_t>(header.width), static_cast<uint64_t>(header.height));
  constexpr uint64_t kPixelsPerByte = kCutSlack * kLongestRun / kRunBytes;
  RequirePlausible({pictureBytes, pixels, header.pixelBytes, kPixelsPerByte}, what);
}

void RequireOneBmpRleRow(const BmpHeader& header, uint64_t pictureBytes) {
  if (pictureBytes <= kFreePictureBytes) return;
  const uint64_t pixels = header.pixelBytes / kRunBytes * kLongestRun;
  if (pixels >= static_cast<uint64_t>(header.width)) return;
  throw FormatError("BMP: the data end inside the first of " + std::to_string(header.height) +
                    " rows");
}

}  // namespace rasterkit::detail
