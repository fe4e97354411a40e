#pragma once

#include <rasterkit/host/graphics/graphic.h>

namespace rasterkit {

/// A Windows icon. This version keeps the class for the picture registry; everything that needs its
/// content throws UnsupportedError, which says that icons are not built yet.
class RASTERKIT_EXPORT TIcon : public TGraphic {
 public:
  int Width() const override { return 0; }
  int Height() const override { return 0; }
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

 protected:
  void AssignFrom(const TGraphic& source) override;
  void Clear() override {}
};

}  // namespace rasterkit
