#include <algorithm>
#include <utility>

#include <rasterkit/bands/flow/memory_rows.h>
#include <rasterkit/bands/flow/part_maker.h>
#include <rasterkit/bands/flow/scratch_rows.h>

namespace rasterkit::detail {
namespace {

/// A part that fits into the processor's cache with its source; columns of packed pixels begin at
/// whole words.
constexpr int kColumnWidth = 512, kPackedColumnWidth = 2048;

}  // namespace

int PartMaker::ColumnWidth() const {
  const auto width = static_cast<uint64_t>(chain_.SizeOf(level_).width);
  return chain_.RowBytes(level_) < width ? kPackedColumnWidth : kColumnWidth;
}

int PartMaker::Columns() const {
  const int width = chain_.SizeOf(level_).width;
  return width / ColumnWidth() + (width % ColumnWidth() != 0 ? 1 : 0);
}

uint64_t PartMaker::BytesOfPart(int rows) const {
  const Sides size = chain_.SizeOf(level_);
  const int width = std::min(size.width, ColumnWidth());
  rows = std::min(rows, size.height);
  BandRect rect{(size.width - width) / 2, (size.height - rows) / 2, width, rows};
  uint64_t bytes = 0;
  for (size_t level = level_;; --level) {
    bytes += BytesOfPixels(chain_.LikeOf(level), rect.width, rect.height);
    if (level == 0) return bytes;
    rect = chain_.works[level - 1]->Needs(rect);
  }
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
    blocks[level] = PixelMemory(bytes + bytes / 8);
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
  const int left = column * ColumnWidth();
  const BandRect rect{left, rows.first, std::min(ColumnWidth(), chain_.SizeOf(level_).width - left),
                      rows.count};
  std::unique_ptr<Blocks> blocks = TakeBlocks();
  const Band part = PartOf(level_, rect, *blocks);
  CopyPart(part.pixels, {0, 0, rect.width, rect.height}, target.pixels, left,
           rows.first - target.top);
  const std::lock_guard lock(blocksMutex_);
  freeBlocks_.push_back(std::move(blocks));
}

}  // namespace rasterkit::detail
