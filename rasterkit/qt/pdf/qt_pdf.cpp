#include <memory>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/qt_pdf.h>
#include <rasterkit/qt/pdf/qt_pdf_document.h>

namespace rasterkit {

void UseQtPdfInProcess() {
  PdfDocumentFactory() = [] { return std::make_unique<QtPdfDocument>(); };
}

}  // namespace rasterkit

void RasterkitUseQtPdfInProcess() {
  rasterkit::UseQtPdfInProcess();
}
