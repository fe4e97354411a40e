#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/ink/flat_path.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/drawing/text/font_lock.h>
#include <rasterkit/drawing/text/text_painter.h>

namespace rasterkit::detail {
namespace {

/// Letters larger than this many pixels are drawn as outlines, as cairo would cache their bitmaps.
constexpr double kMaxGlyphPixels = 200;
/// The size at which outlines are taken.
constexpr double kOutlineSize = 256;
/// Smaller or flatter letters are invisible, and cairo rejects such fonts.
constexpr double kMinGlyphPixels = 0.05;

/// Maps a rectangle in the line's coordinates.
DrawingPath LineRect(const RectD& rect, const TextLine& line, const TextPlacement& placement) {
  // The letters may be scaled differently from the advances; heights use the scale of letters.
  const auto point = [&](double x, double y) {
    const double part = line.width != 0 ? x / line.width : 0;
    const PointD base = placement.places(PointD{x, part * line.drop});
    const PointD down = placement.letters.Direction({0, y});
    return PointD{base.x + down.x, base.y + down.y};
  };
  DrawingPath outline;
  outline.MoveTo(point(rect.left, rect.top));
  outline.LineTo(point(rect.right, rect.top));
  outline.LineTo(point(rect.right, rect.bottom));
  outline.LineTo(point(rect.left, rect.bottom));
  outline.Close();
  return outline;
}

struct OptionsRelease {
  void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};

CairoScaledFont SizedFont(FontFace& face, const PlaneAffine& letters) {
  const std::unique_ptr<cairo_font_options_t, OptionsRelease> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  // No hinting: letters keep their positions at any size.
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  const cairo_matrix_t size = LinearMatrix(letters);
  cairo_matrix_t identity;
  cairo_matrix_init_identity(&identity);
  CairoScaledFont font(cairo_scaled_font_create(face.Face(), &size, &identity, options.get()));
  if (cairo_scaled_font_status(font.get()) != CAIRO_STATUS_SUCCESS) font.reset();
  return font;
}

/// Calls `use` for each run of consecutive glyphs of one font.
template <class Use>
void ForEachRun(const std::vector<PlacedGlyph>& glyphs, Use use) {
  constexpr size_t kAtOnce = 1000;
  for (size_t first = 0; first < glyphs.size();) {
    size_t last = first + 1;
    while (last < glyphs.size() && last - first < kAtOnce &&
           glyphs[last].face == glyphs[first].face) {
      ++last;
    }
    use(std::span(glyphs).subspan(first, last - first));
    first = last;
  }
}

/// Returns the outline of a letter in the size kOutlineSize, with its baseline point at (0, 0).
DrawingPath LetterOutline(cairo_t* scratch, unsigned long index) {
  const cairo_glyph_t glyph{index, 0, 0};
  cairo_new_path(scratch);
  cairo_glyph_path(scratch, &glyph, 1);
  return PathOf(scratch);
}

void ShowGlyphs(Painter& painter, std::span<const PlacedGlyph> run, const PlaneAffine& letters,
                const TextPlacement& placement, const PixelRect& box, uint32_t pixel) {
  const std::shared_lock shared(OpenFonts());
  const CairoScaledFont font = SizedFont(*run[0].face, letters);
  if (!font) return;
  std::vector<cairo_glyph_t> glyphs;
  glyphs.reserve(run.size());
  for (const PlacedGlyph& placed : run) {
    const PointD at = CairoPoint(placement.places(placed.at));
    glyphs.push_back({placed.index, at.x, at.y});
  }
  painter.Draw(box, {.pixel = pixel}, kCopyBrush, [&](cairo_t* cairo) {
    cairo_set_scaled_font(cairo, font.get());
    cairo_show_glyphs(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
  });
}

/// Returns a box around all pixels that the letters may cover.
PixelRect GlyphBox(std::span<const PlacedGlyph> glyphs, const PlaneAffine& letters,
                   const TextPlacement& placement) {
  const double reach =
      3 * (std::hypot(letters.m11, letters.m12) + std::hypot(letters.m21, letters.m22)) + 2;
  DrawingPath places;
  for (const PlacedGlyph& glyph : glyphs) places.LineTo(placement.places(glyph.at));
  return CoveringBox(*places.Bounds(), reach);
}

}  // namespace

PlaneAffine LetterMap(const TextLine& line, const TextPlacement& placement) {
  return PlaneAffine::Scaling(line.emHeight * line.stretch, line.emHeight).Then(placement.letters);
}

bool AreLettersOutlines(const PlaneAffine& letters) {
  return std::max(std::hypot(letters.m11, letters.m12), std::hypot(letters.m21, letters.m22)) >
         kMaxGlyphPixels;
}

DrawingPath TextCell(const TextLine& line, const TextPlacement& placement) {
  return LineRect({0, -line.ascent, line.width, line.descent}, line, placement);
}

DrawingPath TextOutline(const TextLine& line, const TextPlacement& placement) {
  const std::shared_lock shared(OpenFonts());
  const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
  const CairoContext scratch(cairo_create(surface.get()));
  const PlaneAffine letters = LetterMap(line, placement);
  DrawingPath outline;
  ForEachRun(line.glyphs, [&](std::span<const PlacedGlyph> run) {
    const CairoScaledFont font =
        SizedFont(*run[0].face, PlaneAffine::Scaling(kOutlineSize, kOutlineSize));
    if (!font) return;
    cairo_set_scaled_font(scratch.get(), font.get());
    for (const PlacedGlyph& glyph : run) {
      const PointD at = placement.places(glyph.at);
      DrawingPath letter = LetterOutline(scratch.get(), glyph.index);
      letter.Transform(PlaneAffine::Scaling(1 / kOutlineSize, 1 / kOutlineSize)
                           .Then(letters)
                           .Then(PlaneAffine::Translation(at.x, at.y)));
      outline.Append(letter);
    }
  });
  return outline;
}

void PaintText(Painter& painter, const TextLine& line, const TextPlacement& placement,
               const LogicalFont& font, uint32_t pixel) {
  const PlaneAffine letters = LetterMap(line, placement);
  const double across = std::hypot(letters.m11, letters.m12);
  const double down = std::hypot(letters.m21, letters.m22);
  const double flattest = std::abs(letters.Determinant()) / std::max(across, down);
  if (!(std::min(across, down) > kMinGlyphPixels) || !(flattest > kMinGlyphPixels)) return;
  if (AreLettersOutlines(letters)) {
    painter.Fill(TextOutline(line, placement), PolygonFill::winding, {.pixel = pixel}, kCopyBrush);
  } else {
    ForEachRun(line.glyphs, [&](std::span<const PlacedGlyph> run) {
      ShowGlyphs(painter, run, letters, placement, GlyphBox(run, letters, placement), pixel);
    });
  }
  const FontMetrics& metrics = line.face->Metrics();
  const auto rule = [&](double center, double thickness) {
    // At least one pixel.
    const double thick = std::max(thickness, 1 / down);
    const double y = center * line.emHeight, half = thick * line.emHeight / 2;
    painter.Fill(LineRect({0, y - half, line.width, y + half}, line, placement),
                 PolygonFill::winding, {.pixel = pixel}, kCopyBrush);
  };
  if (font.underline) rule(metrics.underlineCenter, metrics.underlineWidth);
  if (font.strikeOut) rule(metrics.strikeOutCenter, metrics.strikeOutWidth);
}

}  // namespace rasterkit::detail
