#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

/// The two ready-made file dialogs. They run through the port `pictureFileDialog`; without it they
/// are canceled.
namespace rasterkit {

/// Which files BitmapOpenDialog offers: all kinds, all but metafiles, or those for a map's
/// background.
enum TBitmapFilter : int { bfAll = 0, bfLoadBmp = 1, bfGeo = 2 };

/// Lets the user choose a picture file; `fileName` is the first suggestion and then the answer.
/// `defaultExt` chooses the filter entry at first.
///
/// A PDF file is answered as it is when `keepPdf`; else a page of it is made a PNG picture through
/// the port `pdfPageChooser`, and `fileName` becomes that picture's name: `initialDir` (with its
/// separator, none is added) and the PDF file's bare name with ".png", or what the port made of it.
///
/// False, with `fileName` unchanged, when the user cancels; false too when no page was made.
RASTERKIT_EXPORT bool BitmapOpenDialog(const std::string& initialDir, const std::string& defaultExt,
                                       TBitmapFilter filter, std::string& fileName, bool keepPdf);

/// Lets the user choose a name for a picture; whatever extension the name has, it gets that of the
/// chosen filter entry. Asks before overwriting; without `changeDir` the process's folder stays as
/// it is. False, with `fileName` unchanged, when the user cancels.
RASTERKIT_EXPORT bool BitmapSaveDialog(const std::string& initialDir, const std::string& defaultExt,
                                       bool withMetafiles, std::string& fileName, bool changeDir);

}  // namespace rasterkit
