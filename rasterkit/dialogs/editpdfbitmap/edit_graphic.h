#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

/// The editor of graphics and PDF pages: a window in which the user rotates, mirrors, crops,
/// resizes a picture, changes its colors and saves it. Both routines return when it is closed. They
/// must run on the thread that owns the application object, if there is one, and throw Error if no
/// window can be shown.
namespace rasterkit {

/// Lets the user make a picture of a page of a PDF file. `bmpFile` is the suggested name of the
/// picture. The page is drawn at the resolution that the user chooses and written when the user
/// confirms.
///
/// Returns 1 if the picture was written: `bmpFile` is its name then. Returns 0 if the user
/// canceled, or if the file cannot be opened or drawn, which the user was told; -1, without a
/// window, if the file does not exist. `bmpFile` does not change then.
RASTERKIT_EXPORT int ConvertPdfPageToBmpDialog(const std::string& pdfFile, std::string& bmpFile);

/// Lets the user edit a copy of `graphic` (null: a blank picture). `fileName` is the current name
/// of the picture, without regard to a folder in it; `dir` (with its separator) is the folder in
/// which it is saved.
///
/// If `dir` and `fileName` name an existing file, each change starts again from the graphic;
/// otherwise changes add up.
///
/// Returns true if the user confirmed: the result is in the file `fileName` then, which is the full
/// name, and `graphic` is the edited one, of the same class if that class can hold pixels. Without
/// changes nothing is written. Returns false and changes nothing if the user canceled. The four
/// numbers are not used.
RASTERKIT_EXPORT bool EditGraphic(const std::string& dir, std::string& fileName,
                                  std::unique_ptr<TGraphic>& graphic, int32_t&, int32_t&, int32_t&,
                                  int32_t&);

}  // namespace rasterkit
