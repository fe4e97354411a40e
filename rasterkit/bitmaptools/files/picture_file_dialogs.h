#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

/// File dialogs for opening and saving a picture. They use the port `pictureFileDialog`; without it
/// they count as canceled.
namespace rasterkit {

/// Files that BitmapOpenDialog offers: all types, all but metafiles, or those for a map's
/// background.
enum TBitmapFilter : int { bfAll = 0, bfLoadBmp = 1, bfGeo = 2 };

/// Lets the user choose a picture file. `fileName` is the suggested name on entry and the chosen
/// one on return. `defaultExt` selects the initial filter entry.
///
/// A PDF file is returned as it is if `keepPdf` is set. Else the port `pdfPageChooser` converts one
/// of its pages to a PNG picture, and `fileName` becomes the name of that picture: `initialDir`
/// (with its separator, none is added) and the PDF file's base name with ".png", or the name that
/// the port chose.
///
/// Returns false, with `fileName` unchanged, if the user cancels; also false if no page was
/// converted.
RASTERKIT_EXPORT bool BitmapOpenDialog(const std::string& initialDir, const std::string& defaultExt,
                                       TBitmapFilter filter, std::string& fileName, bool keepPdf);

/// Lets the user choose a name for a picture. The name gets the extension of the chosen filter
/// entry, regardless of the one it had. Asks before overwriting. Without `changeDir` the current
/// folder of the process stays. Returns false, with `fileName` unchanged, if the user cancels.
RASTERKIT_EXPORT bool BitmapSaveDialog(const std::string& initialDir, const std::string& defaultExt,
                                       bool withMetafiles, std::string& fileName, bool changeDir);

namespace detail {

/// The same. `askedAbout` becomes the name that the host's dialog returned: the extension may be
/// another one, so that the dialog did not ask whether `fileName` is overwritten.
RASTERKIT_EXPORT bool ChooseSaveName(const std::string& initialDir, const std::string& defaultExt,
                                     bool withMetafiles, std::string& fileName, bool changeDir,
                                     std::string& askedAbout);

}  // namespace detail

}  // namespace rasterkit
