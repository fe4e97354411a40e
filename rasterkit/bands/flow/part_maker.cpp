#include <algorithm>
#include <utility>

#include <rasterkit/bands/flow/memory_rows.h>
#include <rasterkit/bands/flow/part_maker.h>
#include <rasterkit/bands/flow/scratch_rows.h>

namespace rasterkit::detail {
namespace {

/// The narrowest column; those of packed pixels begin at whole words.
constexpr int kColumnWidth = 256, kPackedColumnWidth = 1024;
constexpr int kMostTimesWider = 16;
/// Of a part and its source: few enough to stay near the processor.
constexpr uint64_t kMostPartBytes = uint64_t{8} << 20;
/// Blocks are larger by this part, so that few parts need another block.
constexpr size_t kSpare = 8;
/// What it costs to read a row of a part, as bytes that are read in the same time.
constexpr double kBytesPerRead = 4000;

}  // namespace

/// Wide columns need fewer reads, narrow ones fewer pixels of slanted sources.
PartMaker::PartMaker(const RowChain& chain, size_t level, int rows) : chain_(chain), level_(level) {
  const auto width = static_cast<uint64_t>(chain.SizeOf(level).width);
  const int narrowest = chain.RowBytes(level) < width ? kPackedColumnWidth : kColumnWidth;
  double least = 0;
  for (int times = 1; times <= kMostTimesWider; times *= 2) {
    const Part part = PartFor(narrowest * times, rows);
    if (times > 1 && part.bytes > kMostPartBytes) return;
    const double cost = (static_cast<double>(part.bytes) + kBytesPerRead * part.source.height) /
                        std::min<double>(static_cast<double>(width), narrowest * times);
    if (times > 1 && cost >= least) continue;
    least = cost;
    columnWidth_ = narrowest * times;
  }
}

int PartMaker::Columns() const {
  const int width = chain_.SizeOf(level_).width;
  return width / columnWidth_ + (width % columnWidth_ != 0 ? 1 : 0);
}

PartMaker::Part PartMaker::PartFor(int width, int rows) const {
  const Sides size = chain_.SizeOf(level_);
  width = std::min(size.width, width);
  rows = std::min(size.height, rows);
  Part part{{(size.width - width) / 2, (size.height - rows) / 2, width, rows}, 0};
  for (size_t level = level_;; --level) {
    part.bytes += BytesOfPixels(chain_.LikeOf(level), part.source.width, part.source.height);
    if (level == 0) return part;
    part.source = chain_.works[level - 1]->Needs(part.source);
  }
}

uint64_t PartMaker::BytesOfPart(int rows) const {
  const uint64_t bytes = PartFor(columnWidth_, rows).bytes;
  return bytes + bytes / kSpare;
}

std::unique_ptr<PartMaker::Blocks> PartMaker::TakeBlocks() {
  const std::lock_guard lock(blocksMutex_);
  if (freeBlocks_.empty()) return std::make_unique<Blocks>(level_ + 1);
  std::unique_ptr<Blocks> blocks = std::move(freeBlocks_.back());
  freeBlocks_.pop_back();
  return blocks;
}

Band PartMaker::NewPart(size_t level, const BandRect& rect, Blocks& blocks) const {
  const Pixels& like = chain_.LikeOf(level);
  const int width = std::max(1, rect.width), height = std::max(1, rect.height);
  const auto bytes = static_cast<size_t>(BytesOfPixels(like, width, height));
  if (blocks[level].Size() < bytes) {
    blocks[level] = {};
    blocks[level] = PixelMemory(bytes + bytes / kSpare);
  }
  return {PixelsInMemory(blocks[level].Data(), like, width, height), rect.left, rect.top};
}

Band PartMaker::PartOf(size_t level, const BandRect& rect, Blocks& blocks) {
  if (level == 0) {
    if (auto* memory = dynamic_cast<MemoryRows*>(chain_.source.get())) return memory->View();
    Band part = NewPart(0, rect, blocks);
    if (rect.width == 0 || rect.height == 0) return part;
    if (auto* scratch = dynamic_cast<ScratchRows*>(chain_.source.get())) {
      scratch->Read(rect.left, rect.top, part.pixels);
    } else {
      const std::lock_guard lock(readerMutex_);
      chain_.source->Read(rect.left, rect.top, part.pixels);
    }
    return part;
  }
  Band part = NewPart(level, rect, blocks);
  if (rect.width == 0 || rect.height == 0) return part;
  const BandWork& work = *chain_.works[level - 1];
  const Band source = PartOf(level - 1, work.Needs(rect), blocks);
  work.Make(source, part, {rect.top, rect.height});
  return part;
}

void PartMaker::Make(Band& target, RowRange rows, int column) {
  const int left = column * columnWidth_;
  const BandRect rect{left, rows.first, std::min(columnWidth_, chain_.SizeOf(level_).width - left),
                      rows.count};
  std::unique_ptr<Blocks> blocks = TakeBlocks();
  const Band part = PartOf(level_, rect, *blocks);
  CopyPart(part.pixels, {0, 0, rect.width, rect.height}, target.pixels, left,
           rows.first - target.top);
  const std::lock_guard lock(blocksMutex_);
  freeBlocks_.push_back(std::move(blocks));
}

}  // namespace rasterkit::detail
