#pragma once

#include <vector>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// How the picture before and after the change is shown.
enum class PreviewMode { sideBySide, split, changed };

/// A part of the preview. All numbers are pixels of the screen.
struct PreviewArea {
  /// In the preview; nothing outside of it is painted.
  TRect box;
  /// The part of the preview that shows the same place, which is larger than the box where another
  /// area shares it.
  TRect pane;
  /// Position of the whole picture in the preview; may be much larger than the box.
  TRect place;
  bool isChanged = false;
};

/// Which part of a picture a preview shows and where: zoom and position, which are the same for the
/// picture before and after the change, and the divider between them. Knows no widget.
///
/// The preview is fitted at first: the whole picture is shown, not enlarged.
class ValuesViewport {
 public:
  /// Pixels between two pictures side by side.
  static constexpr int kGap = 8;
  /// Less for a picture whose sides would be more pixels of the screen than can be counted.
  static constexpr double kMostZoom = 16;

  ValuesViewport(int pictureWidth, int pictureHeight);

  /// The preview has another size.
  void SetBox(int width, int height);
  TPoint Box() const { return {boxWidth_, boxHeight_}; }
  /// In a window for a script from right to left the original is on the right.
  void SetRightToLeft(bool isRightToLeft) { isRightToLeft_ = isRightToLeft; }
  bool IsRightToLeft() const { return isRightToLeft_; }

  void SetMode(PreviewMode mode);
  PreviewMode Mode() const { return mode_; }
  /// One area, or two: the original first.
  std::vector<PreviewArea> Areas() const;
  /// The same as if only one of the two pictures was shown in all areas: while the user compares.
  std::vector<PreviewArea> AreasOf(bool isChanged) const;

  bool IsFitted() const { return isFitted_; }
  /// Pixels of the screen for one of the picture.
  double Zoom() const { return isFitted_ ? FittedZoom() : zoom_; }
  double FittedZoom() const;
  bool CanZoomIn() const { return Zoom() < MostZoom(); }
  bool CanZoomOut() const;
  void Fit() { isFitted_ = true; }
  /// One pixel of the screen for one of the picture, around the center.
  void ShowActualSize();
  /// The next zoom of a ladder up (1) or down (-1); the pixel under `about` (in the preview) stays
  /// there if it can.
  void ZoomBy(int steps, TPoint about);
  void ZoomBy(int steps);

  bool CanPan() const;
  /// Moves the picture by pixels of the screen, up to its edges; true if it moved.
  bool PanBy(int right, int down);

  /// Where the two pictures of the split view meet, as a share of the preview's width, 0 to 1; from
  /// the right in a window from right to left.
  double Divider() const { return divider_; }
  void SetDivider(double share);
  /// The first column right of the divider.
  int DividerColumn() const;
  void MoveDividerTo(int column);
  bool IsOnDivider(int column, int reach) const;

  /// The area that holds a point of the preview; null if none does.
  static const PreviewArea* AreaAt(TPoint point, const std::vector<PreviewArea>& areas);
  /// The pixel of the picture under a point of the preview, in the area that holds it; may be
  /// outside of the picture.
  TPoint PixelAt(TPoint point) const;

 private:
  double MostZoom() const;
  int PaneWidth() const;
  TRect PlaceIn(const TRect& pane) const;
  void SetZoom(double zoom);
  void ClampCenter();
  std::vector<TRect> Panes() const;

  int width_, height_;
  int boxWidth_ = 0, boxHeight_ = 0;
  PreviewMode mode_ = PreviewMode::sideBySide;
  bool isRightToLeft_ = false;
  bool isFitted_ = true;
  double zoom_ = 1;
  /// The point of the picture in the center of each pane, in its pixels.
  double centerX_, centerY_;
  double divider_ = 0.5;
};

}  // namespace rasterkit
