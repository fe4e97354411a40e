// Writes the seeds of the fuzz target worker_messages into the folder given as argument.

#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_setup.h>

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

void Write(const std::filesystem::path& file, const WorkerMessage& message) {
  const std::vector<uint8_t> packet = PackWorkerMessage(message);
  std::ofstream out(file, std::ios::binary);
  out.put('\0');
  out.write(reinterpret_cast<const char*>(packet.data()),
            static_cast<std::streamsize>(packet.size()));
}

}  // namespace

int main(int, char** arguments) {
  const std::filesystem::path folder = arguments[1];
  Write(folder / "ready", ReadyMessage({7, true}));
  Write(folder / "failed", FailedMessage({WorkerErrorClass::limit, 2, "too large"}));
  Write(folder / "setup", SetupMessage({WorkerReader::pdf, {}}));
  Write(folder / "pdf-opened", PdfOpenedMessage(12));
  Write(folder / "pdf-measure", PdfMeasureMessage(3));
  Write(folder / "pdf-measured", PdfMeasuredMessage({595.276, 841.89}));
  Write(folder / "pdf-draw", PdfDrawMessage({0, 1.5, PdfRotation::clockwise90}));
  Write(folder / "pdf-drawn", PdfDrawnMessage({1240, 1754}));
  Write(folder / "pdf-take-rows", PdfTakeRowsMessage({100, 50}));
}
