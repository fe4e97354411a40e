#pragma once

#include <string>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/runtime/export.h>

/// Lets the user enter a file name, a file type and the save options in one window. Both routines
/// return when it is closed. They must run on the thread that owns the application object, write
/// nothing, and throw Error if no window can be shown.
///
/// The window starts in the folder `dir` with `fileName`. Its file type is that of the name's
/// extension, or that of `rec.BitmapFormat` if the name has no dot. A window that starts without a
/// name accepts every input, even an empty one, and does not ask before overwriting.
///
/// Return true if the user confirmed: `rec` has the save options then, with `BitmapFormat` the
/// chosen type, and `fileName` is the full name with the extension of that type, regardless of what
/// was typed. Otherwise nothing changes. A compression mode above 2 is returned as 2.
namespace rasterkit {

/// `withMetafiles` also offers Windows metafiles, which have no options. The other flags and the
/// size in millimeters are those of EditGraphicsParas, which the options button opens;
/// `confirmOverwrite` asks before overwriting an existing file.
RASTERKIT_EXPORT bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec,
                                       bool withMetafiles, bool showResolution, bool showPixelSize,
                                       bool confirmOverwrite, float sizeA, float sizeB,
                                       std::string& fileName);

/// For a picture of `width` x `height` pixels, which the user may change in the options; they are
/// returned too. Asks before overwriting an existing file unless the window starts without a name.
RASTERKIT_EXPORT bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec, int& width,
                                       int& height, std::string& fileName);

}  // namespace rasterkit
