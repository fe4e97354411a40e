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

class FileRows {
 public:
  FileRows(TStream& stream, const BmpHeader& header, const BmpRowRules& rules, int top,
           Raster& raster)
      : stream_(stream),
        header_(header),
        rules_(rules),
        top_(top),
        raster_(raster),
        stride_(FileStride(header)),
        batchRows_(static_cast<int>(std::clamp<size_t>(kBatchBytes / stride_, 1, kBatchRows))) {}

  /// Fills all rows, missing data with zeros. `start` is the place of the first row of the file.
  void Read(uint64_t start);
  /// The same for rows whose first pixel is `left`.
  void ReadParts(uint64_t start, int left);

 private:
  /// The row of the raster for row `index` of the file.
  uint8_t* Target(int index) {
    return raster_.Row((header_.topDown ? index : header_.height - 1 - index) - top_);
  }
  /// Reads up to `count` rows from row `first` on; returns the bytes that were there.
  size_t ReadBatch(int first, int count);
  size_t ReadStraight(int first, int count);
  size_t ReadConverted(int count);
  /// `place` is the offset of the row in its batch, of which `got` bytes were there.
  void FinishRow(int index, size_t place, size_t got);
  /// Sets the rows `first` to `end` - 1 of the file to 0, for which memory need not be held.
  void ClearMissing(int first, int end);
  /// The first row of the file that is wanted.
  int First() const { return header_.topDown ? top_ : header_.height - top_ - raster_.Height(); }

  TStream& stream_;
  const BmpHeader& header_;
  const BmpRowRules& rules_;
  const int top_;
  Raster& raster_;
  const size_t stride_;
  const int batchRows_;
  std::vector<std::span<uint8_t>> pieces_;
  std::vector<uint8_t> buffer_;
};

size_t FileRows::ReadStraight(int first, int count) {
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

size_t FileRows::ReadConverted(int count) {
  buffer_.resize(static_cast<size_t>(count) * stride_);
  return stream_.Read(buffer_);
}

size_t FileRows::ReadBatch(int first, int count) {
  return rules_.isConverted ? ReadConverted(count) : ReadStraight(first, count);
}

void FileRows::FinishRow(int index, size_t place, size_t got) {
  const size_t there = got > place ? std::min(got - place, stride_) : 0;
  uint8_t* source = rules_.isConverted ? buffer_.data() + place : Target(index);
  std::memset(source + there, 0, stride_ - there);
  if (rules_.finish) {
    rules_.finish(source, Target(index), static_cast<size_t>(raster_.Width()));
  }
}

void FileRows::ClearMissing(int first, int end) {
  const int last = header_.topDown ? first : header_.height - end;
  const int top = last - top_, bottom = top + (end - first);
  ClearRows(raster_, top, bottom);
  if (!rules_.changesZeros) return;
  const std::vector<uint8_t> zeros(rules_.isConverted ? stride_ : 0);
  for (int y = top; y < bottom; ++y) {
    uint8_t* row = raster_.Row(y);
    rules_.finish(rules_.isConverted ? zeros.data() : row, row,
                  static_cast<size_t>(raster_.Width()));
  }
}

void FileRows::Read(uint64_t start) {
  const int end = First() + raster_.Height();
  stream_.SetPosition(start + static_cast<uint64_t>(First()) * stride_);
  for (int first = First(); first < end;) {
    RequireTime();
    const int count = std::min(batchRows_, end - first);
    const size_t got = ReadBatch(first, count);
    for (int i = 0; i < count; ++i) FinishRow(first + i, static_cast<size_t>(i) * stride_, got);
    first += count;
    if (got >= static_cast<size_t>(count) * stride_ || first == end) continue;
    return ClearMissing(first, end);
  }
}

void FileRows::ReadParts(uint64_t start, int left) {
  constexpr size_t kByte = 8;
  const size_t pixelBytes = static_cast<size_t>(header_.bits) / kByte;
  const size_t bytes = pixelBytes * static_cast<size_t>(raster_.Width());
  if (rules_.isConverted) buffer_.resize(bytes);
  for (int index = First(); index < First() + raster_.Height(); ++index) {
    RequireTime();
    uint8_t* source = rules_.isConverted ? buffer_.data() : Target(index);
    stream_.SetPosition(start + static_cast<uint64_t>(index) * stride_ +
                        static_cast<uint64_t>(left) * pixelBytes);
    const size_t got = stream_.Read({source, bytes});
    std::memset(source + got, 0, bytes - got);
    if (rules_.finish) {
      rules_.finish(source, Target(index), static_cast<size_t>(raster_.Width()));
    }
  }
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

int CompleteBmpRows(const BmpHeader& header) {
  // The padding of the last row may be missing.
  const uint64_t padding = FileStride(header) - FileRowBytes(header);
  return static_cast<int>(std::min((header.pixelBytes + padding) / FileStride(header),
                                   static_cast<uint64_t>(header.height)));
}

void ReadBmpRows(TStream& stream, uint64_t start, const BmpHeader& header, const BmpRowRules& rules,
                 const BmpPlace& place, Raster& raster) {
  FileRows rows(stream, header, rules, place.top, raster);
  if (raster.Width() == header.width) {
    rows.Read(start);
  } else {
    rows.ReadParts(start, place.left);
  }
  raster.ClearPadding();
}

}  // namespace rasterkit::detail
