#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/qt_pdf.h>

// A host without Qt of its own draws the first page of a file.
int main(int, char** arguments) {
  rasterkit::UseQtPdfInProcess();
  const auto document = rasterkit::CreatePdfDocument();
  document->LoadFromFile(arguments[1]);
  rasterkit::TBitmap page;
  document->ExportPage(0, 1, rasterkit::PdfRotation::none, page);
  return page.Width() == 100 ? 0 : 1;
}
