#pragma once

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/drawing/ink/drawing_objects.h>
#include <rasterkit/metafiles/records/metafile_facts.h>

namespace rasterkit::detail {

/// Where a Windows metafile's picture lies, and on what device: a common screen of the picture's
/// size in whole pixels. Playing and recording start from the same one, so that both round alike.
struct WmfPicture {
  /// The window of a new context, logical units. Its viewport is `pixels` large.
  RectD window;
  PointD pixels;
  /// The box is around what is drawn: modes leave the origin where it is.
  bool isMeasured = false;
  /// Where the origin of viewports lies, pixels from the picture's upper left corner.
  PointD origin;
  ReferenceDevice device;
  int widthMm100 = 0, heightMm100 = 0;
};

/// The picture of a file of which these are the facts.
WmfPicture PictureOfWmf(const MetafileFacts& facts);

}  // namespace rasterkit::detail
