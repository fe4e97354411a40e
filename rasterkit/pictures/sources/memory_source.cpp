#include <utility>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Rows that another part of the program made.
class MemorySource : public PictureSource {
 public:
  explicit MemorySource(Pixels rows) : rows_(std::make_shared<const Pixels>(std::move(rows))) {
    header_.width = WidthOf(*rows_);
    header_.height = HeightOf(*rows_);
    if (header_.width < 1 || header_.height < 1) throw FormatError("a picture without pixels");
    header_.layout = LayoutOf(*rows_);
    header_.metadata.profile = header_.layout.profile;
    std::visit([&](const auto& rows) { header_.metadata.resolution = rows.resolution; }, *rows_);
  }

  DecodedKind Kind() const override {
    return {header_.layout, std::holds_alternative<Raster>(*rows_)};
  }
  Pixels ReadPixels(int, CodecReport&) const override {
    return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, *rows_);
  }
  std::unique_ptr<RowReader> OpenRows(int) const override { return RowsInMemory(rows_); }
  bool IsInMemory() const override { return true; }

 private:
  const std::shared_ptr<const Pixels> rows_;
};

}  // namespace

SourcePtr SourceOf(std::unique_ptr<TBitmap> rows) {
  // The rows stay where they are in memory; the transparent color of the bitmap goes with them.
  return std::make_shared<MemorySource>(rows ? rows->TakeContent() : Raster());
}

SourcePtr SourceOf(Samples rows) {
  return std::make_shared<MemorySource>(std::move(rows));
}

}  // namespace rasterkit::detail
