#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// Moving graphics between files, memory streams and classes. The class follows the graphic type of
/// the name or of the object (see graphic_types.h). What is returned belongs to the caller; a
/// graphic passed by reference may be replaced by one of another class. Errors of loading are told
/// by null; all other errors pass to the caller.
namespace rasterkit {

/// Loads a graphic of the class that belongs to the file's extension; a photo with extension ".jpg"
/// is turned upright by its EXIF orientation. A file that this class cannot read, or whose EXIF
/// data cannot be read, is loaded by its content instead (see LoadViaWic), and then is not turned.
/// Null when there is no such file, its extension is unknown, or nothing can read it; never throws
/// for a file that exists.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> LoadGraphic(const std::string& fileName);

/// Saves a graphic in the kind that the file's extension says. A graphic of another kind is
/// converted, and the caller's variable then holds the converted one. Throws UnsupportedError for
/// an unknown extension and a kind that cannot take the picture, FileError when the file cannot be
/// written. After an error the file is as it was, and the variable holds the old graphic.
RASTERKIT_EXPORT void SaveGraphic(const std::string& fileName, std::unique_ptr<TGraphic>& graphic);

/// A new graphic with the same picture; null for null and for classes of the host's own. A
/// metafile's copy bears the other `Enhanced` mark (see GetGraphicType).
RASTERKIT_EXPORT std::unique_ptr<TGraphic> CopyGraphic(const TGraphic* graphic);

/// Turns a graphic counter-clockwise by `angle` degrees (see RotateBitmap); uncovered corners get
/// `backColor`. The class stays, but metafiles come back as TPngImage. Throws UnsupportedError for
/// null and for classes of the host's own, which then stay as they are. After another error the
/// variable holds the picture still, perhaps as a plain bitmap.
RASTERKIT_EXPORT void RotateGraphic(float angle, std::unique_ptr<TGraphic>& graphic,
                                    TColor backColor);

/// Writes a graphic into a new stream in the file format of its class and returns its type; the
/// stream stands at its end. 0 and no stream for null and for classes of the host's own.
///
/// A TIFF goes through the file `tempDir` + minute of the day + ".tif", with no separator put
/// between; its stream stands at 0. Two of them in one folder within one minute must not run at the
/// same time. Throws what saving throws; then there is no stream.
RASTERKIT_EXPORT int GraphicToStream(TGraphic* graphic, const std::string& tempDir,
                                     std::unique_ptr<TMemoryStream>& stream);

/// Reads a graphic of the given type from the beginning of a stream; a TIFF through a temporary
/// file as above. Null for an unknown type and for whatever cannot be loaded.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> GraphicFromStream(int type, const std::string& tempDir,
                                                             TMemoryStream* stream);

/// Makes a graphic of the given type from a bitmap. First the bitmap itself is changed to 1, 8 or
/// 24 bits; other numbers leave it as it is. For type 6 a `quality` from 1 to 100 is set, and below
/// 100 the picture is compressed at once; other qualities leave the JPEG defaults. Throws
/// UnsupportedError for an unknown type or one that takes no bitmap; the bitmap's format is changed
/// even then.
RASTERKIT_EXPORT std::unique_ptr<TGraphic> ConvertBitmap(TBitmap& bitmap, int type, int bits,
                                                         int quality);

/// A new bitmap with the graphic's picture; 10 x 10 and blank for null. A transparent PNG is drawn
/// onto white in 24 bits, and the bitmap is transparent in the PNG's transparent color.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> GraphicIntoBitmap(const TGraphic* graphic);

namespace detail {

/// `tempDir` + minute of the local day (0 to 1439) + `extension`.
std::string MakeTempGraphicName(const std::string& tempDir, const std::string& extension);

}  // namespace detail
}  // namespace rasterkit
