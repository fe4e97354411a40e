#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {
namespace {

/// Copies what lies from `position` on, moves it, and returns how much that was.
size_t CopyOut(std::span<const uint8_t> bytes, uint64_t& position, std::span<uint8_t> target) {
  if (position >= bytes.size()) return 0;
  const size_t count = std::min<size_t>(target.size(), bytes.size() - position);
  if (count > 0) std::memcpy(target.data(), bytes.data() + position, count);
  position += count;
  return count;
}

}  // namespace

TMemoryStream::TMemoryStream(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

size_t TMemoryStream::Read(std::span<uint8_t> target) {
  return CopyOut(bytes_, position_, target);
}

void TMemoryStream::Write(std::span<const uint8_t> source) {
  if (source.empty()) return;
  if (position_ > std::numeric_limits<size_t>::max() - source.size()) {
    throw LimitError("a stream cannot grow beyond the address space");
  }
  const size_t end = static_cast<size_t>(position_) + source.size();
  if (end > bytes_.size()) {
    try {
      if (end > bytes_.capacity()) bytes_.reserve(std::max(end, bytes_.capacity() * 2));
      bytes_.resize(end);
    } catch (const std::exception&) {
      throw LimitError("no memory for a stream of " + std::to_string(end) + " bytes");
    }
  }
  std::memcpy(bytes_.data() + position_, source.data(), source.size());
  position_ = end;
}

void TMemoryStream::Clear() {
  bytes_ = {};
  position_ = 0;
}

std::vector<uint8_t> TMemoryStream::TakeBytes() {
  position_ = 0;
  return std::exchange(bytes_, {});
}

void TMemoryStream::LoadFromFile(const std::string& fileName) {
  TFileStream file(fileName);
  try {
    LoadFromStream(file);
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
}

void TMemoryStream::SaveToFile(const std::string& fileName) const {
  AtomicFile file(fileName);
  file.Write(bytes_);
  file.Commit();
}

void TMemoryStream::LoadFromStream(TStream& source) {
  source.SetPosition(0);
  bytes_ = source.ReadToEnd();
  position_ = 0;
}

size_t TSpanStream::Read(std::span<uint8_t> target) {
  return CopyOut(bytes_, position_, target);
}

void TSpanStream::Write(std::span<const uint8_t>) {
  throw UnsupportedError("a view of borrowed bytes cannot be written");
}

}  // namespace rasterkit
