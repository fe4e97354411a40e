#pragma once

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Where a picture lies in a box: fitted, or enlarged by a factor and moved. All in device pixels
/// of the box, so that the factor 1 shows one pixel of the picture in one of the screen.
///
/// Along an axis in which the picture is smaller than the box it is centered; else it covers the
/// box.
class RASTERKIT_EXPORT PictureZoom {
 public:
  /// A picture of another size is fitted, one of the same size keeps its place.
  void SetPicture(int width, int height);
  /// A fitted picture is fitted again. Else the factor stays, and the pixel in the middle of the
  /// box stays there.
  void SetBox(int width, int height);

  void Fit();
  /// Factor 1 about the middle of the box.
  void ShowActualSize();
  /// Enlarges by a factor about a point of the box. 1 is never jumped over.
  void ZoomBy(double factor, double x, double y);
  /// The same about the middle of the box.
  void ZoomBy(double factor);
  void PanBy(double dx, double dy);

  bool IsFit() const { return isFit_; }
  /// 0 without a picture or without a box.
  double Factor() const { return factor_; }
  bool CanPan() const;
  bool CanZoom(double factor) const;
  /// The place of the whole picture.
  TRect Place() const;

 private:
  bool HasArea() const;
  double FactorToFit() const;
  double Limited(double factor) const;
  void MoveInside();

  int width_ = 0, height_ = 0;
  int boxWidth_ = 0, boxHeight_ = 0;
  bool isFit_ = true;
  double factor_ = 0;
  double left_ = 0, top_ = 0;
};

}  // namespace rasterkit
