#include <cstring>
#include <utility>
#include <vector>

#include <rasterkit/bands/colors/row_rule.h>

namespace rasterkit::detail {

void ClearRowEnd(Raster& raster, int y) {
  constexpr unsigned kBitsOfByte = 8;
  uint8_t* const row = raster.Row(y);
  const size_t used = static_cast<size_t>(raster.Width()) *
                      static_cast<size_t>(StoredBitsPerPixel(raster.Format()));
  const auto rest = static_cast<unsigned>(used % kBitsOfByte);
  uint8_t& last = row[used / kBitsOfByte];
  if (rest != 0) last = static_cast<uint8_t>(last & (0xFF00u >> rest));
  std::memset(row + raster.RowBytes(), 0, raster.Stride() - raster.RowBytes());
}

RuleWork::RuleWork(Raster like, Sides size, RowRule rule)
    : like_(std::move(like)), size_(size), rule_(std::move(rule)) {}

void RuleWork::Set(Raster like, RowRule rule) {
  like_ = std::move(like);
  rule_ = std::move(rule);
}

BandRect RuleWork::Needs(const BandRect& target) const {
  return {0, target.top, size_.width, target.height};
}

void RuleWork::Make(const Band& source, Band& target, RowRange rows) const {
  const auto& from = std::get<Raster>(source.pixels);
  auto& to = std::get<Raster>(target.pixels);
  std::vector<uint8_t> scratch(kScratchBytes * static_cast<size_t>(size_.width));
  for (int y = rows.first; y < rows.first + rows.count; ++y) {
    uint8_t* const row = to.Row(y - target.top);
    rule_(from.Row(y - source.top), row, scratch.data());
    Mend(y, row);
    ClearRowEnd(to, y - target.top);
  }
}

Raster SmallLike(const Raster& like, int width, int height) {
  Raster small(like.Format(), width, height);
  small.CopyProperties(like);
  for (int y = 0; y < height; ++y) std::memset(small.Row(y), 0, small.Stride());
  return small;
}

}  // namespace rasterkit::detail
