#pragma once

#include <string>

namespace rasterkit {

/// Lets the user choose a page of a PDF file and writes it as a picture; see the port
/// `pdfPageChooser`.
using PdfPageDialog = int (*)(const std::string& pdfFile, std::string& pictureFile);

/// The function with which a QtHost fills that port; null if there is none. The dialog is in a
/// higher room, so it installs itself here when the library is loaded.
PdfPageDialog& InstalledPdfPageDialog();

}  // namespace rasterkit
