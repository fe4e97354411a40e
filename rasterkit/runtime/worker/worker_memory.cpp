#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_memory.h>

namespace rasterkit::detail {

SystemFile WorkerMemoryOf(std::span<const uint8_t> bytes) {
  if (bytes.size() > kMostWorkerMemoryBytes) throw LimitError("message: too much memory");
  SystemFile memory(memfd_create("rasterkit", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!memory.IsOpen()) throw std::bad_alloc();
  try {
    WriteAll(memory, bytes, 0, {});
  } catch (const FileError&) {
    // The system of files in memory has no other reason.
    throw std::bad_alloc();
  }
  return memory;
}

uint64_t SealedWorkerMemory(const SystemFile& memory, uint64_t most) {
  // Fails if the worker has mapped the memory for writing, and for anything that is not memory.
  constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;
  const int seals = fcntl(memory.Handle(), F_GET_SEALS);
  if (seals < 0) ThrowBadMessage("a file is not sealable memory");
  if ((seals & kSeals) != kSeals && fcntl(memory.Handle(), F_ADD_SEALS, kSeals) != 0) {
    ThrowBadMessage("memory can still be changed");
  }
  struct stat status {};
  if (fstat(memory.Handle(), &status) != 0 || status.st_size < 0) {
    ThrowBadMessage("memory has no size");
  }
  const auto size = static_cast<uint64_t>(status.st_size);
  if (size > most) ThrowBadMessage("memory is too large");
  return size;
}

void ReadWorkerMemory(const SystemFile& memory, std::span<uint8_t> target) {
  if (SealedWorkerMemory(memory, target.size()) != target.size()) {
    ThrowBadMessage("memory is too small");
  }
  iovec piece{target.data(), target.size()};
  size_t read = 0;
  try {
    read = ReadPieces(memory, {&piece, 1}, 0, {});
  } catch (const FileError&) {
    ThrowBadMessage("memory cannot be read");
  }
  if (read != target.size()) ThrowBadMessage("memory ends too early");
}

}  // namespace rasterkit::detail
