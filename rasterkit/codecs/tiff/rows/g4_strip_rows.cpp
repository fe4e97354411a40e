#include <algorithm>

#include <rasterkit/codecs/g4/g4_strip.h>
#include <rasterkit/codecs/tiff/rows/g4_strip_rows.h>
#include <rasterkit/codecs/tiff/tiff_lzw_style.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

/// Smaller strips are unpacked as a whole.
constexpr uint64_t kLeastBytes = uint64_t{1} << 20;
constexpr size_t kPieceBytes = size_t{1} << 16;
/// Rows between two looks at the time of the call.
constexpr uint64_t kRowsAtATime = 256;

}  // namespace

bool G4StripRows::Fits(const TiffHandle& handle, const TiffLayout& layout) {
  const TiffBlockGrid& grid = layout.grid;
  const G4Strip strip{layout.width, layout.height, false};
  return layout.compression == COMPRESSION_CCITTFAX4 && layout.bits == 1 && !grid.isTiled &&
         grid.PerPlane() == 1 && layout.planes.size() == 1 &&
         handle.Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1) == 1 && strip.IsUsual() &&
         grid.width == layout.width && grid.rowBytes == strip.RowBytes() &&
         uint64_t{layout.height} * grid.rowBytes >= kLeastBytes;
}

G4StripRows::G4StripRows(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                         const TiffBlanks& blanks)
    : handle_(handle),
      layout_(layout),
      edge_(static_cast<uint8_t>(layout.width % 8 != 0 ? blanks.whiteByte & 0xFF >> layout.width % 8
                                                       : 0)),
      extent_(TiffBlockReader(handle, layout, blanks).ExtentOf(0)),
      writer_(MakeRowWriter(layout, colors)),
      piece_(kPieceBytes),
      row_(layout.grid.rowBytes) {
  const uint64_t size = handle.Source().Size();
  const bool isThere =
      extent_.count > 0 && extent_.offset < size && extent_.count <= size - extent_.offset;
  if (!isThere) strip_ = Strip::irregular;
}

void G4StripRows::Begin() {
  read_ = 0;
  decoder_ =
      std::make_unique<G4Decoder>([this] { return NextBytes(); }, static_cast<int>(layout_.width),
                                  G4Bits{HasLowBitsFirst(handle_), false});
}

std::span<const uint8_t> G4StripRows::NextBytes() {
  const auto wanted = static_cast<size_t>(std::min<uint64_t>(kPieceBytes, extent_.count - read_));
  const size_t there = handle_.Source().ReadAt(extent_.offset + read_, {piece_.data(), wanted});
  read_ += there;
  return {piece_.data(), there};
}

/// Decodes the next row into `row_`.
bool G4StripRows::Next() {
  if (decoder_->Row() % kRowsAtATime == 0) RequireTime();
  if (!decoder_->Decode(row_.data())) return false;
  row_.back() |= edge_;
  return true;
}

bool G4StripRows::IsRegular() {
  if (strip_ != Strip::unknown) return strip_ == Strip::regular;
  Begin();
  while (decoder_->Row() < layout_.height && Next()) {
  }
  strip_ = decoder_->Row() == layout_.height ? Strip::regular : Strip::irregular;
  decoder_.reset();
  return strip_ == Strip::regular;
}

bool G4StripRows::Read(const TiffPart& part, const TiffTarget& target) {
  if (part.width != layout_.width || !IsRegular()) return false;
  if (!decoder_ || decoder_->Row() > part.top) Begin();
  const uint8_t* const row = row_.data();
  while (decoder_->Row() < part.Bottom()) {
    const uint64_t y = decoder_->Row();
    if (!Next()) {
      // The file has changed.
      strip_ = Strip::irregular;
      return false;
    }
    if (y < part.top) continue;
    const uint8_t* plane = row;
    writer_->Write(&plane, layout_.width, target.Row(static_cast<uint32_t>(y - part.top)));
  }
  return true;
}

}  // namespace rasterkit::detail
