#include <algorithm>
#include <cstdlib>
#include <vector>

#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/stretch/alpha_means.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/blit_axes.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/raster/stretch/halftone_means.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;
using kernels::HalftoneAxis;
using kernels::HalftoneTap;

int64_t Length(int start, int end) {
  return std::abs(int64_t{end} - start);
}

bool IsTooLong(const PixelRect& place, const Raster& source) {
  return std::max({Length(place.left, place.right), Length(place.top, place.bottom),
                   int64_t{source.Width()}, int64_t{source.Height()}}) >
         kernels::kLongestHalftoneSide;
}

HalftoneAxis MakeAxis(int start, int end, int sourceSize, int first, int last) {
  const int low = std::min(start, end);
  return kernels::MakeHalftoneAxis(Length(start, end), sourceSize, int64_t{first} - low,
                                   int64_t{last} - low, end < start);
}

/// Sums must be divided by totals of at least 2: without any stretching everything counts twice.
HalftoneAxes MakeAxes(const PixelRect& place, const HalftonePart& part, const PixelRect& inside) {
  HalftoneAxes axes{MakeAxis(place.left, place.right, part.width, inside.left, inside.right),
                    MakeAxis(place.top, place.bottom, part.height, inside.top, inside.bottom)};
  for (HalftoneTap& tap : axes.columns.taps) tap.first -= part.left;
  for (HalftoneTap& tap : axes.rows.taps) tap.first -= part.top;
  if (axes.columns.total == 1 && axes.rows.total == 1) {
    axes.rows.total = 2;
    for (HalftoneTap& tap : axes.rows.taps) tap.firstWeight = 2;
  }
  return axes;
}

/// Computes means of 32-bit pixels, weighted by their alpha.
void DrawAlphaMeans(Raster& target, const PixelRect& inside, const HalftoneAxes& axes,
                    const Raster& source, const PixelRule& rule) {
  const auto means = MakeAlphaMeans(source, axes);
  const int width = inside.right - inside.left;
  std::vector<RGBArec> pixels(static_cast<size_t>(width));
  const auto targetRows = MakeTargetRows(target, rule);
  int y = inside.top;
  for (const HalftoneTap& rows : axes.rows.taps) {
    means->Make(rows, pixels.data());
    targetRows->Write(y++, inside.left, width, pixels.data());
  }
}

/// Writes means without alpha over the target; on 24 bits they are computed in place.
void DrawOpaqueMeans(Raster& target, const PixelRect& inside, const HalftoneAxes& axes,
                     const Raster& source) {
  const auto means = MakeRowMeans(source, axes);
  const auto width = static_cast<size_t>(inside.right - inside.left);
  int y = inside.top;
  if (target.Format() == pf24bit) {
    for (const HalftoneTap& rows : axes.rows.taps) {
      RequireTime();
      means->Make(rows, target.Row(y++) + static_cast<size_t>(inside.left) * 3);
    }
    return;
  }
  std::vector<uint8_t> colors(width * 3);
  std::vector<RGBArec> pixels(width);
  const auto targetRows = MakeTargetRows(target, PixelRule{});
  for (const HalftoneTap& rows : axes.rows.taps) {
    RequireTime();
    means->Make(rows, colors.data());
    kernels::Row24To32(colors.data(), width, reinterpret_cast<uint8_t*>(pixels.data()));
    targetRows->Write(y++, inside.left, static_cast<int>(width), pixels.data());
  }
}

/// Tells whether all alpha of a 32-bit raster is 255: then weighting has no effect, and the faster
/// code for opaque pictures gives the same bytes.
bool IsFullyOpaque(const Raster& raster) {
  for (int y = 0; y < raster.Height(); ++y) {
    const auto* pixels = reinterpret_cast<const RGBArec*>(raster.Row(y));
    uint8_t common = 255;
    for (int x = 0; x < raster.Width(); ++x) common = static_cast<uint8_t>(common & pixels[x].a);
    if (common != 255) return false;
  }
  return true;
}

void Draw(Raster& target, const PixelRect& inside, const HalftoneAxes& axes, const Raster& source,
          const PixelRule& rule, bool weightByAlpha) {
  if (weightByAlpha && !IsFullyOpaque(source)) {
    DrawAlphaMeans(target, inside, axes, source, rule);
  } else {
    DrawOpaqueMeans(target, inside, axes, source);
  }
}

void Halftone(Raster& target, const PixelRect& place, const Raster& source, const PixelRule& rule,
              bool weightByAlpha) {
  if (source.Width() == 0 || source.Height() == 0) return;
  const PixelRect covered{std::min(place.left, place.right), std::min(place.top, place.bottom),
                          std::max(place.left, place.right), std::max(place.top, place.bottom)};
  const PixelRect inside = ClipRect(covered, target.Width(), target.Height());
  if (inside.left >= inside.right || inside.top >= inside.bottom) return;
  const HalftonePart whole{source.Width(), source.Height()};
  Draw(target, inside, MakeAxes(place, whole, inside), source, rule, weightByAlpha);
}

}  // namespace

void BlitHalftone(Raster& target, const PixelRect& place, const Raster& source,
                  std::optional<TColor> key) {
  const PixelRule rule = RuleForDrawing(source, key);
  if (rule.kind == PixelRule::Kind::keyed || IsTooLong(place, source)) {
    BlitStretched(target, place, source, key);
  } else {
    Halftone(target, place, source, rule, rule.kind == PixelRule::Kind::blend);
  }
}

void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source) {
  if (IsTooLong(place, source)) {
    BlitCopied(target, place, source, {0, 0, source.Width(), source.Height()});
    return;
  }
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  Halftone(target, place, source, rule, source.Format() == pf32bit);
}

void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source,
                  const HalftonePart& part, const HalftoneRows& rows) {
  const PixelRect covered{place.left, std::max(place.top, rows.first), place.right,
                          std::min(place.bottom, rows.last)};
  const PixelRect inside = ClipRect(covered, target.Width(), target.Height());
  const HalftoneAxes axes = MakeAxes(place, part, inside);
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  Draw(target, inside, axes, source, rule, source.Format() == pf32bit);
  for (int y = inside.top; y < inside.bottom; ++y) {
    std::fill_n(target.Row(y) + target.RowBytes(), target.Stride() - target.RowBytes(), uint8_t{0});
  }
}

}  // namespace rasterkit
