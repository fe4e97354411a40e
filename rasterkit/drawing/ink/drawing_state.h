#pragma once

#include <memory>

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/page_mapping.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit::detail {

/// The state that SaveDC saves and RestoreDC restores.
struct DrawingState {
  explicit DrawingState(const ReferenceDevice& device) : page(device) {}

  /// Returns the map from logical units to pixels of the recording device.
  PlaneAffine ToDevice() const { return world.Then(page.ToDevice()); }

  PageMapping page;
  PlaneAffine world;
  GraphicsMode graphicsMode = GraphicsMode::compatible;

  TColor textColor = clBlack, backColor = clWhite;
  BackgroundMode backMode = BackgroundMode::opaque;
  Rop2 rop = Rop2::copyPen;
  PolygonFill fill = PolygonFill::alternate;
  StretchMode stretch = StretchMode::blackOnWhite;
  ArcDirection arcs = ArcDirection::counterclockwise;
  double miterLimit = 10;
  PointD brushOrigin;
  uint32_t textAlign = 0;
  double textExtra = 0;
  double breakExtra = 0;
  int32_t breaks = 0;

  std::shared_ptr<const LogicalPen> pen;
  std::shared_ptr<const LogicalBrush> brush;
  std::shared_ptr<const LogicalFont> font;
  std::shared_ptr<HPALETTE> palette;
  PointD position;

  /// The meta region and the clipping region; null means no clipping inside the frame.
  ClipArea::Pointer metaClip, clip;
};

}  // namespace rasterkit::detail
