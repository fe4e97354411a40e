#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>

/// Messages between this process and a worker process, which reads untrusted files.
///
/// A message is one packet: a header of 16 bytes, then the body, whose fields are those of
/// fields.h. Open files travel beside it. The host sends one request after the other, and the
/// worker sends exactly one answer to each.
namespace rasterkit::detail {

/// Kinds that every worker knows. Those of PDF files start at 16, those of pictures at 64.
enum WorkerKind : uint16_t {
  /// To the worker, first: WorkerSetup. Has no answer of its own.
  kWorkerSetup = 1,
  /// From the worker, first: WorkerProtection. From now on it is locked in.
  kWorkerReady = 2,
  /// From the worker, instead of any answer: an error (see worker_errors.h).
  kWorkerFailed = 3,
  kFirstPdfKind = 16,
  kFirstPictureKind = 64,
};

/// Longest body; larger data travels in memory (see worker_memory.h).
constexpr size_t kMostWorkerBodyBytes = 64 * 1024;
/// Most open files beside a message.
constexpr size_t kMostWorkerFiles = 4;
constexpr size_t kWorkerHeaderBytes = 16;
constexpr size_t kMostWorkerPacketBytes = kWorkerHeaderBytes + kMostWorkerBodyBytes;

struct WorkerMessage {
  uint16_t kind = 0;
  std::vector<uint8_t> body = {};
  std::vector<SystemFile> files = {};
};

/// Builds the packet of a message without its files. Throws LimitError if the body or the list of
/// files is too long.
RASTERKIT_EXPORT std::vector<uint8_t> PackWorkerMessage(const WorkerMessage& message);

/// Reads a packet with the files that came with it. Throws FormatError if the header is not one of
/// this version or does not fit the packet and the files.
RASTERKIT_EXPORT WorkerMessage ParseWorkerMessage(std::span<const uint8_t> packet,
                                                  std::vector<SystemFile> files);

}  // namespace rasterkit::detail
