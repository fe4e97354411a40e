#include <algorithm>
#include <array>

#include <rasterkit/codecs/tiff/rows/long_strips.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

/// Strips up to this many unpacked bytes are held.
constexpr uint64_t kHeldBytes = uint64_t{16} << 20;

bool IsRowByRow(int compression) {
  switch (compression) {
    case COMPRESSION_LZW:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool HasLongStrips(const TiffLayout& layout) {
  const TiffBlockGrid& grid = layout.grid;
  return !grid.isTiled && layout.planes.size() == 1 && IsRowByRow(layout.compression) &&
         uint64_t{grid.rowBytes} * std::min(grid.height, layout.height) > kHeldBytes;
}

LongStrips::LongStrips(TiffSource& source, const TiffLayout& layout, const TiffColors& colors,
                       const TiffBlanks& blanks, TiffFaults& faults)
    : layout_(layout),
      blanks_(blanks),
      faults_(faults),
      handle_(source),
      blocks_(handle_, layout, blanks),
      writer_(MakeRowWriter(layout, colors)),
      row_(layout.grid.rowBytes) {
  PrepareTiff(handle_);
  // Another handle has reported the errors of the directory.
  handle_.Messages() = {};
}

LongStrips::~LongStrips() = default;

/// Finds out whether a strip can be unpacked row by row; false if not.
bool LongStrips::BeginStrip(uint32_t strip) {
  strip_ = strip;
  const auto [offset, count] = blocks_.ExtentOf(strip);
  isSparse_ = offset == 0 && count == 0;
  if (isSparse_) return true;
  const uint64_t size = handle_.Source().Size();
  if (offset >= size || count > size - offset || count == 0) return false;
  std::array<uint8_t, 2> start{};
  if (handle_.Source().ReadAt(offset, start) < start.size()) return false;
  return layout_.compression != COMPRESSION_LZW ||
         LzwStyleOf(start, HasLowBitsFirst(handle_)) == layout_.lzwStyle;
}

/// Unpacks a whole strip. `soundRows` of it were unpacked without an error.
void LongStrips::HoldStrip(uint32_t strip, uint32_t soundRows) {
  const TiffPart place = PlaceOfBlock(layout_, strip);
  TiffHandle handle(handle_.Source());
  PrepareTiff(handle);
  handle.Messages() = {};
  TiffBlockReader reader(handle, layout_, blanks_);
  held_ = PixelMemory(layout_.grid.rowBytes * place.height);
  heldRows_ = std::max(reader.Read(strip, 0, place.height, held_.Data()), soundRows);
  heldStrip_ = strip;
  faults_.Add(strip, place.height - heldRows_, reader.TakeErrors());
}

/// The samples of the next row; null if the file lacks it.
const uint8_t* LongStrips::Samples(uint32_t y) {
  const uint32_t strip = y / layout_.grid.height, first = strip * layout_.grid.height;
  if (strip != strip_ && strip != heldStrip_ && !BeginStrip(strip)) HoldStrip(strip, 0);
  if (strip != heldStrip_) {
    if (isSparse_) {
      blocks_.FillSparse(row_.Data(), layout_.grid.rowBytes);
      return row_.Data();
    }
    const bool isRead = TIFFReadScanline(handle_.Tiff(), row_.Data(), y, 0) == 1;
    TiffMessages& messages = handle_.Messages();
    const bool isSilent = messages.TakeErrors().empty() && messages.TakeWarnings().empty();
    handle_.Source().RethrowKept();
    if (isRead && isSilent) return row_.Data();
    HoldStrip(strip, y - first);
  }
  if (y - first >= heldRows_) return nullptr;
  return held_.Data() + (y - first) * layout_.grid.rowBytes;
}

void LongStrips::ReadRow(uint32_t y, const TiffTarget& target, uint8_t* row) {
  const uint8_t* samples = Samples(y);
  if (row == nullptr) return;
  if (samples == nullptr) return FillMissingPixels(target, layout_.width, row);
  writer_->Write(&samples, layout_.width, row);
}

void LongStrips::Read(uint32_t top, uint32_t rows, const TiffTarget& target) {
  // libtiff begins a strip again if an earlier row of it is requested.
  if (top < next_) next_ = top / layout_.grid.height * layout_.grid.height;
  for (; next_ < top; next_++) {
    RequireTime();
    ReadRow(next_, target, nullptr);
  }
  for (uint32_t i = 0; i < rows; i++, next_++) {
    RequireTime();
    ReadRow(next_, target, target.Row(i));
  }
  if (heldStrip_ != UINT32_MAX && next_ / layout_.grid.height != heldStrip_) {
    held_ = {};
    heldStrip_ = UINT32_MAX;
  }
}

}  // namespace rasterkit::detail
