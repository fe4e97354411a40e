#pragma once

#include <string>

namespace rasterkit {

/// Lets the user choose a page of a PDF file and writes it as a picture; see the port
/// `pdfPageChooser`.
using PdfPageDialog = int (*)(const std::string& pdfFile, std::string& pictureFile);

/// What a QtHost fills that port with; null for nothing. The dialog stands on a floor above this
/// one, so it puts itself here when the library is loaded.
PdfPageDialog& InstalledPdfPageDialog();

}  // namespace rasterkit
