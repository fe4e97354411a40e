#pragma once

#include <rasterkit/host/graphics/graphic.h>

namespace rasterkit {

/// A Windows metafile. This version keeps the class and its mark for the type tables; reading and
/// writing records throws UnsupportedError, which says that metafiles are not built yet.
class RASTERKIT_EXPORT TMetafile : public TGraphic {
 public:
  /// Whether it counts as an enhanced metafile (EMF) or as a Windows metafile (WMF).
  bool Enhanced() const { return enhanced_; }
  void SetEnhanced(bool value) { enhanced_ = value; }

  int Width() const override { return 0; }
  int Height() const override { return 0; }
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) override;
  void AssignToBitmap(TBitmap& target) const override;

 protected:
  /// Another metafile shares its records and leaves this one's mark as it is; anything else throws
  /// UnsupportedError.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override {}

 private:
  bool enhanced_ = true;
};

}  // namespace rasterkit
