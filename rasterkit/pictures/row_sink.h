#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Takes rows of a picture from top to bottom.
class RASTERKIT_EXPORT RowSink {
 public:
  virtual ~RowSink() = default;
  /// The next rows, from `top` on, valid during the call. Calls come one after another, perhaps on
  /// another thread than that of Picture::Rows.
  virtual void Take(const Raster& rows, int top) = 0;
};

}  // namespace rasterkit
