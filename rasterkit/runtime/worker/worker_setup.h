#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_message.h>

namespace rasterkit::detail {

/// What a worker reads. Code for the other kinds of files is not loaded.
enum class WorkerReader { pictures, metafiles, heif, pdf };

/// First message to a worker.
struct WorkerSetup {
  WorkerReader reader = WorkerReader::pictures;
  Limits limits;

  bool operator==(const WorkerSetup&) const = default;
};

/// First answer of a worker: how it is locked in.
struct WorkerProtection {
  /// Version of the kernel's Landlock; 0 if there is none, so that files can be opened for reading.
  int landlockVersion = 0;
  /// The system calls are filtered. The host gives a file to no worker without it.
  bool filtersCalls = false;
};

RASTERKIT_EXPORT WorkerMessage SetupMessage(const WorkerSetup& setup);
/// Throws FormatError for an invalid message.
RASTERKIT_EXPORT WorkerSetup ReadSetup(const WorkerMessage& message);

RASTERKIT_EXPORT WorkerMessage ReadyMessage(const WorkerProtection& protection);
/// Throws FormatError for an invalid message.
RASTERKIT_EXPORT WorkerProtection ReadReady(const WorkerMessage& message);

/// Memory in bytes that a worker may take under these limits: what one picture may take, for the
/// content of the file, and a constant for the program. `more` is added to it.
RASTERKIT_EXPORT uint64_t WorkerMemoryBytes(const Limits& limits, uint64_t more = 0);

}  // namespace rasterkit::detail
