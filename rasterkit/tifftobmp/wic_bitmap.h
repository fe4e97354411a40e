#pragma once

#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Bitmap for TIFF files: a TBitmap that loads through the imaging codec, by content, regardless of
/// the extension, and saves as TIFF.
///
/// A loaded picture is never `Transparent`: if its file has an alpha channel of 8 bits, pixels of
/// alpha 0 become opaque white; colors that a file marks as transparent stay visible. Grids keep
/// their numbers: floats become the pixels of a pf32bit bitmap, words those of a pf16bit one (see
/// ReadGeoTiffIntoBitmap). Streams use the Windows bitmap format of the base class; for TIFF data
/// use a file.
class RASTERKIT_EXPORT TWICBitmap : public TBitmap {
 public:
  /// Loads any supported file. Throws FileError if it cannot be opened, else an error with the
  /// codec's own text, or "Invalid image" if no codec knows the data. Every error names the file;
  /// the bitmap is then unchanged.
  void LoadFromFile(const std::string& fileName) override;
  /// Writes a TIFF file without geo tags, atomically; see WriteBitmapToTiff.
  void SaveToFile(const std::string& fileName) override;
};

}  // namespace rasterkit
