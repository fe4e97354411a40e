#include <cstring>
#include <string>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

struct Part {
  int left, top, width, height;
};

Samples CutOut(const Samples& source, const Part& part, const StageRun& run) {
  Samples target(source.Layout(), part.width, part.height, source.Planes() > 1);
  target.resolution = source.resolution;
  const size_t skipped = static_cast<size_t>(part.left) * source.PixelBytes();
  for (int plane = 0; plane < source.Planes(); ++plane) {
    detail::ForRows(part.height, detail::PieceOf(part.height, target.Stride()), run,
                    {static_cast<double>(plane) / source.Planes(),
                     static_cast<double>(plane + 1) / source.Planes()},
                    [&](int first, int last) {
                      for (int y = first; y < last; ++y) {
                        std::memcpy(target.Row(y, plane), source.Row(part.top + y, plane) + skipped,
                                    target.Stride());
                      }
                    });
  }
  return target;
}

class CropRows : public Stage {
 public:
  CropRows(Sides source, const Part& part) : source_(source), part_(part) {}

  RowRange Needs(RowRange target) const override {
    return {target.first + part_.top, target.count};
  }

  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    detail::RequireSides(source, source_);
    if (const auto* samples = std::get_if<Samples>(&source)) return CutOut(*samples, part_, run);
    return CutOut(std::get<Raster>(source),
                  {part_.left, part_.top, part_.left + part_.width, part_.top + part_.height});
  }

 private:
  const Sides source_;
  const Part part_;
};

bool IsInside(Sides source, const Part& part) {
  return part.left >= 0 && part.top >= 0 && part.width > 0 && part.height > 0 &&
         part.left < source.width && part.width <= source.width - part.left &&
         part.top < source.height && part.height <= source.height - part.top;
}

}  // namespace

std::unique_ptr<Stage> CropStage(Sides source, int left, int top, int width, int height) {
  const Part part{left, top, width, height};
  if (!IsInside(source, part)) {
    throw RangeError("the rectangle " + std::to_string(left) + "," + std::to_string(top) + "," +
                     std::to_string(width) + "," + std::to_string(height) +
                     " is not inside the picture, which has " + std::to_string(source.width) +
                     " x " + std::to_string(source.height) + " pixels");
  }
  return std::make_unique<CropRows>(source, part);
}

}  // namespace rasterkit
