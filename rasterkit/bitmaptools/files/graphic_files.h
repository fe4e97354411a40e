#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// Conversion of graphics between files, memory streams and classes. The graphic type of the name
/// or the object decides the class (see graphic_types.h). The caller owns results; a graphic passed
/// by reference may be replaced by one of another class. Errors of loading give null; all other
/// errors pass to the caller.
namespace rasterkit {

/// Loads a graphic of the class of the file's extension; a photo with extension ".jpg" is turned
/// upright by its EXIF orientation. If this class cannot read the file or its EXIF data, it is
/// loaded by its content (see LoadViaWic) and not turned. Null if there is no such file, its
/// extension is unknown, or nothing can read it; never throws for a file that exists.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> LoadGraphic(const std::string& fileName);

/// Saves a graphic in the type of the file's extension. A graphic of another class is converted,
/// and the caller's variable then holds the converted one. Throws UnsupportedError for an unknown
/// extension or a type that cannot hold the picture, FileError if the file cannot be written. After
/// an error the file is unchanged, and the variable holds the old graphic.
RASTERKIT_EXPORT void SaveGraphic(const std::string& fileName, std::unique_ptr<TGraphic>& graphic);

/// Makes a new graphic with the same picture; null for null and for classes of the host. The copy
/// of a metafile has the opposite `Enhanced` (see GetGraphicType).
RASTERKIT_EXPORT std::unique_ptr<TGraphic> CopyGraphic(const TGraphic* graphic);

/// Turns a graphic counter-clockwise by `angle` degrees (see RotateBitmap); uncovered corners get
/// `backColor`. The class stays, but metafiles become TPngImage. Throws UnsupportedError for null
/// and for classes of the host, which then stay as they are. After another error the variable holds
/// the picture, possibly as a plain bitmap.
RASTERKIT_EXPORT void RotateGraphic(float angle, std::unique_ptr<TGraphic>& graphic,
                                    TColor backColor);

/// Writes a graphic into a new stream in the file format of its class and returns its type. The
/// stream's position is its end. Returns 0, with `stream` null, for null and for classes of the
/// host.
///
/// A TIFF is written through the file `tempDir` + minute of the day + ".tif", without an added
/// separator; its stream's position is 0. Two such calls with one folder must not run at the same
/// time. Errors of saving pass to the caller; then `stream` is null.
RASTERKIT_EXPORT int GraphicToStream(TGraphic* graphic, const std::string& tempDir,
                                     std::unique_ptr<TMemoryStream>& stream);

/// Reads a graphic of the given type from the beginning of a stream; a TIFF through a temporary
/// file as above. Null for an unknown type and for data that cannot be loaded.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> GraphicFromStream(int type, const std::string& tempDir,
                                                             TMemoryStream* stream);

/// Makes a graphic of the given type from a bitmap. First the bitmap itself is converted to 1, 8 or
/// 24 bits; other numbers leave it as it is. For type 6 a `quality` from 1 to 100 is set, and below
/// 100 the picture is compressed at once; other qualities keep the default of TJPEGImage. Throws
/// UnsupportedError for an unknown type or one that cannot hold a bitmap; the bitmap's format is
/// changed even then.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> ConvertBitmap(TBitmap& bitmap, int type, int bits,
                                                         int quality);

/// Makes a new bitmap with the graphic's picture; 10 x 10 and blank for null. A transparent PNG is
/// drawn onto white in 24 bits, and the bitmap is transparent in the PNG's transparent color.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> GraphicIntoBitmap(const TGraphic* graphic);

namespace detail {

/// `tempDir` + minute of the local day (0 to 1439) + `extension`.
std::string MakeTempGraphicName(const std::string& tempDir, const std::string& extension);

}  // namespace detail
}  // namespace rasterkit
