// Any packet from a worker is a message or a FormatError, and so is the body of each answer. The
// first byte of the input is the number of files that came with the packet.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_setup.h>

#include "fuzz/require.h"

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

std::vector<SystemFile> Files(size_t count) {
  std::vector<SystemFile> files;
  for (size_t i = 0; i < count; ++i) files.emplace_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
  return files;
}

/// Calls a reader; a FormatError is a result too.
template <class Read>
void Survive(Read read) {
  try {
    read();
  } catch (const FormatError& error) {
    Require(!error.Reason().empty());
  }
}

void ReadAll(const WorkerMessage& message) {
  Survive([&] { Require(ReadReady(message).landlockVersion >= 0); });
  Survive([&] {
    const WorkerError error = ReadFailed(message);
    for (const char letter : error.reason) Require(static_cast<unsigned char>(letter) >= ' ');
  });
  Survive([&] { Require(ReadPdfOpened(message) >= 1); });
  Survive([&] { ReadPdfMeasured(message); });
  Survive([&] {
    const PdfDrawn drawn = ReadPdfDrawn(message);
    Require(drawn.width >= 1 && drawn.width <= kMostPdfPixels);
    Require(drawn.height >= 1 && drawn.height <= kMostPdfPixels);
  });
  Survive([&] { ReadSetup(message); });
  Survive([&] { ReadPdfOpen(message); });
  Survive([&] { ReadPdfMeasure(message); });
  Survive([&] { ReadPdfDraw(message); });
  Survive([&] { ReadPdfTakeRows(message); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::span<const uint8_t> packet(data + 1, size - 1);
  Survive([&] {
    const WorkerMessage message = ParseWorkerMessage(packet, Files(data[0] % 6));
    Require(message.body.size() <= kMostWorkerBodyBytes);
    ReadAll(message);
  });
  return 0;
}
