#pragma once

#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/files/system_file.h>

/// Files that a worker process reads.
namespace rasterkit::detail {

/// Opens a file for a worker. Of a pipe or a device only what ReadUnsizedPicture reads is passed
/// on. Throws FileError if it cannot be opened.
RASTERKIT_EXPORT SystemFile OpenForWorker(const std::string& fileName);

/// Copies the rest of a stream into memory for a worker.
RASTERKIT_EXPORT SystemFile CopyForWorker(TStream& stream);

}  // namespace rasterkit::detail
