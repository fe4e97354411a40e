#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/tiff/rows/part_bits.h>
#include <rasterkit/codecs/tiff/rows/plain_parts.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

/// Bytes per read of rows: few enough to stay in the cache until they are converted.
constexpr size_t kPieceBytes = 256 << 10;
/// Bytes between two parts of rows that are read along instead of being skipped.
constexpr size_t kReadGap = 8 << 10;
/// Shorter rows are read together into a buffer: a piece of a scattered read costs as much as
/// copying them.
constexpr size_t kScatteredBytes = 4 << 10;
/// Pixels of larger targets are stored past the caches: they would not stay there.
constexpr uint64_t kStreamedBytes = uint64_t{32} << 20;
constexpr const char* kEndsEarly = "the data end early";

uint32_t RowsOfPiece(size_t rowBytes) {
  return static_cast<uint32_t>(std::max<size_t>(1, kPieceBytes / rowBytes));
}

uint8_t* Room(PixelMemory& memory, size_t bytes) {
  if (memory.Size() < bytes) memory = PixelMemory(bytes);
  return memory.Data();
}

}  // namespace

PlainParts::PlainParts(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                       const TiffBlanks& blanks, TiffFaults& faults)
    : handle_(handle),
      layout_(layout),
      reader_(handle, layout, blanks),
      writer_(MakeRowWriter(layout, colors)),
      faults_(faults) {}

size_t PlainParts::SampleBits() const {
  const size_t samples = layout_.planes.size() > 1 ? 1 : static_cast<size_t>(layout_.pitch);
  return samples * static_cast<size_t>(layout_.bits);
}

/// Rows `first` to `first + rows - 1` of a block of one plane that are there.
uint32_t PlainParts::PlaneRows(uint32_t block, uint32_t first, uint32_t rows,
                               std::vector<std::string>& notes) const {
  const auto [offset, count] = reader_.ExtentOf(block);
  if (offset == 0 && count == 0) return rows;
  const uint64_t skipped = uint64_t{first} * layout_.grid.rowBytes;
  // What the tags do not even state is no surprise.
  if (count <= skipped) return 0;
  const uint64_t there = offset < Size() ? std::min(count, Size() - offset) : 0;
  const uint64_t whole = there > skipped ? (there - skipped) / layout_.grid.rowBytes : 0;
  if (whole >= rows) return rows;
  notes.emplace_back(kEndsEarly);
  return static_cast<uint32_t>(whole);
}

/// A block is judged in pieces of a fixed height, so that the notes do not depend on the part.
PlainParts::Stored PlainParts::StoredRows(uint32_t position, uint32_t height) const {
  const uint32_t perPlane = layout_.grid.PerPlane();
  const uint32_t piece = RowsOfPiece(layout_.grid.rowBytes);
  Stored stored;
  uint32_t least = height;
  for (const uint16_t plane : layout_.planes) {
    std::vector<std::string> ignored;
    const auto [offset, count] = reader_.ExtentOf(plane * perPlane + position);
    if (offset != 0 || count != 0) stored.isSparse = false;
    least = std::min(least, PlaneRows(plane * perPlane + position, 0, height, ignored));
  }
  stored.rows = least;
  if (least == height) return stored;
  const uint32_t first = least / piece * piece;
  uint32_t there = std::min(piece, height - first);
  for (const uint16_t plane : layout_.planes) {
    if (there == 0) break;
    const uint32_t rows = std::min(piece, height - first);
    there = std::min(there, PlaneRows(plane * perPlane + position, first, rows, stored.notes));
  }
  return stored;
}

bool PlainParts::HasRows(uint32_t position, std::vector<std::string>& notes) const {
  Stored stored = StoredRows(position, PlaceOfBlock(layout_, position).height);
  notes = std::move(stored.notes);
  return stored.rows > 0;
}

PlainParts::Columns PlainParts::ColumnsOf(const TiffPart& place, const TiffPart& wanted) const {
  const size_t bits = SampleBits();
  Columns columns;
  columns.first = wanted.left - place.left;
  columns.count = wanted.width;
  if (bits % 8 != 0) columns.before = columns.first % 8;
  columns.at = size_t{columns.first - columns.before} * bits / 8;
  const bool isToEdge = columns.first + columns.count == layout_.grid.width;
  const size_t end =
      isToEdge ? layout_.grid.rowBytes : ((size_t{columns.first} + columns.count) * bits + 7) / 8;
  columns.bytes = end - columns.at;
  return columns;
}

void PlainParts::Read(uint32_t position, const TiffPart& part, const TiffTarget& target) {
  const TiffPart place = PlaceOfBlock(layout_, position);
  const TiffPart wanted = place.Common(part);
  const Columns columns = ColumnsOf(place, wanted);
  const uint32_t first = wanted.top - place.top;
  Stored stored = StoredRows(position, place.height);
  const uint32_t there = std::clamp(stored.rows, first, first + wanted.height) - first;
  if (there < wanted.height) {
    faults_.Add(position, place.height - stored.rows, std::move(stored.notes));
  }
  const size_t bit = size_t{wanted.left - part.left} * static_cast<size_t>(target.bitsPerPixel) % 8;
  uint8_t* row = target.Row(wanted.top - part.top) +
                 size_t{wanted.left - part.left} * static_cast<size_t>(target.bitsPerPixel) / 8;
  // All rows of a sparse block are equal.
  const uint32_t read = stored.isSparse ? std::min(there, 1u) : there;
  isStreamed_ = layout_.rows == TiffRowKind::rgb && WorksInPlace(layout_) &&
                uint64_t{part.height} * target.stride >= kStreamedBytes;
  const size_t gap = layout_.grid.rowBytes - columns.bytes;
  const uint32_t piece = RowsOfPiece(columns.bytes + (gap <= kReadGap ? gap : 0));
  uint32_t done = 0;
  while (done < read) {
    RequireTime();
    const uint32_t rows = std::min(piece, read - done);
    const uint32_t got = ReadRows(position, first + done, rows, columns, row + done * target.stride,
                                  target.stride, bit, target.bitsPerPixel);
    done += got;
    if (got == rows) continue;
    faults_.Add(position, place.height - first - done, {kEndsEarly});
    break;
  }
  if (stored.isSparse && done > 0) {
    const size_t bits = size_t{wanted.width} * static_cast<size_t>(target.bitsPerPixel);
    for (; done < there; done++) {
      CopyPartBits(row, bit, row + done * target.stride, bit, bits);
    }
  }
  FillRows(target, row + done * target.stride, bit, wanted.width, wanted.height - done);
}

/// Reads and converts rows; returns how many were there.
uint32_t PlainParts::ReadRows(uint32_t position, uint32_t first, uint32_t rows,
                              const Columns& columns, uint8_t* target, size_t stride, size_t bit,
                              int bitsPerPixel) {
  const bool isAligned = bit == 0 && columns.before == 0;
  const size_t rowBytes = layout_.grid.rowBytes, gap = rowBytes - columns.bytes;
  // Exchanged pixels are written from one cache to the next, or past the caches.
  const bool isExchanged = layout_.rows == TiffRowKind::rgb;
  const bool isInPlace = isAligned && WorksInPlace(layout_) && !isExchanged &&
                         (columns.bytes >= kScatteredBytes || (gap == 0 && stride == rowBytes));
  size_t pitch = stride, planeBytes = 0;
  uint8_t* place = target;
  if (!isInPlace) {
    pitch = gap <= kReadGap ? rowBytes : columns.bytes;
    planeBytes = pitch * rows;
    place = Room(samples_, planeBytes * layout_.planes.size());
  }
  planes_.clear();
  uint32_t there = rows;
  for (const uint16_t plane : layout_.planes) {
    planes_.push_back(place);
    const uint32_t block = plane * layout_.grid.PerPlane() + position;
    there = std::min(there, ReadPlane(block, first, rows, columns, {place, pitch, !isInPlace}));
    place += planeBytes;
  }
  const size_t width = size_t{columns.before} + columns.count;
  for (uint32_t i = 0; i < there; i++, target += stride) {
    if (isAligned && isStreamed_) {
      kernels::StreamRedBlue24(planes_[0], width, target);
    } else if (isAligned) {
      writer_->Write(planes_.data(), width, target);
    } else {
      uint8_t* row = Room(converted_, (width * static_cast<size_t>(bitsPerPixel) + 7) / 8);
      writer_->Write(planes_.data(), width, row);
      PutRow(row, columns.before, columns.count, target, bit, bitsPerPixel);
    }
    for (const uint8_t*& plane : planes_) plane += pitch;
  }
  return there;
}

/// Reads rows of samples of one plane in the order of the processor; returns how many were there.
uint32_t PlainParts::ReadPlane(uint32_t block, uint32_t first, uint32_t rows,
                               const Columns& columns, const SampleRows& samples) {
  const auto [target, pitch, mayFillGaps] = samples;
  const auto [offset, count] = reader_.ExtentOf(block);
  if (offset == 0 && count == 0) {
    for (uint32_t i = 0; i < rows; i++) reader_.FillSparse(target + i * pitch, columns.bytes);
    return rows;
  }
  TiffSource& source = handle_.Source();
  const size_t rowBytes = layout_.grid.rowBytes, gap = rowBytes - columns.bytes;
  const uint64_t at = offset + uint64_t{first} * rowBytes + columns.at;
  uint32_t whole = 0;
  // Between the rows of a target lie pixels of other blocks, which may be there already: exactly
  // the columns are written. An equal pitch alone says nothing, the target can be as wide as a
  // tile.
  if (pitch == rowBytes && (gap == 0 || mayFillGaps)) {
    const size_t got = source.ReadAt(at, {target, rows * rowBytes - gap});
    whole = static_cast<uint32_t>((got + gap) / rowBytes);
  } else if (gap <= kReadGap && rows > 1) {
    const std::span<uint8_t> skipped(Room(gap_, gap), gap);
    pieces_.clear();
    for (uint32_t i = 0; i < rows; i++) {
      pieces_.emplace_back(target + i * pitch, columns.bytes);
      if (gap > 0 && i + 1 < rows) pieces_.push_back(skipped);
    }
    const size_t got = source.ReadAt(at, std::span<const std::span<uint8_t>>(pieces_));
    whole = static_cast<uint32_t>((got + gap) / rowBytes);
  } else {
    for (; whole < rows; whole++) {
      const std::span<uint8_t> row(target + whole * pitch, columns.bytes);
      if (source.ReadAt(at + uint64_t{whole} * rowBytes, row) != columns.bytes) break;
    }
  }
  if (pitch == columns.bytes) {
    reader_.ToProcessorOrder(target, whole * columns.bytes);
  } else {
    for (uint32_t i = 0; i < whole; i++)
      reader_.ToProcessorOrder(target + i * pitch, columns.bytes);
  }
  return whole;
}

void PlainParts::PutRow(const uint8_t* row, size_t before, size_t width, uint8_t* target,
                        size_t bit, int bitsPerPixel) const {
  const auto bits = static_cast<size_t>(bitsPerPixel);
  CopyPartBits(row, before * bits, target, bit, width * bits);
}

void PlainParts::FillRows(const TiffTarget& target, uint8_t* row, size_t bit, uint32_t width,
                          uint32_t rows) {
  if (rows == 0) return;
  uint8_t* blank = Room(converted_, target.BytesOf(width) + target.blank.size());
  FillMissingPixels(target, width, blank);
  for (uint32_t i = 0; i < rows; i++) {
    PutRow(blank, 0, width, row + i * target.stride, bit, target.bitsPerPixel);
  }
}

}  // namespace rasterkit::detail
