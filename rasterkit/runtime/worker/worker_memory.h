#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>

/// Memory that a worker fills and this process reads: rows of pictures and data too long for a
/// message. It is a file without a name, sent beside a message.
namespace rasterkit::detail {

/// Most bytes per piece of memory; larger data is sent in several. Small enough that a picture and
/// the piece that it is filled from take little more than the picture.
constexpr uint64_t kMostWorkerMemoryBytes = uint64_t{16} << 20;

/// In the worker: makes memory with a copy of `bytes`. Throws LimitError if there are more than
/// kMostWorkerMemoryBytes, std::bad_alloc if the system has no memory.
RASTERKIT_EXPORT SystemFile WorkerMemoryOf(std::span<const uint8_t> bytes);

/// In the host: fills `target` with all bytes of memory that a worker sent. Seals it first, so that
/// it cannot change while it is read, and copies it without mapping it. Throws FormatError if it
/// is not such memory, has another size, or can still be written by the worker.
RASTERKIT_EXPORT void ReadWorkerMemory(const SystemFile& memory, std::span<uint8_t> target);

/// In the host: returns the size after sealing the memory. Throws FormatError like
/// ReadWorkerMemory, also for more than `most` bytes.
RASTERKIT_EXPORT uint64_t SealedWorkerMemory(const SystemFile& memory, uint64_t most);

}  // namespace rasterkit::detail
