// Pages of PDF files: the port beside the engine's own call, with the same page in the same run.
// What the port adds is a thread, white paper and 24 bits.
#include <QImage>
#include <QPdfDocument>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/qt_pdf.h>

#include "bench/support/pdf_files.h"

namespace rasterkit {
namespace {

using Maker = std::string (*)();

/// Written once into the folder for temporary files; see pdf_peers.sh.
std::string FileOf(const char* name, Maker make) {
  const auto folder = std::filesystem::temp_directory_path() / "rasterkit-pdf-bench";
  std::filesystem::create_directories(folder);
  const auto file = folder / name;
  if (!std::filesystem::exists(file)) std::ofstream(file, std::ios::binary) << make();
  return file.string();
}

void BM_Port(benchmark::State& state, const char* name, Maker make) {
  UseQtPdfInProcess();
  const auto document = CreatePdfDocument();
  document->LoadFromFile(FileOf(name, make));
  for (auto _ : state) {
    TBitmap bitmap;
    document->ExportPage(0, static_cast<double>(state.range(0)) / 100, PdfRotation::none, bitmap);
    benchmark::DoNotOptimize(bitmap.ScanLine(0));
  }
}

void BM_Engine(benchmark::State& state, const char* name, Maker make) {
  QPdfDocument document;
  document.load(QString::fromStdString(FileOf(name, make)));
  const QSizeF points = document.pagePointSize(0);
  const PdfPixels pixels =
      PdfPagePixels({points.width(), points.height()}, static_cast<double>(state.range(0)) / 100);
  QPdfDocumentRenderOptions options;
  options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
  for (auto _ : state) {
    const QImage image = document.render(
        0, {static_cast<int>(pixels.width), static_cast<int>(pixels.height)}, options);
    benchmark::DoNotOptimize(image.constBits());
  }
}

#define RASTERKIT_PDF_BENCH(what, file, make)    \
  BENCHMARK_CAPTURE(BM_Engine, what, file, make) \
      ->Arg(150)                                 \
      ->Arg(300)                                 \
      ->Unit(benchmark::kMillisecond)            \
      ->UseRealTime();                           \
  BENCHMARK_CAPTURE(BM_Port, what, file, make)   \
      ->Arg(150)                                 \
      ->Arg(300)                                 \
      ->Unit(benchmark::kMillisecond)            \
      ->UseRealTime()

RASTERKIT_PDF_BENCH(text, "text.pdf", bench::TextPages);
RASTERKIT_PDF_BENCH(scan, "scan.pdf", bench::ScannedPage);
RASTERKIT_PDF_BENCH(plan, "plan.pdf", bench::VectorPlan);

}  // namespace
}  // namespace rasterkit
