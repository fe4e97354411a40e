#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// pdf_page FILE.pdf OUT.png: the first page at 150 dots per inch
int main(int, char** arguments) {
  const std::unique_ptr<rk::PdfDocument> document = rk::CreatePdfDocument();
  document->LoadFromFile(arguments[1]);
  rk::TBitmap page;
  document->ExportPage(0, 1.5, rk::PdfRotation::none, page);
  rk::SaveWindowsBitmap(page, 0, 0, arguments[2]);
}
