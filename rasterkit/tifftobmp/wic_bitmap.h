#pragma once

#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The bitmap behind TIFF files: a TBitmap that loads through the imaging codec, by content,
/// whatever the file is called, and saves as TIFF.
///
/// A loaded picture is never `Transparent`: where its file has an alpha channel of 8 bits, pixels
/// of alpha 0 become opaque white, and colors that a file only marks as transparent stay visible.
/// Grids keep their numbers: floats become the pixels of a pf32bit bitmap, words those of a pf16bit
/// one (see ReadGeoTiffIntoBitmap). Streams carry the Windows bitmap form of the base class;
/// whoever needs TIFF bytes goes through a file.
class RASTERKIT_EXPORT TWICBitmap : public TBitmap {
 public:
  /// Throws FileError when the file cannot be opened, else an error with the codec's own text, or
  /// "Invalid image" when no codec knows the bytes; every error names the file, and the bitmap is
  /// then unchanged.
  void LoadFromFile(const std::string& fileName) override;
  /// Writes a TIFF file without geo tags, atomically; see WriteBitmapToTiff.
  void SaveToFile(const std::string& fileName) override;
};

}  // namespace rasterkit
