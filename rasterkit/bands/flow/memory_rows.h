#pragma once

#include <memory>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/codecs/rows/row_reader.h>

namespace rasterkit::detail {

/// A reader of rows that are in memory. Those who know it use the rows where they are.
class MemoryRows : public RowReader {
 public:
  /// `mayChange`: the rows have no other owner.
  MemoryRows(std::shared_ptr<Pixels> pixels, bool mayChange)
      : pixels_(std::move(pixels)), mayChange_(mayChange) {}

  int Width() const override { return WidthOf(*pixels_); }
  int Height() const override { return HeightOf(*pixels_); }
  RowAccess Access() const override { return RowAccess::anyParts; }
  const Pixels& Like() const override { return *pixels_; }
  void Read(int left, int top, Pixels& target) override;
  void Finish(CodecReport&) override {}

  /// Changed only if MayChange.
  Pixels& Whole() { return *pixels_; }
  /// The rows where they are.
  Band View();
  bool MayChange() const { return mayChange_; }

 private:
  const std::shared_ptr<Pixels> pixels_;
  const bool mayChange_;
};

}  // namespace rasterkit::detail
