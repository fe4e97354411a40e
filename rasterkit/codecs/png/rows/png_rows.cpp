#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/png/rows/png_inflate.h>
#include <rasterkit/codecs/png/rows/png_rows.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/kernels/filters/unfilter_row.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

uint8_t* RowOf(Pixels& pixels, int y) {
  return std::visit([y](auto& rows) { return rows.Row(y); }, pixels);
}

/// Bytes of a row of such pixels, of which `like` has one.
uint64_t RowBytesOf(const Pixels& like, uint32_t width) {
  if (const auto* samples = std::get_if<Samples>(&like)) return samples->Stride() * uint64_t{width};
  return StrideBytes(width, StoredBitsPerPixel(std::get<Raster>(like).Format()));
}

}  // namespace

PngRows::PngRows(TStream& stream, const PngOpening& opening)
    : stream_(stream),
      map_(MapPng(stream)),
      reader_(stream),
      kind_(opening.kind ? *opening.kind : PngRowKindOf(map_)),
      isAutomatic_(opening.way == PngWay::automatic) {
  facts_ = ReadPngFacts(reader_, map_.isTruncated);
  like_ = PngRowsLike(reader_, facts_, kind_, noticed_);
  const uint64_t rowBytes = RowBytesOf(like_, facts_.width), need = rowBytes * facts_.height;
  RequirePngSize(facts_, need, opening.isWhole ? need : rowBytes, map_.fileBytes);
  end_ = Height();
}

void PngRows::Begin() {
  hasBegun_ = true;
  RequestPngRows(reader_, facts_, kind_);
  if (facts_.interlaced) return;
  if (isAutomatic_) inflated_ = InflatePng(stream_, map_, facts_);
  isInOneCall_ = inflated_.Size() != 0;
  if (IsInOneCall()) {
    change_.emplace(reader_, facts_, kind_);
    zeros_.resize(inflated_.Size() / facts_.height - 1);
    return;
  }
  reader_.Run([&] {
    png_set_interlace_handling(reader_.Png());
    png_start_read_image(reader_.Png());
  });
}

void PngRows::Read(int left, int top, Pixels& target) {
  const int count = HeightOf(target);
  if (left != 0 || WidthOf(target) != Width() || top < next_ || count > Height() - top ||
      (facts_.interlaced && count != Height())) {
    throw RangeError("PNG: rows are read in full width from top to bottom");
  }
  if (hasFailed_) reader_.Errors().Throw();
  if (!hasBegun_) Begin();
  if (facts_.interlaced) {
    end_ = ReadPngPasses(reader_, facts_, [&](int y) { return RowOf(target, y); });
    next_ = Height();
    for (int y = 0; facts_.bitDepth == 2 && kind_ == PngRowKind::colors && y < end_; y++) {
      ExpandTwoBits(RowOf(target, y), Width());
    }
  } else if (IsInOneCall()) {
    ReadInflated(target, top, count);
  } else {
    ReadByLibrary(target, top, count);
  }
  FillMissing(target, std::clamp(end_ - top, 0, count));
  if (auto* raster = std::get_if<Raster>(&target)) raster->ClearPadding();
}

Pixels PngRows::ReadWhole() {
  Pixels whole;
  if (auto* like = std::get_if<Raster>(&like_)) {
    const TPixelFormat format = like->Format();
    RasterProperties properties = std::move(like->Properties());
    like_ = Raster();
    Raster raster(format, Width(), Height());
    raster.Properties() = std::move(properties);
    whole = std::move(raster);
  } else {
    const PixelLayout layout = std::get<Samples>(like_).Layout();
    const Resolution resolution = std::get<Samples>(like_).resolution;
    like_ = Raster();
    Samples samples(layout, Width(), Height());
    samples.resolution = resolution;
    whole = std::move(samples);
  }
  Read(0, 0, whole);
  return whole;
}

const uint8_t* PngRows::NextInflated() {
  const size_t rowBytes = zeros_.size();
  uint8_t* row = inflated_.Data() + static_cast<size_t>(next_) * (rowBytes + 1);
  const uint8_t* above = next_ == 0 ? zeros_.data() : row - rowBytes;
  const size_t pixelBytes = std::max(1u, facts_.SampleBits() / 8);
  kernels::UnfilterRow(row[0], above, rowBytes, pixelBytes, row + 1);
  next_++;
  return row + 1;
}

void PngRows::ReadInflated(Pixels& target, int first, int count) {
  while (next_ < first) {
    RequireTime();
    NextInflated();
  }
  for (int y = 0; y < count; y++) {
    RequireTime();
    change_->Make(NextInflated(), RowOf(target, y));
  }
  if (next_ == Height()) inflated_ = {};
}

void PngRows::ReadByLibrary(Pixels& target, int first, int count) {
  png_structp png = reader_.Png();
  if (next_ < first && skipped_.empty()) skipped_.resize(RowBytesOf(like_, facts_.width));
  const bool isWhole = end_ < Height() || reader_.Try([&] {
    for (; next_ < first + count; next_++) {
      RequireTime();
      png_read_row(png, next_ < first ? skipped_.data() : RowOf(target, next_ - first), nullptr);
    }
  });
  if (!isWhole) {
    hasFailed_ = !EndsEarly(reader_) || next_ == 0;
    if (hasFailed_) reader_.Errors().Throw();
    reader_.NoteEndOfRows();
    end_ = next_;
  }
  next_ = first + count;
  if (facts_.bitDepth != 2 || kind_ != PngRowKind::colors) return;
  for (int y = 0; y < std::min(count, end_ - first); y++) ExpandTwoBits(RowOf(target, y), Width());
}

void PngRows::FillMissing(Pixels& target, int first) {
  if (auto* raster = std::get_if<Raster>(&target)) return FillMissingRows(*raster, first);
  auto& samples = std::get<Samples>(target);
  // White and opaque.
  for (int y = first; y < samples.Height(); y++) {
    std::memset(samples.Row(y), 0xFF, samples.Stride());
  }
}

void PngRows::Finish(CodecReport& report) {
  const bool isRead = next_ == Height();
  const bool isWhole = end_ == Height() && !reader_.RanDry();
  if (isRead && !isJudged_ && isWhole && !IsInOneCall()) CheckPngEnd(reader_);
  report.Append(noticed_);
  noticed_ = {};
  if (isRead && !isJudged_) {
    NotePngDamage(reader_, facts_, end_, report);
    isJudged_ = true;
  }
  saidWarnings_ = reader_.Errors().CopyTo(report, saidWarnings_);
}

}  // namespace rasterkit::detail
