#include <string>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Rows of a part of a picture.
class CropWork : public BandWork {
 public:
  CropWork(const Pixels& like, const BandRect& part) : like_(NewPixels(like, 1, 1)), part_(part) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return {part_.width, part_.height}; }
  bool MakesParts() const override { return true; }
  BandRect Needs(const BandRect& target) const override {
    return {target.left + part_.left, target.top + part_.top, target.width, target.height};
  }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    const BandRect piece{target.left, rows.first, WidthOf(target.pixels), rows.count};
    BandRect from = Needs(piece);
    from.left -= source.left;
    from.top -= source.top;
    CopyPart(source.pixels, from, target.pixels, 0, rows.first - target.top);
  }

 private:
  const Pixels like_;
  const BandRect part_;
};

class CropRows : public BandStage {
 public:
  CropRows(Sides source, const BandRect& part) : BandStage(source), part_(part) {}

  RowRange Needs(RowRange target) const override {
    return {target.first + part_.top, target.count};
  }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<CropWork>(like, part_);
  }

 private:
  const BandRect part_;
};

bool IsInside(Sides source, const BandRect& part) {
  return part.left >= 0 && part.top >= 0 && part.width > 0 && part.height > 0 &&
         part.left < source.width && part.width <= source.width - part.left &&
         part.top < source.height && part.height <= source.height - part.top;
}

}  // namespace

std::unique_ptr<Stage> CropStage(Sides source, int left, int top, int width, int height) {
  const BandRect part{left, top, width, height};
  if (!IsInside(source, part)) {
    throw RangeError("the rectangle " + std::to_string(left) + "," + std::to_string(top) + "," +
                     std::to_string(width) + "," + std::to_string(height) +
                     " is not inside the picture, which has " + std::to_string(source.width) +
                     " x " + std::to_string(source.height) + " pixels");
  }
  return std::make_unique<CropRows>(source, part);
}

}  // namespace rasterkit
