#include <cstdint>
#include <string_view>

#include <rasterkit/placement/side_files.h>
#include <rasterkit/placement/six_numbers.h>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using rasterkit::detail::ParseWorldFile;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const bool isCut : {false, true}) {
    const auto reading = ParseWorldFile(text, isCut);
    Require(reading.affine.has_value() == reading.reason.empty());
    if (!reading.affine) continue;
    Require(reading.affine->IsFinite());
    // What is written reads back as the same numbers.
    Require(ParseWorldFile(rasterkit::WorldFileText(*reading.affine)).affine == reading.affine);
  }
  return 0;
}
