// Any bytes as a PNG file give the same pixels, errors and reports however the rows are unpacked:
// in one call or by libpng, as a whole or in bands.

#include <algorithm>
#include <string>
#include <vector>

#include <zlib.h>

#include <rasterkit/codecs/png/rows/png_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;
using detail::PngRows;
using detail::PngWay;

constexpr uint64_t kPictureLimit = 4 << 20;

struct Outcome {
  std::vector<uint8_t> rows;
  std::string error;
  CodecReport report;
  bool isInOneCall = false;
};

void AddRows(const Pixels& pixels, std::vector<uint8_t>& bytes) {
  std::visit(
      [&](const auto& rows) {
        for (int y = 0; y < rows.Height(); y++) {
          bytes.insert(bytes.end(), rows.Row(y), rows.Row(y) + rows.Stride());
        }
      },
      pixels);
}

Outcome Read(const std::vector<uint8_t>& file, PngWay way, int bandRows) {
  Outcome outcome;
  try {
    TSpanStream stream(file);
    PngRows rows(stream, {.kind = {}, .isWhole = true, .way = way});
    const int step = rows.IsInterlaced() || bandRows == 0 ? rows.Height() : bandRows;
    for (int y = 0; y < rows.Height(); y += step) {
      Pixels band = NewPixels(rows.Like(), rows.Width(), std::min(step, rows.Height() - y));
      rows.Read(0, y, band);
      AddRows(band, outcome.rows);
    }
    outcome.isInOneCall = rows.IsInOneCall();
    rows.Finish(outcome.report);
  } catch (const Error& error) {
    outcome.error = error.what();
    outcome.rows.clear();
  }
  return outcome;
}

/// Corrects the checksum of every chunk, so that changed bytes reach the decoder.
void RepairSums(std::vector<uint8_t>& file) {
  size_t position = 8;
  while (position + 12 <= file.size()) {
    const uint8_t* at = file.data() + position;
    const size_t length =
        size_t{at[0]} << 24 | size_t{at[1]} << 16 | size_t{at[2]} << 8 | size_t{at[3]};
    if (length > file.size() - position - 12) return;
    uint8_t* body = file.data() + position + 4;
    const auto sum = static_cast<uint32_t>(crc32(0, body, static_cast<uInt>(length + 4)));
    for (size_t i = 0; i < 4; i++) {
      body[length + 4 + i] = static_cast<uint8_t>(sum >> (24 - 8 * i));
    }
    position += length + 12;
  }
}

void Compare(const std::vector<uint8_t>& file) {
  const Outcome library = Read(file, PngWay::library, 0);
  for (const int bandRows : {0, 1, 7}) {
    const Outcome own = Read(file, PngWay::automatic, bandRows);
    // A rule of Deflate that only zlib insists on, in data whose three checksums are right.
    if (own.isInOneCall && library.error.starts_with("PNG: IDAT: invalid")) continue;
    Require(own.error == library.error);
    if (!own.error.empty()) continue;
    Require(own.rows == library.rows);
    Require(own.report.warnings == library.report.warnings);
    Require(own.report.damage == library.report.damage);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  std::vector<uint8_t> file(data, data + size);
  Compare(file);
  RepairSums(file);
  if (!std::equal(file.begin(), file.end(), data)) Compare(file);
  return 0;
}
