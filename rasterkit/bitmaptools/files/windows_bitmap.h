#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// Any supported picture file as an upright Windows bitmap, in memory or on disk, for a host that
/// keeps the geo-reference itself. The kind of a file goes by its extension. Errors of reading and
/// writing pass to the caller, with the file's name.
namespace rasterkit {

/// Loads a picture file and turns it counter-clockwise by `angle` degrees, to which a JPEG photo
/// adds its own EXIF rotation. A sum of at most 0.1 is no turn; uncovered corners become white. On
/// success the caller owns the new bitmap; else it is null.
///
/// - A Windows bitmap comes as it is; a TIFF (or what is called so) through `LoadViaWic`.
/// - Of other kinds, an 8-bit bitmap is transparent only where its transparent color is white, and
///   a palette of 17 to 255 colors is filled up to 256 with black.
/// - Metafiles are not read: the bitmap is empty (ask `CanLoadBitmap` first).
///
/// False when there is no such file, its extension is unknown, or no codec reads the TIFF. What is
/// wrong with a BMP, JPEG or PNG file is thrown, also by its EXIF data (see GetJpgRotation).
RASTERKIT_EXPORT bool LoadWindowsBitmap(const std::string& fileName, float angle,
                                        std::unique_ptr<TBitmap>& bitmap);

/// Names a Windows bitmap file for a picture file. One with extension ".bmp" that is not to be
/// turned (an angle below 0.1) is named itself, unread. Any other is loaded and turned by
/// `LoadWindowsBitmap` and written beside the file as "tmp" + minute of the day + ".bmp";
/// `isTemporary` then says that the caller must delete it. An angle of exactly 0.1 makes such a
/// copy, unturned.
///
/// False when the file cannot be loaded; both outputs are then as they were, after an error too.
/// Throws what loading and saving throw (an empty bitmap cannot be saved).
RASTERKIT_EXPORT bool GetWindowsBitmap(const std::string& fileName, float angle,
                                       std::string& bmpFileName, bool& isTemporary);

/// Saves the bitmap in the kind that the file's extension says, atomically. With `bits` above 0 the
/// file gets the format `GetPixelFormat(bits)`; the bitmap itself is never changed. With `quality`
/// above 0 a JPEG gets its low byte as quality (0 to 255, clamped to 1 to 100 when encoding).
///
/// An extension without a kind writes nothing and reports nothing; ".wmf" and ".emf" throw
/// UnsupportedError. Throws FormatError for an empty bitmap, FileError when the file cannot be
/// written.
RASTERKIT_EXPORT void SaveWindowsBitmap(const TBitmap& bitmap, int bits, int quality,
                                        const std::string& fileName);

}  // namespace rasterkit
