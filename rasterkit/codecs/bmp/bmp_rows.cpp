#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_rows.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// Bytes per read: large enough for few calls, small enough to finish rows while they are in the
/// cache.
constexpr size_t kBatchBytes = 512 * 1024;
/// Limit of the system for one scattered read.
constexpr size_t kBatchRows = 1024;

/// Bytes of a row of the file, with and without padding.
size_t FileStride(const BmpHeader& header) {
  return static_cast<size_t>(StrideBytes(header.width, header.bits));
}
uint64_t FileRowBytes(const BmpHeader& header) {
  return (static_cast<uint64_t>(header.width) * static_cast<uint64_t>(header.bits) + 7) / 8;
}

class RowReader {
 public:
  RowReader(TStream& stream, const BmpHeader& header, const BmpRowRules& rules, Raster& raster)
      : stream_(stream),
        header_(header),
        rules_(rules),
        raster_(raster),
        stride_(FileStride(header)),
        batchRows_(static_cast<int>(std::clamp<size_t>(kBatchBytes / stride_, 1, kBatchRows))) {}

  /// Fills all rows, missing data with zeros; returns the number of complete rows.
  int Read();

 private:
  /// The row of the raster for row `index` of the file.
  uint8_t* Target(int index) {
    return raster_.Row(header_.topDown ? index : header_.height - 1 - index);
  }
  /// Reads up to `count` rows from row `first` on; returns the bytes that were there.
  size_t ReadBatch(int first, int count);
  size_t ReadStraight(int first, int count);
  size_t ReadConverted(int count);
  /// `place` is the offset of the row in its batch, of which `got` bytes were there.
  void FinishRow(int index, size_t place, size_t got);
  /// Sets the rows from row `first` of the file on to 0, for which memory need not be held.
  void ClearMissing(int first);

  TStream& stream_;
  const BmpHeader& header_;
  const BmpRowRules& rules_;
  Raster& raster_;
  const size_t stride_;
  const int batchRows_;
  std::vector<std::span<uint8_t>> pieces_;
  std::vector<uint8_t> buffer_;
};

size_t RowReader::ReadStraight(int first, int count) {
  pieces_.clear();
  for (int i = 0; i < count; ++i) {
    const std::span<uint8_t> row(Target(first + i), stride_);
    // Rows of a top-down file are contiguous: one read.
    if (!pieces_.empty() && pieces_.back().data() + pieces_.back().size() == row.data()) {
      pieces_.back() = {pieces_.back().data(), pieces_.back().size() + row.size()};
    } else {
      pieces_.push_back(row);
    }
  }
  return stream_.ReadScattered(pieces_);
}

size_t RowReader::ReadConverted(int count) {
  buffer_.resize(static_cast<size_t>(count) * stride_);
  return stream_.Read(buffer_);
}

size_t RowReader::ReadBatch(int first, int count) {
  return rules_.isConverted ? ReadConverted(count) : ReadStraight(first, count);
}

void RowReader::FinishRow(int index, size_t place, size_t got) {
  const size_t there = got > place ? std::min(got - place, stride_) : 0;
  uint8_t* source = rules_.isConverted ? buffer_.data() + place : Target(index);
  std::memset(source + there, 0, stride_ - there);
  if (rules_.finish) rules_.finish(source, Target(index));
}

void RowReader::ClearMissing(int first) {
  const int missing = header_.height - first;
  const int top = header_.topDown ? first : 0;
  ClearRows(raster_, top, top + missing);
  if (!rules_.changesZeros) return;
  const std::vector<uint8_t> zeros(rules_.isConverted ? stride_ : 0);
  for (int y = top; y < top + missing; ++y) {
    uint8_t* row = raster_.Row(y);
    rules_.finish(rules_.isConverted ? zeros.data() : row, row);
  }
}

int RowReader::Read() {
  const size_t padding = stride_ - FileRowBytes(header_);
  int complete = 0;
  bool isAtEnd = false;
  int count = 0;
  for (int first = 0; first < header_.height && !isAtEnd; first += count) {
    RequireTime();
    count = std::min(batchRows_, header_.height - first);
    const size_t got = ReadBatch(first, count);
    for (int i = 0; i < count; ++i) FinishRow(first + i, static_cast<size_t>(i) * stride_, got);
    // The padding of the last row may be missing.
    const int there =
        static_cast<int>(std::min((got + padding) / stride_, static_cast<size_t>(count)));
    complete += there;
    isAtEnd = there < count;
    if (isAtEnd) ClearMissing(first + count);
  }
  return complete;
}

}  // namespace

void RequireOneBmpRow(const BmpHeader& header) {
  if (header.pixelBytes >= FileRowBytes(header)) return;
  throw FormatError("BMP: the data end inside the first of " + std::to_string(header.height) +
                    " rows");
}

void RequirePlausibleBmpRows(const BmpHeader& header, uint64_t pictureBytes,
                             std::string_view what) {
  const uint64_t stored =
      SaturatedProduct(FileStride(header), static_cast<uint64_t>(header.height));
  RequirePlausible({pictureBytes, stored, header.pixelBytes, kPlainSlack}, what);
}

void ReadBmpRows(TStream& stream, const BmpHeader& header, const BmpRowRules& rules, Raster& raster,
                 CodecReport& report) {
  RequireOneBmpRow(header);
  const int there = RowReader(stream, header, rules, raster).Read();
  raster.ClearPadding();
  if (there < header.height) {
    report.AddDamage("BMP: premature end of data, " + std::to_string(there) + " of " +
                     std::to_string(header.height) + " rows are complete");
  }
}

}  // namespace rasterkit::detail
