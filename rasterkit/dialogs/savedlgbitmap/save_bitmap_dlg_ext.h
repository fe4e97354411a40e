#pragma once

#include <string>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/runtime/export.h>

/// A file name, a kind of file and how to save it, asked for in one window. Both routines run it to
/// its end on the thread that owns the application object, write nothing, and throw Error when no
/// window can be shown.
///
/// The window begins in the folder `dir` with `fileName`. Its kind of file is that of the name's
/// extension; where the name holds no dot, that of `rec.BitmapFormat`. A window that begins without
/// a name takes whatever is typed, nothing too, and asks about no file that exists.
///
/// True when the user confirmed: then `rec` is how to save, with `BitmapFormat` the chosen kind,
/// and `fileName` the full name with the extension of that kind, whatever was typed. Otherwise
/// nothing is changed. A compression mode above 2 comes back as 2.
namespace rasterkit {

/// `withMetafiles` offers Windows metafiles too, which have no options. The other flags and the
/// size in millimetres are those of EditGraphicsParas, which the options button opens;
/// `confirmOverwrite` asks before an existing file is taken.
RASTERKIT_EXPORT bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec,
                                       bool withMetafiles, bool showResolution, bool showPixelSize,
                                       bool confirmOverwrite, float sizeA, float sizeB,
                                       std::string& fileName);

/// For a picture of `width` x `height` pixels, which the user may change with the options; they are
/// returned too. An existing file is asked about unless the window begins without a name.
RASTERKIT_EXPORT bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec, int& width,
                                       int& height, std::string& fileName);

}  // namespace rasterkit
