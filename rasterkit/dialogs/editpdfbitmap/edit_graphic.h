#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

/// The editor of graphics and PDF pages: a window in which the user turns, mirrors, crops, resizes
/// a picture, changes its colours and saves it. Both entries run it to its end, on the thread that
/// owns the application object where there is one; both throw Error when no window can be shown.
namespace rasterkit {

/// Lets the user make a picture of a page of a PDF file. `bmpFile` is the first suggestion for the
/// picture's name. The page is drawn at the resolution that the user chooses, and written when the
/// user confirms.
///
/// 1 when the picture was written: `bmpFile` is then the picture's name. 0 when the user cancelled,
/// or the file cannot be opened or drawn, which the user was told; -1, and no window, when there is
/// no such file. `bmpFile` is then unchanged.
RASTERKIT_EXPORT int ConvertPdfPageToBmpDialog(const std::string& pdfFile, std::string& bmpFile);

/// Lets the user edit a copy of `graphic` (null: a blank picture). `fileName` is the picture's name
/// so far, of which only the part behind the folder counts; `dir` (with its separator) is the
/// folder that it is saved in.
///
/// Where `dir` and `fileName` name a file that exists, each change starts anew from the graphic;
/// else changes add up.
///
/// True when the user confirmed: what was changed is then in the file `fileName`, which is the full
/// name now, and `graphic` is the edited one, of the same class where that can take pixels. Without
/// changes nothing is written. False when the user cancelled; then nothing is changed. The four
/// numbers are left alone.
RASTERKIT_EXPORT bool EditGraphic(const std::string& dir, std::string& fileName,
                                  std::unique_ptr<TGraphic>& graphic, int32_t&, int32_t&, int32_t&,
                                  int32_t&);

}  // namespace rasterkit
