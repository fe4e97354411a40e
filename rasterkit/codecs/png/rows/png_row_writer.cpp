#include <algorithm>
#include <cstring>
#include <memory>

#include <libdeflate.h>

#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/rows/png_inflate.h>
#include <rasterkit/codecs/png/rows/png_row_writer.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/call_or_leave.h>

namespace rasterkit::detail {
namespace {

/// Bytes of packed pixels per chunk.
constexpr size_t kChunkBytes = size_t{1} << 18;
/// libpng packs only what comes before the pixels.
constexpr int kFrameLevel = -1;

unsigned BitsOf(const PngForm& form) {
  return static_cast<unsigned>(form.bits * PngSize{1, 1, form}.Bands());
}

PngRowShape ShapeOf(const PngForm& form, WrittenSize size) {
  const unsigned bits = BitsOf(form);
  return {(static_cast<size_t>(size.width) * bits + 7) / 8, std::max(1u, bits / 8), size.height};
}

uint64_t FilteredBytes(const PngForm& form, WrittenSize size) {
  return FilteredPngBytes(static_cast<uint64_t>(size.width), static_cast<uint64_t>(size.height),
                          BitsOf(form));
}

struct FreeCompressor {
  void operator()(libdeflate_compressor* packer) const { libdeflate_free_compressor(packer); }
};

/// One call of the packer, which may outlive the writer.
struct PackedAtOnce {
  std::unique_ptr<libdeflate_compressor, FreeCompressor> packer;
  PixelMemory rows, packed;
  size_t bytes = 0;

  void Pack() {
    bytes = libdeflate_zlib_compress(packer.get(), rows.Data(), rows.Size(), packed.Data(),
                                     packed.Size());
  }
};

/// Drops the fourth byte of each pixel and exchanges the first and the third one.
void TakeColors(const uint8_t* pixels, int width, uint8_t* target) {
  for (int x = 0; x < width; x++, pixels += 4, target += 3) {
    target[0] = pixels[2];
    target[1] = pixels[1];
    target[2] = pixels[0];
  }
}

}  // namespace

PngRowWriter::PngRowWriter(PngPlan plan, WrittenSize size, const Pixels& like,
                           const PictureWriting& writing, TStream& stream)
    : plan_(std::move(plan)),
      size_(size),
      keyColor_(PngFrame::KeyColorOf(like)),
      writing_(writing),
      stream_(stream),
      packing_(PngPackingFor(plan_.form, writing.pngLevel)),
      shape_(ShapeOf(plan_.form, size)),
      row_(shape_.bytes) {
  const uint64_t bytes = FilteredBytes(plan_.form, size);
  if (bytes <= kPngBytesInOneCall) {
    above_.resize(shape_.bytes);
    candidate_.resize(shape_.bytes);
    if (plan_.followsIndexes) indexes_.resize(static_cast<size_t>(size.width));
    filtered_ = PixelMemory(static_cast<size_t>(bytes));
    return;
  }
  frame_.emplace(plan_, size_, keyColor_, writing_, stream_);
  frame_->WriteFront(kFrameLevel);
  stripes_.emplace(shape_, packing_, writing.threads,
                   [this](std::span<const uint8_t> packed) { frame_->WriteData(packed); });
}

bool PngRowWriter::CanBegin(const PngPlan& plan, WrittenSize size) {
  return !plan.followsIndexes || FilteredBytes(plan.form, size) <= kPngBytesInOneCall;
}

const uint8_t* PngRowWriter::FileRow(const Pixels& rows, int y) {
  const uint8_t* row = plan_.row(rows, y);
  const auto width = static_cast<size_t>(size_.width);
  if (plan_.dropsFourth) {
    TakeColors(row, size_.width, row_.data());
  } else if (plan_.isBlueFirst && shape_.pixelBytes == 3) {
    kernels::ExchangeRedBlue24(row, width, row_.data());
  } else if (plan_.isBlueFirst) {
    kernels::ExchangeRedBlue32(row, width, row_.data());
  } else if (plan_.hasNativeWords) {
    for (size_t i = 0; i < shape_.bytes; i += 2) {
      row_[i] = row[i + 1];
      row_[i + 1] = row[i];
    }
  } else {
    std::memcpy(row_.data(), row, shape_.bytes);
  }
  return row_.data();
}

void PngRowWriter::FollowIndexes(const Raster& rows) {
  for (int y = 0; y < rows.Height(); y++) {
    UnpackIndexes(rows.Row(y), rows.Format(), rows.Width(), indexes_.data());
    largestIndex_ =
        std::max<int>(largestIndex_, *std::max_element(indexes_.begin(), indexes_.end()));
  }
}

void PngRowWriter::Write(Pixels& rows) {
  Write(std::as_const(rows));
}

void PngRowWriter::Write(const Pixels& rows) {
  const LimitsScope limits;
  const int count = HeightOf(rows);
  if (WidthOf(rows) != size_.width || count > size_.height - next_) {
    throw RangeError("PNG: more rows than the picture has, or of another width");
  }
  if (plan_.followsIndexes) FollowIndexes(std::get<Raster>(rows));
  for (int y = 0; y < count; y++, next_++) {
    RequireTime();
    const uint8_t* row = FileRow(rows, y);
    if (stripes_) {
      stripes_->Add(row);
      continue;
    }
    uint8_t* target = filtered_.Data() + static_cast<size_t>(next_) * (shape_.bytes + 1);
    FilterPngRow(packing_.filtering, row, above_.data(), shape_.bytes, shape_.pixelBytes,
                 candidate_.data(), target);
    std::swap(row_, above_);
  }
}

void PngRowWriter::WriteSmall() {
  // The highest level takes a second for a million bytes.
  constexpr size_t kMostAtOnce = size_t{1} << 16;
  const auto call = std::make_shared<PackedAtOnce>();
  const std::span<const uint8_t> rows(filtered_.Data(), filtered_.Size());
  call->packer.reset(libdeflate_alloc_compressor(PngLevelFor(packing_, rows, shape_.bytes + 1)));
  if (!call->packer) throw LimitError("PNG: the packer has no memory");
  call->packed = PixelMemory(libdeflate_zlib_compress_bound(call->packer.get(), filtered_.Size()));
  call->rows = std::move(filtered_);
  if (rows.size() <= kMostAtOnce) {
    call->Pack();
  } else {
    CallOrLeave([call] { call->Pack(); });
  }
  call->rows = {};
  for (size_t at = 0; at < call->bytes; at += kChunkBytes) {
    RequireTime();
    frame_->WriteData({call->packed.Data() + at, std::min(kChunkBytes, call->bytes - at)});
  }
}

WrittenPicture PngRowWriter::Finish() {
  const LimitsScope limits;
  if (next_ < size_.height) throw RangeError("PNG: rows of the picture are missing");
  if (!stripes_) {
    const auto entries = static_cast<size_t>(largestIndex_) + 1;
    if (plan_.followsIndexes && plan_.palette.size() < entries) plan_.palette.resize(entries);
    frame_.emplace(plan_, size_, keyColor_, writing_, stream_);
    frame_->WriteFront(kFrameLevel);
    WriteSmall();
  }
  frame_->WriteBack();
  return frame_->Written();
}

}  // namespace rasterkit::detail
