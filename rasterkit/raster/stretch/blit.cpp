#include <cstring>
#include <vector>

#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/axis_positions.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/blit_axes.h>
#include <rasterkit/raster/stretch/source_rows.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace detail {
namespace {

using Kind = PixelRule::Kind;

bool ReplacesAll(const PixelRule& rule) {
  return rule.kind == Kind::copy || rule.kind == Kind::opaque;
}

/// Copies indexes between rasters of one indexed format and palette.
void CopyIndexes(Raster& target, const BlitAxes& axes, const Raster& source) {
  std::vector<uint8_t> from(static_cast<size_t>(source.Width())),
      to(static_cast<size_t>(target.Width()));
  for (int i = 0; i < axes.rows.Count(); ++i) {
    uint8_t* row = target.Row(axes.rows.first + i);
    UnpackIndexes(source.Row(axes.rows.positions[static_cast<size_t>(i)]), source.Format(),
                  source.Width(), from.data());
    UnpackIndexes(row, target.Format(), target.Width(), to.data());
    uint8_t* place = to.data() + axes.columns.first;
    for (const int column : axes.columns.positions) *place++ = from[static_cast<size_t>(column)];
    PackIndexes(to.data(), target.Format(), target.Width(), row);
  }
}

/// Copies rows of the same format without scaling as bytes. The unused bit of 15-bit pixels must
/// become 0, whatever the source holds, so these are converted.
bool CanMoveBytes(const Raster& target, const BlitAxes& axes, const Raster& source,
                  const PixelRule& rule) {
  const TPixelFormat format = target.Format();
  const bool hasPlainBytes = !IsIndexed(format) && format != pf15bit;
  const bool samePixels = hasPlainBytes && format == source.Format() && ReplacesAll(rule) &&
                          (format != pf32bit || rule.kind == Kind::copy);
  return samePixels && axes.columns.IsPlainRun();
}

void MoveBytes(Raster& target, const BlitAxes& axes, const Raster& source) {
  const auto bytes = static_cast<size_t>(StoredBitsPerPixel(target.Format()) / 8);
  const size_t from = static_cast<size_t>(axes.columns.positions.front()) * bytes;
  const size_t to = static_cast<size_t>(axes.columns.first) * bytes;
  for (int i = 0; i < axes.rows.Count(); ++i) {
    std::memcpy(target.Row(axes.rows.first + i) + to,
                source.Row(axes.rows.positions[static_cast<size_t>(i)]) + from,
                static_cast<size_t>(axes.columns.Count()) * bytes);
  }
}

/// Simplifies the rule as far as the source allows.
PixelRule CheapestRule(const Raster& source, PixelRule rule) {
  // Pixels of formats without alpha have alpha 255 here.
  if (rule.kind == Kind::opaque && source.Format() != pf32bit) rule.kind = Kind::copy;
  return rule;
}

PixelRect WholeOf(const Raster& raster) {
  return {0, 0, raster.Width(), raster.Height()};
}

}  // namespace

bool SameIndexes(const Raster& target, const Raster& source) {
  return IsIndexed(target.Format()) && target.Format() == source.Format() &&
         target.palette == source.palette;
}

BlitAxes MapAxes(const Raster& target, const PixelRect& place, const Raster& source,
                 const PixelRect& part, MirroredTie tie) {
  return {MapAxis({place.left, place.right, part.left, part.right}, target.Width(), source.Width(),
                  tie),
          MapAxis({place.top, place.bottom, part.top, part.bottom}, target.Height(),
                  source.Height(), tie)};
}

void BlitByAxes(Raster& target, const BlitAxes& axes, const Raster& source, const PixelRule& rule) {
  if (axes.columns.Empty() || axes.rows.Empty()) return;
  if (CanMoveBytes(target, axes, source, rule)) return MoveBytes(target, axes, source);
  if (ReplacesAll(rule) && SameIndexes(target, source)) return CopyIndexes(target, axes, source);
  SourceRows sourceRows(source, axes.columns);
  const auto targetRows = MakeTargetRows(target, CheapestRule(source, rule));
  for (int i = 0; i < axes.rows.Count(); ++i) {
    RequireTime();
    targetRows->Write(axes.rows.first + i, axes.columns.first, axes.columns.Count(),
                      sourceRows.Row(axes.rows.positions[static_cast<size_t>(i)]));
  }
}

PixelRule RuleForDrawing(const Raster& source, std::optional<TColor> key) {
  PixelRule rule;
  if (source.Format() == pf32bit && source.alphaFormat == afDefined) {
    rule.kind = Kind::blend;
    rule.opacity.pixelAlpha = true;
  } else if (key) {
    rule.kind = Kind::keyed;
    rule.key = KeyPixel(*key, source.Format());
  }
  return rule;
}

}  // namespace detail

using namespace detail;

void BlitStretched(Raster& target, const PixelRect& place, const Raster& source,
                   std::optional<TColor> key) {
  BlitByAxes(target, MapAxes(target, place, source, WholeOf(source)), source,
             RuleForDrawing(source, key));
}

void BlitBlended(Raster& target, const PixelRect& place, const Raster& source,
                 const PixelRect& part, const Blending& blending) {
  PixelRule rule;
  const bool pixelAlpha = blending.pixelAlpha && source.Format() == pf32bit;
  if (pixelAlpha || blending.constantAlpha != 255) {
    rule.kind = Kind::blend;
    rule.opacity = {blending.constantAlpha, pixelAlpha};
  }
  BlitByAxes(target, MapAxes(target, place, source, part), source, rule);
}

void BlitKeyed(Raster& target, const PixelRect& place, const Raster& source, const PixelRect& part,
               TColor key) {
  PixelRule rule;
  rule.kind = PixelRule::Kind::keyed;
  rule.key = KeyPixel(key, source.Format());
  BlitByAxes(target, MapAxes(target, place, source, part), source, rule);
}

void BlitCopied(Raster& target, const PixelRect& place, const Raster& source,
                const PixelRect& part) {
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  BlitByAxes(target, MapAxes(target, place, source, part), source, rule);
}

}  // namespace rasterkit
