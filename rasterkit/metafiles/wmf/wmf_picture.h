#pragma once

#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/records/metafile_facts.h>

namespace rasterkit::detail {

/// The picture of a WMF file and its device: a screen of 96 dpi with the picture's size in whole
/// pixels. Player and recorder use the same one, so that both round in the same way.
struct WmfPicture {
  /// The initial window, in logical units. Its viewport has the size `pixels`.
  RectD window;
  PointD pixels;
  /// True if the box was measured: mapping modes then keep the origin.
  bool isMeasured = false;
  /// The origin of viewports, in pixels from the upper left corner of the picture.
  PointD origin;
  ReferenceDevice device;
  int widthMm100 = 0, heightMm100 = 0;
};

/// Returns the picture of a file with these facts.
WmfPicture PictureOfWmf(const MetafileFacts& facts);

}  // namespace rasterkit::detail
