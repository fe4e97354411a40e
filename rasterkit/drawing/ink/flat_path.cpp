#include <rasterkit/drawing/ink/cairo_handles.h>
#include <rasterkit/drawing/ink/flat_path.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>

namespace rasterkit::detail {
namespace {

using Verb = DrawingPath::Verb;

/// Returns a context without pixels, for computing only.
CairoContext Scratch() {
  const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
  return CairoContext(cairo_create(surface.get()));
}

struct PathRelease {
  void operator()(cairo_path_t* path) const { cairo_path_destroy(path); }
};

DrawingPath PathOfPieces(const cairo_path_t& pieces) {
  DrawingPath path;
  const auto at = [](const cairo_path_data_t& data) { return PointD{data.point.x, data.point.y}; };
  for (int i = 0; i < pieces.num_data; i += pieces.data[i].header.length) {
    const cairo_path_data_t* piece = pieces.data + i;
    switch (piece->header.type) {
      case CAIRO_PATH_MOVE_TO:
        path.MoveTo(at(piece[1]));
        break;
      case CAIRO_PATH_LINE_TO:
        path.LineTo(at(piece[1]));
        break;
      case CAIRO_PATH_CURVE_TO:
        path.CurveTo(at(piece[1]), at(piece[2]), at(piece[3]));
        break;
      case CAIRO_PATH_CLOSE_PATH:
        path.Close();
        break;
    }
  }
  return path;
}

}  // namespace

DrawingPath PathOf(cairo_t* cairo) {
  const std::unique_ptr<cairo_path_t, PathRelease> pieces(cairo_copy_path(cairo));
  return PathOfPieces(*pieces);
}

DrawingPath Flattened(const DrawingPath& path) {
  const CairoContext cairo = Scratch();
  path.EmitTo(cairo.get());
  const std::unique_ptr<cairo_path_t, PathRelease> lines(cairo_copy_path_flat(cairo.get()));
  return lines->status == CAIRO_STATUS_SUCCESS ? PathOfPieces(*lines) : path;
}

DrawingPath WithClosedFigures(const DrawingPath& path) {
  DrawingPath closed;
  size_t at = 0;
  const auto& points = path.Points();
  for (const Verb verb : path.Verbs()) {
    switch (verb) {
      case Verb::move:
        closed.Close();
        closed.MoveTo(points[at]);
        at += 1;
        break;
      case Verb::line:
        closed.LineTo(points[at]);
        at += 1;
        break;
      case Verb::curve:
        closed.CurveTo(points[at], points[at + 1], points[at + 2]);
        at += 3;
        break;
      case Verb::close:
        closed.Close();
        break;
    }
  }
  closed.Close();
  return closed;
}

ClipArea::Pointer AreaOfStroke(const DrawingPath& path, const StrokeStyle& style,
                               const PixelRect& frame) {
  const auto bounds = path.Bounds();
  const PixelRect box =
      bounds ? Intersection(CoveringBox(*bounds, style.Reach()), frame) : PixelRect{};
  if (IsEmpty(box)) return ClipArea::OfRects({}, frame);
  auto mask = std::make_shared<CoverageMask>(box);
  mask->Draw([&](cairo_t* cairo) { StrokePathWith(cairo, path, style); });
  return ClipArea::OfMask(std::move(mask));
}

}  // namespace rasterkit::detail
