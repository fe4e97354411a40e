#include <algorithm>
#include <new>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr uint64_t kFirstChunk = 64 * 1024;

void ResizeWithinBudget(std::vector<uint8_t>& bytes, uint64_t size) {
  RequirePictureMemory(size, "a stream");
  // The limit may exceed what the host can address.
  if (size > bytes.max_size()) {
    throw LimitError("a stream of " + std::to_string(size) + " bytes cannot be held in memory");
  }
  try {
    bytes.resize(static_cast<size_t>(size));
  } catch (const std::bad_alloc&) {
    throw LimitError("no memory for a stream of " + std::to_string(size) + " bytes");
  }
}

/// Pipes give what they hold at the time; only 0 bytes are the end.
size_t ReadUntilFull(TStream& stream, std::span<uint8_t> target) {
  size_t filled = 0;
  while (filled < target.size()) {
    const size_t count = stream.Read(target.subspan(filled));
    if (count == 0) break;
    filled += count;
  }
  return filled;
}

}  // namespace

size_t TStream::ReadScattered(std::span<const std::span<uint8_t>> pieces) {
  size_t total = 0;
  for (const std::span<uint8_t> piece : pieces) {
    const size_t count = ReadUntilFull(*this, piece);
    total += count;
    if (count < piece.size()) break;
  }
  return total;
}

void TStream::ReadExactly(std::span<uint8_t> target) {
  if (ReadUntilFull(*this, target) != target.size()) throw FormatError("unexpected end of data");
}

std::vector<uint8_t> TStream::ReadToEnd() {
  const uint64_t known = Size() > Position() ? Size() - Position() : 0;
  std::vector<uint8_t> bytes;
  ResizeWithinBudget(bytes, known > 0 ? known : std::min(kFirstChunk, PictureMemoryLimit()));
  size_t filled = 0;
  while (true) {
    filled += ReadUntilFull(*this, std::span(bytes).subspan(filled));
    // Only a read tells whether more follows: pipes have no size, and files may have grown.
    uint8_t next = 0;
    if (filled < bytes.size() || Read({&next, 1}) == 0) break;
    const uint64_t doubled = std::min(uint64_t{2} * filled, PictureMemoryLimit());
    ResizeWithinBudget(bytes, std::max<uint64_t>(doubled, filled + 1));
    bytes[filled++] = next;
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace rasterkit
