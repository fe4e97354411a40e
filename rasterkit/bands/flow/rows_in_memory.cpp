#include <utility>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/memory_rows.h>

namespace rasterkit {

Band detail::MemoryRows::View() {
  uint8_t* const rows = std::visit([](auto& whole) { return whole.Row(0); }, *pixels_);
  return {PixelsInMemory(rows, *pixels_, Width(), Height())};
}

void detail::MemoryRows::Read(int left, int top, Pixels& target) {
  CopyPart(*pixels_, {left, top, WidthOf(target), HeightOf(target)}, target, 0, 0);
}

std::unique_ptr<RowReader> RowsInMemory(Pixels pixels) {
  return std::make_unique<detail::MemoryRows>(std::make_shared<Pixels>(std::move(pixels)), true);
}

std::unique_ptr<RowReader> RowsInMemory(std::shared_ptr<const Pixels> pixels) {
  return std::make_unique<detail::MemoryRows>(std::const_pointer_cast<Pixels>(std::move(pixels)),
                                              false);
}

}  // namespace rasterkit
