#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// A metafile in the format that was wanted.
struct ConvertedMetafile {
  /// The file; empty if it could not be converted.
  std::vector<uint8_t> bytes;
  /// Why it could not be converted; null if it was.
  std::exception_ptr error;
  /// Format of the file that was read: EMF, or WMF.
  bool wasEnhanced = false;
  /// Pixels at 96 per inch.
  int width = 0, height = 0;
  /// Damage of the file that was read.
  std::vector<std::string> warnings;
};

/// Reads a metafile from the stream's position and writes it as EMF, or else as WMF; see
/// TMetafile::SaveToStream. Throws FormatError if the data is neither. An error of the conversion
/// is part of the result. With Isolation::process a worker process does both; `keepGoing`, if set,
/// is called while it works, and ends it by returning false.
RASTERKIT_EXPORT ConvertedMetafile ConvertMetafile(TStream& stream, bool toEnhanced,
                                                   Isolation isolation = Isolation::none,
                                                   const std::function<bool()>& keepGoing = {});

}  // namespace rasterkit
