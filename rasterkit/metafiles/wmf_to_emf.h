#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace rasterkit::detail {

/// The drawing of a Windows metafile as an enhanced one of the same size, record by record: lines
/// stay lines and texts stay texts. Records that cannot be read are left out, as when drawing.
/// Throws FormatError for bytes that are no Windows metafile, LimitError for a file beyond the
/// picture memory budget and for a drawing that takes more work than any picture shows.
std::vector<uint8_t> EmfOfWmf(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
