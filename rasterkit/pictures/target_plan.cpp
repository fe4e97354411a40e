#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/pictures/fitting/block_move.h>
#include <rasterkit/pictures/write_plan.h>

namespace rasterkit::detail {
namespace {

/// True if the steps only move pixels and no option requires other ones.
bool CanMove(const PictureSource& source, const PictureState& state, PictureType type,
             const SaveOptions& options) {
  const bool isJpeg = type == PictureType::jpeg && source.Type() == PictureType::jpeg &&
                      std::holds_alternative<JpegForm>(source.Header().form);
  const bool asksForForm = options.quality || options.chromaX > 0 || options.chromaY > 0;
  return isJpeg && state.pixelsChanged && state.onlyMoves && !asksForForm && source.CanCopy() &&
         !source.Header().isCutOff && options.lossless != Lossless::off;
}

/// "left", "top" or "left and top".
std::string OffGrid(const EdgePixels& dropped) {
  const bool isLeft = dropped.left + dropped.right > 0, isTop = dropped.top + dropped.bottom > 0;
  if (isLeft && isTop) return "the new left and top edges are not on the borders of blocks";
  return std::string("the new ") + (isLeft ? "left" : "top") +
         " edge is not on the border of a block";
}

std::string NotMoved(const std::string& why) {
  return "the pixels are compressed again: " + why;
}

std::string WhyNothing(const JpegForm& form) {
  return form.arithmetic ? "blocks with arithmetic coding are not moved"
                         : "no whole block would be left";
}

}  // namespace

TargetPlan TargetPlanOf(const PictureSource& source, const PictureState& state, PictureType type,
                        const SaveOptions& options, bool hasSideFiles) {
  TargetPlan target{state, PlanOf(source, state, type, options, hasSideFiles)};
  if (!CanMove(source, state, type, options)) return target;
  const PictureHeader& header = source.Header();
  const auto& form = std::get<JpegForm>(header.form);
  const PictureMove move = MoveOf(state.toOld, state.width, state.height);
  const auto part = MovableJpegPart(form, header.width, header.height, move);
  if (!part) {
    target.plan.moveNote = NotMoved(WhyNothing(form));
    return target;
  }
  const EdgePixels dropped = DroppedBy(*part, move);
  if (*part != move && options.lossless == Lossless::exact) {
    target.plan.moveNote =
        NotMoved(OffGrid(dropped) + " (trimming would drop " + TextOf(dropped) + ")");
    return target;
  }
  if (*part != move) {
    AddStep(target.state, source,
            CropStep{dropped.left, dropped.top, part->ResultWidth(), part->ResultHeight()});
    Follow(target.state, source);
    target.plan = PlanOf(source, target.state, type, options, hasSideFiles);
    target.plan.moveNote = TextOf(dropped) + " dropped, so that nothing is compressed again";
  }
  target.plan.move = part;
  return target;
}

}  // namespace rasterkit::detail
