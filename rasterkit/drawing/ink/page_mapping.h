#pragma once

#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/plane_affine.h>

namespace rasterkit::detail {

/// Maps page units to pixels of the recording device: the window is shown in the viewport.
class PageMapping {
 public:
  explicit PageMapping(const ReferenceDevice& device);

  void SetMode(MapMode mode);
  /// Sets an extent. Used in the isotropic and anisotropic modes only; 0 is ignored.
  void SetWindowExt(PointD extent);
  void SetViewportExt(PointD extent);
  void ScaleWindowExt(PointD numerator, PointD denominator);
  void ScaleViewportExt(PointD numerator, PointD denominator);

  PlaneAffine ToDevice() const;

  PointD windowOrg, viewportOrg;
  bool isMirrored = false;  ///< mirrored about the vertical center line of the device

 private:
  bool TakesExtents() const { return mode_ == MapMode::isotropic || mode_ == MapMode::anisotropic; }
  void SetUnitsPerMm(double units);
  void KeepSquare();

  ReferenceDevice device_;
  MapMode mode_ = MapMode::text;
  PointD windowExt_{1, 1}, viewportExt_{1, 1};
};

}  // namespace rasterkit::detail
