#include <cmath>

#include <rasterkit/drawing/context/device_context_parts.h>
#include <rasterkit/drawing/text/text_layout.h>
#include <rasterkit/drawing/text/text_painter.h>

/// Texts of a drawing context.
namespace rasterkit {

using namespace detail;

namespace {

/// Most points that texts add to a path: a letter takes two bytes in a file, but hundreds as an
/// outline.
constexpr size_t kMaxPathPoints = 1 << 24;

/// Returns twelve points on the recording device, in logical units.
double UsualEmHeight(const DeviceContext::Parts& parts) {
  const double pixelsPerInch = parts.device.heightPx / parts.device.heightMm * 25.4;
  const double pixels = 12 * (pixelsPerInch > 0 && pixelsPerInch < 1e5 ? pixelsPerInch : 96) / 72;
  const double scale = std::abs(parts.state.page.ToDevice().m22);
  return scale > 0 ? pixels / scale : pixels;
}

/// Returns the reference point in the line's coordinates.
PointD ReferenceOf(const TextLine& line, uint32_t align) {
  PointD reference;
  if ((align & text_align::kHorizontal) == text_align::kRight) reference.x = line.width;
  if ((align & text_align::kHorizontal) == text_align::kCenter) reference.x = line.width / 2;
  const uint32_t vertical = align & text_align::kVertical;
  if (vertical == text_align::kTop) reference.y = -line.ascent;
  if (vertical == text_align::kBottom) reference.y = line.descent;
  return reference;
}

/// Moves the current position after a text with `updatePosition`; centered text does not move it.
void MovePosition(DrawingState& state, const TextLine& line, const TextPlacement& placement,
                  PointD origin) {
  const uint32_t side = state.textAlign & text_align::kHorizontal;
  if (!(state.textAlign & text_align::kUpdatePosition) || side == text_align::kCenter) return;
  const double sign = side == text_align::kRight ? -1 : 1;
  const PlaneAffine toDevice = state.ToDevice();
  const auto back = toDevice.Inverse();
  if (!back) return;
  const PointD moved = placement.places.Direction({sign * line.width, sign * line.drop});
  const PointD device = toDevice(origin);
  state.position = Finite((*back)(PointD{device.x + moved.x, device.y + moved.y}));
}

/// Charges the letters: those of a new size must be rendered; large ones are outlines, like those
/// of a path.
void ChargeLetters(DeviceContext::Parts& parts, const TextLine& line,
                   const TextPlacement& placement) {
  const PlaneAffine letters = LetterMap(line, placement);
  if (!letters.IsFinite()) return;
  const auto count = static_cast<double>(line.glyphs.size());
  const bool areOutlines = parts.isPathOpen || AreLettersOutlines(letters);
  if (areOutlines) {
    parts.work.Charge(count * kLetterOutline);
    return;
  }
  // The number of fonts that cairo caches.
  constexpr size_t kMost = 200;
  if (parts.letterMaps.size() >= kMost) parts.letterMaps.clear();
  const DeviceContext::Parts::LetterKey key{line.face, letters.m11, letters.m12, letters.m21,
                                            letters.m22};
  if (parts.letterMaps.insert(key).second) parts.work.Charge(kNewLetters);
  parts.work.Charge(count * std::abs(letters.Determinant()) * kPlainPixel);
}

void FillTextBox(DeviceContext::Parts& parts, const RectD& box) {
  DrawingPath outline;
  outline.AddRect(Normalized(Finite(box)));
  outline.Transform(parts.ToTarget());
  parts.AddBounds(outline);
  parts.painter.Fill(outline, PolygonFill::winding, {.pixel = PixelOf(parts.state.backColor)},
                     kCopyBrush);
}

}  // namespace

void DeviceContext::ExtTextOut(const TextRun& run) {
  Parts& parts = *parts_;
  DrawingState& state = parts.state;
  const bool movesPosition = (state.textAlign & text_align::kUpdatePosition) != 0;
  const PointD origin = movesPosition ? state.position : Finite(run.origin);
  const bool hasBox = run.box && (run.options & text_option::kOpaque) != 0;
  if (hasBox && !parts.isPathOpen) FillTextBox(parts, *run.box);
  if (run.text.empty()) return;

  const LogicalFont& font = Font();
  parts.work.Charge(static_cast<double>(run.text.size()) * kLetter);
  const TextLine line = LayOutText(run, font, state, parts.fonts, UsualEmHeight(parts));
  if (!line.face) return;
  const TextPlacement onDevice = PlaceText(font, state, origin, ReferenceOf(line, state.textAlign));
  const TextPlacement placement{onDevice.places.Then(parts.deviceToTarget),
                                onDevice.letters.Then(parts.deviceToTarget)};
  ChargeLetters(parts, line, placement);
  if (parts.isPathOpen) {
    if (parts.path.Points().size() < kMaxPathPoints) {
      parts.path.Append(TextOutline(line, placement));
    }
    parts.startsFigure = true;
  } else {
    std::optional<NarrowedClip> clip;
    if (run.box && (run.options & text_option::kClipped) != 0) {
      const RectD box = *run.box;
      clip.emplace(parts,
                   parts.Combined(parts.VisibleClip(), parts.AreaOf({&box, 1}, RegionUnit::logical),
                                  RegionMode::intersection));
    }
    const bool fillsCell = state.backMode == BackgroundMode::opaque && !hasBox;
    const DrawingPath cell = TextCell(line, placement);
    parts.AddBounds(cell);
    if (fillsCell) {
      parts.painter.Fill(cell, PolygonFill::winding, {.pixel = PixelOf(state.backColor)},
                         kCopyBrush);
    }
    PaintText(parts.painter, line, placement, font, PixelOf(state.textColor));
  }
  MovePosition(state, line, onDevice, origin);
}

}  // namespace rasterkit
