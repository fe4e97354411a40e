#include <utility>

#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Rows that another part of the program made.
class MemorySource : public PictureSource {
 public:
  explicit MemorySource(Pixels rows) : rows_(std::move(rows)) {
    header_.width = WidthOf(rows_);
    header_.height = HeightOf(rows_);
    if (header_.width < 1 || header_.height < 1) throw FormatError("a picture without pixels");
    header_.layout = LayoutOf(rows_);
    header_.metadata.profile = header_.layout.profile;
    std::visit([&](const auto& rows) { header_.metadata.resolution = rows.resolution; }, rows_);
  }

  DecodedKind Kind() const override {
    return {header_.layout, std::holds_alternative<Raster>(rows_)};
  }
  Pixels ReadPixels(int, CodecReport&) const override {
    return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, rows_);
  }

 private:
  const Pixels rows_;
};

/// The rows of a bitmap move with it: they stay where they are.
class BitmapSource : public PictureSource {
 public:
  explicit BitmapSource(std::unique_ptr<TBitmap> rows) : rows_(std::move(rows)) {
    if (!rows_ || rows_->Width() < 1 || rows_->Height() < 1) {
      throw FormatError("a picture without pixels");
    }
    header_.width = rows_->Width();
    header_.height = rows_->Height();
    Raster like(rows_->Content().Format(), 1, 1);
    like.CopyProperties(rows_->Content());
    if (rows_->Transparent()) like.transparentColor = rows_->TransparentColor();
    header_.layout = LayoutOf(Pixels(std::move(like)));
    header_.metadata.profile = rows_->Profile();
    header_.metadata.resolution = rows_->Dpi();
  }

  Pixels ReadPixels(int, CodecReport&) const override {
    Raster rows = rows_->Content().Clone();
    if (rows_->Transparent()) rows.transparentColor = rows_->TransparentColor();
    return rows;
  }

 private:
  const std::unique_ptr<const TBitmap> rows_;
};

}  // namespace

SourcePtr SourceOf(std::unique_ptr<TBitmap> rows) {
  return std::make_shared<BitmapSource>(std::move(rows));
}

SourcePtr SourceOf(Samples rows) {
  return std::make_shared<MemorySource>(std::move(rows));
}

}  // namespace rasterkit::detail
