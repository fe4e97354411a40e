#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// Conversion of any supported picture file to an upright Windows bitmap, in memory or on disk, for
/// a host that keeps the geo-reference itself. The extension decides the type of a file. Errors of
/// reading and writing pass to the caller, with the file's name.
namespace rasterkit {

/// Loads a picture file and turns it counter-clockwise by `angle` degrees, to which a JPEG photo
/// adds its own EXIF rotation. A sum of at most 0.1 does not turn; uncovered corners become white.
/// On success the caller owns the new bitmap; else it is null.
///
/// - A Windows bitmap is loaded as it is; a file with a TIFF extension by `LoadViaWic`.
/// - For other types, an 8-bit bitmap stays transparent only if its transparent color is white, and
/// a
///   palette of 17 to 255 colors is filled up to 256 with black.
/// - Metafiles are not read: the bitmap is empty (call `CanLoadBitmap` first).
///
/// Returns false if there is no such file, its extension is unknown, or no codec reads the TIFF.
/// Throws for a damaged BMP, JPEG or PNG file, also for damaged EXIF data (see GetJpgRotation).
RASTERKIT_EXPORT bool LoadWindowsBitmap(const std::string& fileName, float angle,
                                        std::unique_ptr<TBitmap>& bitmap);

/// Provides a Windows bitmap file for a picture file. A ".bmp" file that need not be turned (an
/// angle below 0.1) is returned itself, without being read. Any other is loaded and turned by
/// `LoadWindowsBitmap` and written beside the file as "tmp" + minute of the day + ".bmp"; then
/// `isTemporary` is true and the caller must delete the file. An angle of exactly 0.1 makes such a
/// copy without turning.
///
/// Returns false if the file cannot be loaded. Then and after an error both outputs are unchanged.
/// Errors of loading and saving pass to the caller. A metafile gives the empty bitmap: a header of
/// 0 x 0 pixels, which `TBitmap` reads.
RASTERKIT_EXPORT bool GetWindowsBitmap(const std::string& fileName, float angle,
                                       std::string& bmpFileName, bool& isTemporary);

/// Saves the bitmap in the type of the file's extension, atomically. With `bits` above 0 the file
/// gets the format `GetPixelFormat(bits)`; the bitmap itself does not change. With `quality` above
/// 0 a JPEG gets its low byte as quality (0 to 255, clamped to 1 to 100 when encoding).
///
/// An unknown extension writes nothing, without an error; ".wmf" and ".emf" throw UnsupportedError.
/// Throws FormatError for an empty bitmap, FileError if the file cannot be written.
RASTERKIT_EXPORT void SaveWindowsBitmap(const TBitmap& bitmap, int bits, int quality,
                                        const std::string& fileName);

}  // namespace rasterkit
