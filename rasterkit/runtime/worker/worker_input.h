#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// In the host: opens a file that a worker will read. A pipe or device is copied into memory first,
/// at most as many bytes as a picture may take. Throws FileError and LimitError as reading the file
/// here does.
RASTERKIT_EXPORT SystemFile OpenWorkerInput(const std::string& fileName);

/// In the host: copies bytes into memory that a worker will read. Throws std::bad_alloc.
RASTERKIT_EXPORT SystemFile WorkerInputOf(std::span<const uint8_t> bytes);

/// Returns another handle to the same open file. Throws FileError.
RASTERKIT_EXPORT SystemFile SameFile(const SystemFile& file);

/// In the worker: a stream over a file that the host opened. Reads at any position.
RASTERKIT_EXPORT std::unique_ptr<TStream> WorkerInputStream(SystemFile file);

}  // namespace rasterkit::detail
