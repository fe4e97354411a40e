#include <algorithm>
#include <cstring>
#include <vector>

#include <rasterkit/bands/flow/scratch_rows.h>
#include <rasterkit/bands/stage/band.h>

namespace rasterkit::detail {
namespace {

/// Of a column; packed pixels begin at whole bytes.
constexpr int kColumnWidth = 256;
/// Of a block.
constexpr int kBlockRows = 64;

int PlanesOf(const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  return samples != nullptr ? samples->Planes() : 1;
}

/// Of a row of one plane.
uint64_t StrideFor(const Pixels& like, int width) {
  return BytesOfPixels(like, width, 1) / static_cast<uint64_t>(PlanesOf(like));
}

uint64_t RowBytesOf(const Pixels& like, int width) {
  const auto whole = static_cast<uint64_t>(width / kColumnWidth);
  const int rest = width % kColumnWidth;
  return whole * StrideFor(like, kColumnWidth) + (rest == 0 ? 0 : StrideFor(like, rest));
}

/// Memory of a thread for pieces on their way.
std::vector<uint8_t>& PieceBuffer(size_t bytes) {
  thread_local std::vector<uint8_t> buffer;
  if (buffer.size() < bytes) buffer.resize(bytes);
  return buffer;
}

}  // namespace

ScratchRows::ScratchRows(const Pixels& like, Sides sides, const std::string& folder)
    : like_(NewPixels(like, 1, 1)), sides_(sides), file_(folder, BytesFor(like, sides)) {}

uint64_t ScratchRows::BytesFor(const Pixels& like, Sides sides) {
  return RowBytesOf(like, sides.width) * static_cast<uint64_t>(sides.height) *
         static_cast<uint64_t>(PlanesOf(like));
}

void ScratchRows::ForPieces(int left, int top, int width, int height,
                            const std::function<void(const Piece&)>& use) const {
  const uint64_t rowBytes = RowBytesOf(like_, sides_.width);
  const uint64_t columnStride = StrideFor(like_, kColumnWidth);
  for (int plane = 0; plane < PlanesOf(like_); ++plane) {
    for (int y = top; y < top + height;) {
      const int block = y / kBlockRows * kBlockRows;
      const int blockRows = std::min(kBlockRows, sides_.height - block);
      const int rows = std::min(top + height, block + blockRows) - y;
      const uint64_t start = (static_cast<uint64_t>(plane) * static_cast<uint64_t>(sides_.height) +
                              static_cast<uint64_t>(block)) *
                             rowBytes;
      for (int column = left / kColumnWidth; column * kColumnWidth < left + width; ++column) {
        const int x = column * kColumnWidth;
        const int columnWidth = std::min(kColumnWidth, sides_.width - x);
        const uint64_t stride = StrideFor(like_, columnWidth);
        const uint64_t position =
            start +
            static_cast<uint64_t>(column) * columnStride * static_cast<uint64_t>(blockRows) +
            static_cast<uint64_t>(y - block) * stride;
        use({plane, x, columnWidth, y, rows, position, static_cast<size_t>(stride)});
      }
      y += rows;
    }
  }
}

void ScratchRows::Keep(const Pixels& rows, int top) {
  ForPieces(0, top, sides_.width, HeightOf(rows), [&](const Piece& piece) {
    const size_t bytes = piece.stride * static_cast<size_t>(piece.height);
    std::vector<uint8_t>& buffer = PieceBuffer(bytes);
    if (const auto* samples = std::get_if<Samples>(&rows)) {
      const size_t skipped = static_cast<size_t>(piece.left) * samples->PixelBytes();
      for (int y = 0; y < piece.height; ++y) {
        std::memcpy(buffer.data() + piece.stride * static_cast<size_t>(y),
                    samples->Row(piece.top - top + y, piece.plane) + skipped, piece.stride);
      }
    } else {
      Pixels part = PixelsInMemory(buffer.data(), like_, piece.width, piece.height);
      CopyPart(rows, {piece.left, piece.top - top, piece.width, piece.height}, part, 0, 0);
    }
    file_.Write(piece.position, {buffer.data(), bytes});
  });
}

void ScratchRows::Read(int left, int top, Pixels& target) {
  const int right = left + WidthOf(target);
  ForPieces(left, top, WidthOf(target), HeightOf(target), [&](const Piece& piece) {
    const size_t bytes = piece.stride * static_cast<size_t>(piece.height);
    std::vector<uint8_t>& buffer = PieceBuffer(bytes);
    file_.Read(piece.position, {buffer.data(), bytes});
    const int first = std::max(left, piece.left);
    const int count = std::min(right, piece.left + piece.width) - first;
    if (auto* samples = std::get_if<Samples>(&target)) {
      const size_t pixel = samples->PixelBytes();
      for (int y = 0; y < piece.height; ++y) {
        std::memcpy(samples->Row(piece.top - top + y, piece.plane) +
                        static_cast<size_t>(first - left) * pixel,
                    buffer.data() + piece.stride * static_cast<size_t>(y) +
                        static_cast<size_t>(first - piece.left) * pixel,
                    static_cast<size_t>(count) * pixel);
      }
    } else {
      const Pixels part = PixelsInMemory(buffer.data(), like_, piece.width, piece.height);
      CopyPart(part, {first - piece.left, 0, count, piece.height}, target, first - left,
               piece.top - top);
    }
  });
}

}  // namespace rasterkit::detail
