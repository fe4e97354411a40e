#include <cstring>
#include <utility>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/stage/band.h>

namespace rasterkit {
namespace {

class MemoryRows : public RowReader {
 public:
  explicit MemoryRows(std::shared_ptr<const Pixels> pixels) : pixels_(std::move(pixels)) {}

  int Width() const override { return WidthOf(*pixels_); }
  int Height() const override { return HeightOf(*pixels_); }
  RowAccess Access() const override { return RowAccess::anyParts; }
  const Pixels& Like() const override { return *pixels_; }
  void Read(int left, int top, Pixels& target) override {
    CopyPart(*pixels_, {left, top, WidthOf(target), HeightOf(target)}, target, 0, 0);
  }
  void Finish(CodecReport&) override {}

 private:
  const std::shared_ptr<const Pixels> pixels_;
};

}  // namespace

std::unique_ptr<RowReader> RowsInMemory(Pixels pixels) {
  return RowsInMemory(std::make_shared<const Pixels>(std::move(pixels)));
}

std::unique_ptr<RowReader> RowsInMemory(std::shared_ptr<const Pixels> pixels) {
  return std::make_unique<MemoryRows>(std::move(pixels));
}

}  // namespace rasterkit
